// The payloads of an audio line: codecs, tone events, framing and voice activity detection.

#ifndef QOVA_TOOLS_SDP_AUDIO_H
#define QOVA_TOOLS_SDP_AUDIO_H

#include <optional>
#include <string_view>
#include <vector>

#include "qova/enumerations.h"
#include "sdp/text.h"

class QOVA_Media;
struct sdp_media_s;  // sofia-sip's

namespace sdp {

// Silence suppression is what a=silenceSupp says for the line, if it does. Returns the payload type
// of each attribute.
std::vector<unsigned> read_audio(const sdp_media_s& parsed, const Section& section,
                                 std::optional<bool> silence, QOVA_Media& media,
                                 std::vector<Warning>& warnings);

// The codec of an encoding name.
std::optional<QOVA_Codec> codec_named(std::string_view encoding);

}  // namespace sdp

#endif
