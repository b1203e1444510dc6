// Writes an answer as text, from the offer as sofia-sip's parser has it.
//
// Of an accepted line stay the payloads, their rtpmap and fmtp, ptime, maxptime, silenceSupp and
// the attributes of T.38; the direction and the key are the answer's. Of a rejected line stays what
// m= says, with port 0 and one format. Of the session stay its times (RFC 3264, section 6) and
// silenceSupp: every other attribute would promise what the answer does not keep.

#ifndef QOVA_TOOLS_SDP_WRITER_H
#define QOVA_TOOLS_SDP_WRITER_H

#include <cstdint>
#include <string>
#include <vector>

#include "qova/capability.h"
#include "sdp/reader.h"
#include "sdp/text.h"
#include "socket/address.h"

namespace sdp {

// What o= says: which session, and which version of its description.
struct Origin {
    std::uint64_t id;
    std::uint64_t version;
};
Origin origin_of(const Reading& reading);

// The capability is an answer to the offer, in the plan that it is sent in; each line has its
// accepted payload types.
std::string write(const Description& offer, const Reading& reading, const QOVA_Capability& answer,
                  const std::vector<std::vector<unsigned>>& payloads, const IPAddress& address,
                  const Origin& origin);

}  // namespace sdp

#endif
