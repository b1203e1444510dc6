/// @file
/// Writes the answer to an offer as text.

#ifndef QOVA_TOOLS_SDP_WRITER_H
#define QOVA_TOOLS_SDP_WRITER_H

#include <string>
#include <vector>

#include "qova/capability.h"
#include "sdp/reader.h"
#include "sdp/text.h"
#include "socket/address.h"

namespace sdp {

/// Returns the m= line that rejects a line of an offer (RFC 3264, section 6), with its line ending.
std::string rejected_line(const ReadLine& line);

/// Returns the text of an answer (RFC 3264, section 6). Linear in the length of the offer, times
/// the number of payloads of a line.
///
/// An accepted line keeps its payloads, their a=rtpmap and a=fmtp, a=ptime, a=maxptime,
/// a=silenceSupp and the attributes of T.38. Its ports, direction and key are the answer's. A
/// rejected line keeps its type, its transport and one format. The session keeps its times and
/// a=silenceSupp. Nothing else is copied, because it would promise what the answer does not keep.
///
/// `answer` has one media for each of the offer, in their order, with the ports that are written;
/// `payloads` has the accepted payload types of each line of the reading.
std::string write(const Description& offer, const Reading& reading, const QOVA_Capability& answer,
                  const std::vector<std::vector<unsigned>>& payloads, const IPAddress& address,
                  const Origin& origin);

}  // namespace sdp

#endif
