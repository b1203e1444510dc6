// sofia-sip's parser, without its types. It decides what is valid SDP, names the payloads and gives
// the directions.

#ifndef QOVA_TOOLS_SDP_PARSER_H
#define QOVA_TOOLS_SDP_PARSER_H

#include <vector>

#include "sdp/text.h"

namespace sdp {

// A media line.
struct ParsedMedia {
    bool sends;  // its direction, or the session's
    bool receives;
    std::vector<Payload> payloads;  // of RTP; each payload type once
};

struct Parsed {
    Origin origin;
    std::vector<ParsedMedia> media;     // one for each media line
    std::vector<Diagnostics> warnings;  // for each section: the lines that the parser ignores
};

// Ignores the lines that the parser refuses and the model does not need. Throws Refusal.
Parsed parse(const Description& description);

}  // namespace sdp

#endif
