#include "sdp_reader.h"

#include <algorithm>
#include <climits>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/media.h"
#include "sdp_crypto.h"
#include "sdp_formats.h"
#include "sdp_parser.h"

namespace sdp {

namespace {

template <class T, class Base>
T& append(std::list<Base*>& list, std::unique_ptr<T> object) {
    list.push_back(object.get());
    return *object.release();
}

template <class T>
T& append_attribute(QOVA_Media& media, QOVA_Media::e_AttributeType type) {
    T& attribute = append(media.attributes, std::make_unique<T>());
    attribute.attributeType = type;
    attribute.status = media.mediaStatus;
    return attribute;
}

// a=silenceSupp (RFC 3108); its first value says whether it is on. The last such line counts.
std::optional<bool> silence_suppression(const Section& section) {
    std::optional<bool> found;
    for (const Line& line : section) {
        if (same(line.name, "silenceSupp")) {
            const std::string_view value = split(line.value, blanks).front();
            const bool on = same(value, "on");
            if (on || same(value, "off")) {
                found = on;
            } else {
                found.reset();
            }
        }
    }
    return found;
}

// --- Audio --------------------------------------------------------------------------------------

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

// A parameter of a payload; those of AMR-WB and Opus go to the line if none went there yet.
void read_parameter(const Parameter& parameter, QOVA_Codec codec, bool is_first_of_codec,
                    QOVA_Media& media, bool& vad) {
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

void read_audio(const sdp_media_t& parsed, const Section& section, std::optional<bool> silence,
                QOVA_Media& media) {
    int framing = 0;
    int max_framing = 0;
    for (const Line& line : section) {
        if (same(line.name, "ptime")) {
            framing = static_cast<int>(needed_number(line.number, "a=ptime", line.value, INT_MAX));
        } else if (same(line.name, "maxptime")) {
            max_framing =
                static_cast<int>(needed_number(line.number, "a=maxptime", line.value, INT_MAX));
        }
    }
    const std::vector<Fmtp> fmtps = fmtps_of(section);
    const std::vector<const sdp_rtpmap_t*> payloads = payloads_of(parsed);
    for (const sdp_rtpmap_t* payload : payloads) {
        if (is_tone_event(*payload)) {
            continue;
        }
        const QOVA_Codec codec = codec_of(*payload);
        const bool is_first_of_codec = media.find(codec) == nullptr;
        auto& audio = append_attribute<QOVA_AudioAttribute>(media, QOVA_Media::AT_AUDIO);
        audio.codec = codec;
        audio.framing = framing;
        audio.mxFraming = max_framing;
        audio.mf = tone_events_for(*payload, payloads);
        const bool has_annex = codec == CODEC_G729 || codec == CODEC_G729A || codec == CODEC_G723;
        audio.vad = silence.value_or(has_annex);
        if (codec == CODEC_G722_2 && is_first_of_codec) {
            media.amrwbParam->payloadType = static_cast<int>(payload->rm_pt);
            if (const auto channels = number(text_of(payload->rm_params), 6)) {
                media.amrwbParam->channels = static_cast<int>(*channels);
            }
        }
        for (const Fmtp& fmtp : fmtps) {
            if (fmtp.payload == payload->rm_pt) {
                for (const Parameter& parameter : fmtp.parameters) {
                    read_parameter(parameter, codec, is_first_of_codec, media, audio.vad);
                }
            }
        }
    }
}

// --- Fax, video, data ---------------------------------------------------------------------------

QOVA_FaxTransport fax_transport(std::string_view transport) {
    if (ends_in(transport, "udptl")) {
        return FT_T38_UDPTL;
    }
    return same(transport, "tcp") || same(transport, "tcptl") ? FT_T38_TCP : FT_NIL;
}

void read_fax(std::string_view transport, const Section& section, QOVA_Media& media) {
    auto& fax = append_attribute<QOVA_FaxAttribute>(media, QOVA_Media::AT_FAX);
    fax.transport = fax_transport(transport);
    for (const Line& line : section) {
        read_t38({line.number, line.name, line.value}, fax);
    }
}

void read_video(const sdp_media_t& parsed, const Section& section, QOVA_Media& media) {
    fmtps_of(section);  // which refuses broken ones
    for (std::size_t i = payloads_of(parsed).size(); i != 0; --i) {
        append_attribute<QOVA_VideoAttribute>(media, QOVA_Media::AT_VIDEO);
    }
}

void read_data(const sdp_media_t& parsed, QOVA_Media& media) {
    for (const sdp_rtpmap_t* payload : payloads_of(parsed)) {
        append_attribute<QOVA_DataAttribute>(media, QOVA_Media::AT_DATA).type =
            static_cast<int>(payload->rm_pt);
    }
    for (const sdp_list_t* format = parsed.m_format; format != nullptr; format = format->l_next) {
        append_attribute<QOVA_DataAttribute>(media, QOVA_Media::AT_DATA);
    }
}

// --- Media --------------------------------------------------------------------------------------

QOVA_Media::e_MediaType kind_of(const MediaLine& line, sdp_media_e type) {
    const auto is_t38 = [](std::string_view format) { return same(format, "t38"); };
    switch (type) {
        case sdp_media_audio:
            return line.is_rtp ? QOVA_Media::MT_AUDIO : QOVA_Media::MT_NIL;
        case sdp_media_video:
            return line.is_rtp ? QOVA_Media::MT_VIDEO : QOVA_Media::MT_NIL;
        case sdp_media_image:
            return fax_transport(line.transport) != FT_NIL &&
                           std::any_of(line.formats.begin(), line.formats.end(), is_t38)
                       ? QOVA_Media::MT_FAX
                       : QOVA_Media::MT_NIL;
        case sdp_media_application:
        case sdp_media_message:
        case sdp_media_data:
            return QOVA_Media::MT_DATA;
        default:
            return QOVA_Media::MT_NIL;
    }
}

void read_ports(const MediaLine& media_line, const Section& section, QOVA_Media& media) {
    media.mediaStatus = media_line.port == 0 ? QOVA_Media::MS_REJECTED : QOVA_Media::MS_ACCEPTED;
    if (media_line.port == 0) {
        return;
    }
    unsigned long rtcp_port = media_line.port == USHRT_MAX ? 0 : media_line.port + 1;
    const Line* seen = nullptr;
    for (const Line& attribute : section) {
        if (same(attribute.name, "rtcp")) {
            if (seen != nullptr) {
                throw Refusal(attribute.number, "the media has a second a=rtcp line");
            }
            seen = &attribute;
            rtcp_port = rtcp_line(attribute).port;
        }
    }
    if (media_line.port + media_line.more_ports > USHRT_MAX) {
        throw Refusal(section.front().number, "the ports run beyond 65535");
    }
    media.sndPort = media.rcvPort = static_cast<unsigned short>(media_line.port);
    media.sndPort2 = media.rcvPort2 = static_cast<unsigned short>(rtcp_port);
}

void read_address(const Line* of_session, const Section& section, QOVA_Media& media) {
    const Line* const own = first_connection(section);
    const Line* const line = own != nullptr ? own : of_session;
    if (line == nullptr) {
        if (media.mediaStatus == QOVA_Media::MS_REJECTED) {
            return;
        }
        throw Refusal(section.front().number, "no c= line gives this media an address");
    }
    INetAddress* const address = connection_address(*line).address.Copy();
    delete media.address;
    media.address = address;
}

// What the session says for the lines that do not say it themselves.
struct SessionDefaults {
    const Line* connection;
    std::optional<bool> silence;
    sdp_mode_t mode;
};

// Reads a line of a known kind; the media is new.
void read_media(const SessionDefaults& defaults, const MediaLine& line, const Section& section,
                const sdp_media_t& parsed, QOVA_Media& media) {
    read_ports(line, section, media);
    read_address(defaults.connection, section, media);
    const unsigned mode = sdp_attribute_mode(parsed.m_attributes, defaults.mode);
    media.bsnd = (mode & sdp_sendonly) != 0;
    media.brcv = (mode & sdp_recvonly) != 0;
    if (media.mediaType == QOVA_Media::MT_AUDIO) {
        const std::optional<bool> silence = silence_suppression(section);
        read_audio(parsed, section, silence ? silence : defaults.silence, media);
    } else if (media.mediaType == QOVA_Media::MT_FAX) {
        read_fax(line.transport, section, media);
    } else if (media.mediaType == QOVA_Media::MT_VIDEO) {
        read_video(parsed, section, media);
    } else {
        read_data(parsed, media);
    }
    for (const Line& attribute : section) {
        if (same(attribute.name, "crypto")) {
            append(media.cryptos, read_crypto(attribute));
            ++media.cryptoCount;
        }
    }
}

bool is_on_hold(const QOVA_Capability& capability) {
    const std::list<QOVA_Media*> audio =
        capability.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED);
    return !audio.empty() && std::all_of(audio.begin(), audio.end(), [](const QOVA_Media* media) {
        return !media->brcv || media->address->IsAny() != 0;
    });
}

}  // namespace

Reading read(const Description& description, Role role, Strictness strictness) {
    const Parsed parsed = parse(description);
    const sdp_session_t& parsed_session = *sdp_session(parsed.get());
    const Section& session = description.sections.front();
    const SessionDefaults defaults = {
        first_connection(session), silence_suppression(session),
        sdp_attribute_mode(parsed_session.sdp_attributes, sdp_sendrecv)};
    Reading reading;
    reading.capability = std::make_unique<QOVA_Capability>();
    QOVA_Capability& capability = *reading.capability;
    capability.offer = role == Role::OFFER;
    capability.silenceSuppSdp = defaults.silence.value_or(false);
    const sdp_media_t* parsed_media = parsed_session.sdp_media;
    for (auto section = description.sections.begin() + 1; section != description.sections.end();
         ++section, parsed_media = parsed_media->m_next) {
        if (silence_suppression(*section).value_or(false)) {
            capability.silenceSuppSdp = true;
        }
        const MediaLine line = media_line(section->front());
        const QOVA_Media::e_MediaType kind = kind_of(line, parsed_media->m_type);
        if (kind == QOVA_Media::MT_NIL) {
            capability.passThrough += without_keys(description, *section);
            reading.media.push_back(nullptr);
        } else {
            QOVA_Media& media = append(capability.filteredMedia, std::make_unique<QOVA_Media>());
            media.mediaType = kind;
            read_media(defaults, line, *section, *parsed_media, media);
            reading.media.push_back(&media);
        }
    }
    capability.hold = is_on_hold(capability);
    std::stable_sort(
        reading.warnings.begin(), reading.warnings.end(),
        [](const Warning& left, const Warning& right) { return left.line < right.line; });
    if (strictness == Strictness::STRICT && !reading.warnings.empty()) {
        throw Refusal(reading.warnings.front().line, reading.warnings.front().message);
    }
    return reading;
}

}  // namespace sdp
