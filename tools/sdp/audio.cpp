#include "sdp/audio.h"

#include <algorithm>
#include <climits>

#include "netconf/sdp.h"
#include "sdp/formats.h"
#include "sdp/media.h"
#include "sdp/parser.h"

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

QOVA_Codec codec_of(const sdp_rtpmap_t& payload) {
    for (const CodecName& name : codec_names) {
        if (same(text_of(payload.rm_encoding), name.encoding) && payload.rm_rate == name.rate) {
            return name.codec;
        }
    }
    const unsigned first_dynamic = 96;
    // A static number could be mistaken for an enumerator.
    return payload.rm_pt >= first_dynamic ? static_cast<QOVA_Codec>(payload.rm_pt) : CODEC_NIL;
}

bool is_tone_event(const sdp_rtpmap_t& payload) {
    return same(text_of(payload.rm_encoding), "telephone-event");
}

// The payload type of the tone events with the clock rate of a payload.
QOVA_Codec tone_events_for(const sdp_rtpmap_t& payload,
                           const std::vector<const sdp_rtpmap_t*>& payloads) {
    const auto found =
        std::find_if(payloads.begin(), payloads.end(), [&payload](const sdp_rtpmap_t* candidate) {
            return is_tone_event(*candidate) && candidate->rm_rate == payload.rm_rate;
        });
    return found == payloads.end() ? CODEC_NIL : static_cast<QOVA_Codec>((*found)->rm_pt);
}

// Whether the payload has an annex that does voice activity detection.
bool has_annex(QOVA_Codec codec) {
    return codec == CODEC_G729 || codec == CODEC_G729A || codec == CODEC_G723;
}

// A parameter of a payload; those of AMR-WB and Opus go to the line if none went there yet.
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

// Whole milliseconds; RFC 8866 allows fractions, which the model has no room for.
int milliseconds(const Line& line, const std::string& what, std::vector<Warning>& warnings) {
    const std::vector<std::string_view> parts = split(line.value, ".", 2);
    const bool is_real = parts.size() == 2 && !parts[1].empty() &&
                         parts[1].find_first_not_of("0123456789") == std::string_view::npos;
    const auto whole = needed_number(line.number, what, is_real ? parts[0] : line.value, INT_MAX);
    if (is_real && parts[1].find_first_not_of('0') != std::string_view::npos) {
        warnings.push_back({line.number, what + ": only whole milliseconds are taken"});
    }
    return static_cast<int>(whole);
}

}  // namespace

std::vector<unsigned> read_audio(const sdp_media_t& parsed, const Section& section,
                                 std::optional<bool> silence, QOVA_Media& media,
                                 std::vector<Warning>& warnings) {
    int framing = 0;
    int max_framing = 0;
    for (const Line& line : section) {
        tolerate(warnings, [&] {
            if (same(line.name, "ptime")) {
                framing = milliseconds(line, "a=ptime", warnings);
            } else if (same(line.name, "maxptime")) {
                max_framing = milliseconds(line, "a=maxptime", warnings);
            }
        });
    }
    const std::vector<Fmtp> fmtps = fmtps_of(section, warnings);
    const std::vector<const sdp_rtpmap_t*> payloads = payloads_of(parsed);
    std::vector<unsigned> types;
    for (const sdp_rtpmap_t* payload : payloads) {
        if (is_tone_event(*payload)) {
            continue;
        }
        types.push_back(payload->rm_pt);
        const QOVA_Codec codec = codec_of(*payload);
        const bool is_first_of_codec = media.find(codec) == nullptr;
        auto& audio = append_attribute<QOVA_AudioAttribute>(media, QOVA_Media::AT_AUDIO);
        audio.codec = codec;
        audio.framing = framing;
        audio.mxFraming = max_framing;
        audio.mf = tone_events_for(*payload, payloads);
        audio.vad = silence.value_or(has_annex(codec));
        if (codec == CODEC_G722_2 && is_first_of_codec) {
            media.amrwbParam->payloadType = static_cast<int>(payload->rm_pt);
            if (const auto channels = number(text_of(payload->rm_params), 6)) {
                media.amrwbParam->channels = static_cast<int>(*channels);
            }
        }
        for (const Fmtp& fmtp : fmtps) {
            if (fmtp.payload == payload->rm_pt) {
                for (const Parameter& parameter : fmtp.parameters) {
                    tolerate(warnings, [&] {
                        read_parameter(parameter, codec, is_first_of_codec, media, audio.vad);
                    });
                }
            }
        }
    }
    return types;
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
