/// @file
/// Reads a session description (RFC 4566) into a QOVA_Capability. README.md has the mapping.

#ifndef QOVA_TOOLS_SDP_READER_H
#define QOVA_TOOLS_SDP_READER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "qova/capability.h"
#include "qova/crypto.h"
#include "sdp/diagnostics.h"
#include "sdp/text.h"

namespace sdp {

/// Which side of RFC 3264's exchange a description is.
enum class Role { OFFER, ANSWER };

/// What happens to a value that the model cannot hold.
enum class Strictness {
    LENIENT,  ///< The member keeps its default, and there is a warning.
    STRICT    ///< The description is refused, with the message of the first warning.
};

/// A media line, with the details that the model does not hold.
struct ReadLine {
    std::size_t number = 0;            ///< The number of its m= line.
    std::string type;                  ///< Such as "audio"; this and the next two as in the text.
    std::string transport;             ///< Such as "RTP/AVP".
    std::vector<std::string> formats;  ///< Such as "8".
    std::vector<Payload> payloads;     ///< Of RTP, in their order; each payload type once.
    QOVA_Media* media = nullptr;       ///< In the capability, borrowed; null if passed through.
    bool is_rejected = false;          ///< Its port is 0.
    bool holds = false;                ///< Is on hold, by its direction or its address.
    bool suppresses_silence = false;   ///< Has a=silenceSupp:on.

    /// The media's cryptos without a mandatory session parameter, borrowed.
    std::vector<const QOVA_Crypto*> cryptos;
};

/// A description that was read. It does not point into the text.
struct Reading {
    std::unique_ptr<QOVA_Capability> capability;  ///< Never null.
    Origin origin = {};                           ///< From o=.
    bool suppresses_silence = false;              ///< The session has a=silenceSupp:on.
    std::vector<ReadLine> lines;                  ///< One for each media line.
    Diagnostics diagnostics;                      ///< Warnings; none if the reading is strict.
};

/// Reads a description. The time is linear in the length of its text, except for a description that
/// is refused or has warnings: that can take n log n.
///
/// Throws Refusal for a description that sofia-sip's parser refuses, for a media line without an
/// address, and, if `strictness` is STRICT, for the first warning.
Reading read(const Description& description, Role role, Strictness strictness);

}  // namespace sdp

#endif
