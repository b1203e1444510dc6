// The payloads of an audio line: codecs, tone events, framing and voice activity detection.

#ifndef QOVA_EXAMPLES_SDP_AUDIO_H
#define QOVA_EXAMPLES_SDP_AUDIO_H

#include <sofia-sip/sdp.h>

#include <optional>
#include <vector>

#include "sdp_text.h"

class QOVA_Media;

namespace sdp {

// Silence suppression is what a=silenceSupp says for the line, if it does.
void read_audio(const sdp_media_t& parsed, const Section& section, std::optional<bool> silence,
                QOVA_Media& media, std::vector<Warning>& warnings);

}  // namespace sdp

#endif
