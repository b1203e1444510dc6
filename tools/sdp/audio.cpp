#include "sdp/audio.h"

#include <algorithm>
#include <climits>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/ownership.h"
#include "sdp/formats.h"
#include "sdp/strings.h"

namespace sdp {
namespace {

struct CodecName {
    std::string_view encoding;
    unsigned long rate;
    QOVA_Codec codec;
};
constexpr CodecName codec_names[] = {
    {"PCMA", 8000, CODEC_G711_ALAW}, {"PCMU", 8000, CODEC_G711_ULAW}, {"G723", 8000, CODEC_G723},
    {"G729", 8000, CODEC_G729},      {"G729A", 8000, CODEC_G729A},    {"G722", 8000, CODEC_G722},
    {"G722", 16000, CODEC_G722},     {"AMR-WB", 16000, CODEC_G722_2}, {"opus", 48000, CODEC_OPUS},
};

QOVA_Codec codec_of(const Payload& payload) {
    for (const CodecName& name : codec_names) {
        if (same(payload.encoding, name.encoding) && payload.rate == name.rate) {
            return name.codec;
        }
    }
    const unsigned first_dynamic = 96;
    // A static payload type could equal an enumerator.
    return payload.type >= first_dynamic ? static_cast<QOVA_Codec>(payload.type) : CODEC_NIL;
}

// Returns the payload type of the tone events that have the clock rate of a payload.
QOVA_Codec tone_events_for(const Payload& payload, const std::vector<Payload>& payloads) {
    const auto found =
        std::find_if(payloads.begin(), payloads.end(), [&payload](const Payload& candidate) {
            return is_tone_event(candidate) && candidate.rate == payload.rate;
        });
    return found == payloads.end() ? CODEC_NIL : static_cast<QOVA_Codec>(found->type);
}

// Returns true if the codec has an annex for voice activity detection.
bool has_annex(QOVA_Codec codec) {
    return codec == CODEC_G729 || codec == CODEC_G729A || codec == CODEC_G723;
}

// Stores a parameter of a payload. The line has the parameters of its first AMR-WB and Opus
// payloads.
void read_parameter(const Parameter& parameter, QOVA_Codec codec, bool is_first_of_codec,
                    QOVA_Media& media, bool& vad) {
    if (has_annex(codec) || codec == CODEC_G722_2 || codec == CODEC_OPUS) {
        check_separator(parameter);
    }
    if (codec == CODEC_G729 || codec == CODEC_G729A) {
        read_annex(parameter, "annexb", vad);
    } else if (codec == CODEC_G723) {
        read_annex(parameter, "annexa", vad);
    } else if (codec == CODEC_G722_2 && is_first_of_codec) {
        read_amrwb(parameter, *media.amrwbParam);
    } else if (codec == CODEC_OPUS && is_first_of_codec) {
        read_opus(parameter, *media.opusParam);
    }
}

// RFC 8866 allows fractions of a millisecond, but the model cannot hold them.
int milliseconds(const Line& line, const std::string& what, Diagnostics& warnings) {
    const std::vector<std::string_view> parts = split(line.value, ".", 2);
    const bool is_real = parts.size() == 2 && !parts[1].empty() &&
                         parts[1].find_first_not_of("0123456789") == std::string_view::npos;
    const auto whole = required<int>(line.number, what + ": expected a number",
                                     is_real ? parts[0] : line.value, 0, INT_MAX);
    if (is_real && parts[1].find_first_not_of('0') != std::string_view::npos) {
        warnings.push_back(
            {line.number, Severity::WARNING, what + ": only whole milliseconds are used"});
    }
    return whole;
}

}  // namespace

void read_audio(const std::vector<Payload>& payloads, const Section& section,
                std::optional<bool> silence_suppression, QOVA_Media& media, Diagnostics& warnings) {
    int framing = 0;
    int max_framing = 0;
    for (const Line& line : section) {
        warn_of_refusal(warnings, [&] {
            if (same(line.name, "ptime")) {
                framing = milliseconds(line, "a=ptime", warnings);
            } else if (same(line.name, "maxptime")) {
                max_framing = milliseconds(line, "a=maxptime", warnings);
            }
        });
    }
    const std::vector<Parameter> parameters = parameters_of(section, warnings);
    for (const Payload& payload : payloads) {
        if (is_tone_event(payload)) {
            continue;
        }
        const QOVA_Codec codec = codec_of(payload);
        const bool is_first_of_codec = media.find(codec) == nullptr;
        auto& audio = qova::append<QOVA_AudioAttribute>(media.attributes);
        audio.codec = codec;
        audio.framing = framing;
        audio.mxFraming = max_framing;
        audio.mf = tone_events_for(payload, payloads);
        audio.vad = silence_suppression.value_or(has_annex(codec));
        if (codec == CODEC_G722_2 && is_first_of_codec) {
            media.amrwbParam->payloadType = static_cast<int>(payload.type);
            if (const auto channels = number(payload.parameters, 6)) {
                media.amrwbParam->channels = static_cast<int>(*channels);
            }
        }
        for (const Parameter& parameter : parameters) {
            if (parameter.payload == payload.type) {
                warn_of_refusal(warnings, [&] {
                    read_parameter(parameter, codec, is_first_of_codec, media, audio.vad);
                });
            }
        }
    }
}

bool is_tone_event(const Payload& payload) {
    return same(payload.encoding, "telephone-event");
}

std::optional<QOVA_Codec> codec_named(std::string_view encoding) {
    for (const CodecName& name : codec_names) {
        if (same(encoding, name.encoding)) {
            return name.codec;
        }
    }
    return std::nullopt;
}

}  // namespace sdp
