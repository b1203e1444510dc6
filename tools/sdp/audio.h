// The payloads of an audio line: codecs, tone events, framing and voice activity detection.

#ifndef QOVA_TOOLS_SDP_AUDIO_H
#define QOVA_TOOLS_SDP_AUDIO_H

#include <optional>
#include <string_view>
#include <vector>

#include "qova/enumerations.h"
#include "qova/media.h"
#include "sdp/text.h"

namespace sdp {

// Appends the attributes of an audio line: one for each payload that is not a tone event.
// `silence_suppression` is the value of a=silenceSupp, if there is one.
void read_audio(const std::vector<Payload>& payloads, const Section& section,
                std::optional<bool> silence_suppression, QOVA_Media& media, Diagnostics& warnings);

// Returns true for telephone-event (RFC 4733).
bool is_tone_event(const Payload& payload);

// Returns the codec with an encoding name, such as "PCMA".
std::optional<QOVA_Codec> codec_named(std::string_view encoding);

}  // namespace sdp

#endif
