// sofia-sip's parser. It decides what is SDP, names the media and payloads and gives the
// directions.

#ifndef QOVA_TOOLS_SDP_PARSER_H
#define QOVA_TOOLS_SDP_PARSER_H

#include <sofia-sip/sdp.h>

#include <memory>
#include <string_view>
#include <vector>

#include "sdp/text.h"

namespace sdp {

struct FreeParser {
    void operator()(sdp_parser_t* parser) const { sdp_parser_free(parser); }
};
struct Parsed {
    std::unique_ptr<sdp_parser_t, FreeParser> parser;  // has a sdp_session()
    std::vector<std::vector<Warning>> warnings;        // of each section: the lines left out
};

// The session has a media for each m= line. Lines that the parser refuses and the model does not
// need are left out. Throws Refusal.
Parsed parse(const Description& description);

// One of the parser's texts, which are null where there is none.
std::string_view text_of(const char* text);

// The payloads of an m= line; one that stands there twice counts once.
std::vector<const sdp_rtpmap_t*> payloads_of(const sdp_media_t& media);

}  // namespace sdp

#endif
