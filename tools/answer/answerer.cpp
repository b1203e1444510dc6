#include "answer/answerer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <system_error>
#include <utility>

#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/ownership.h"
#include "sdp/audio.h"
#include "sdp/crypto.h"
#include "sdp/strings.h"
#include "sdp/writer.h"

namespace sdp {
namespace {

// Why a line is rejected; null if it is accepted.
using Reason = const char*;

// What is accepted of a line.
struct Accepted {
    std::unique_ptr<QOVA_Media> media;
    std::vector<unsigned> payloads;
};

template <class T>
bool contains(const std::vector<T>& list, T value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

// Keeps the payloads of the policy's codecs, and their tone events.
Reason choose_codecs(const ReadLine& line, const Policy& policy, Accepted& accepted) {
    QOVA_Media& media = *accepted.media;
    std::vector<unsigned> tones;
    auto attribute = media.attributes.begin();
    for (const Payload& payload : line.payloads) {
        if (is_tone_event(payload)) {
            continue;  // it has no attribute
        }
        const auto& audio = static_cast<const QOVA_AudioAttribute&>(**attribute);
        if (!contains(policy.codecs, audio.codec)) {
            attribute = qova::erase(media.attributes, attribute);
            continue;
        }
        accepted.payloads.push_back(payload.type);
        if (audio.mf != CODEC_NIL) {
            tones.push_back(static_cast<unsigned>(audio.mf));
        }
        ++attribute;
    }
    if (accepted.payloads.empty()) {
        return "no codec in common";
    }
    // The parameters of a codec go with it.
    if (media.find(CODEC_G722_2) == nullptr) {
        qova::replace(media.amrwbParam, std::make_unique<Sdp::Sdp_Amrwb_Param>());
    }
    if (media.find(CODEC_OPUS) == nullptr) {
        qova::replace(media.opusParam, std::make_unique<Sdp::Sdp_Opus_Param>());
    }
    accepted.payloads.insert(accepted.payloads.end(), tones.begin(), tones.end());
    return nullptr;
}

// Answers the first a=crypto line with a suite of the policy.
Reason choose_crypto(const ReadLine& line, const Policy& policy, QOVA_Media& media) {
    for (const QOVA_Crypto* const offered : line.cryptos) {
        if (contains(policy.suites, offered->algo)) {
            auto& crypto = qova::append<QOVA_Crypto>(media.cryptos);
            media.cryptoCount = 1;
            crypto.tag = offered->tag;
            crypto.algo = offered->algo;
            QOVA_CryptoKey key = {};
            policy.random(key.key, key_size(crypto.algo));
            crypto.keys.push_back(key);
            return nullptr;
        }
    }
    return "no crypto suite in common";
}

Reason accept_audio(const ReadLine& line, const Policy& policy, Accepted& accepted) {
    const auto is = [&line](const char* transport) { return same(line.transport, transport); };
    const bool is_secure = is("RTP/SAVP") || is("RTP/SAVPF");
    if (!is_secure && !is("RTP/AVP") && !is("RTP/AVPF")) {
        return "unsupported transport";
    }
    if (const Reason reason = choose_codecs(line, policy, accepted)) {
        return reason;
    }
    return is_secure ? choose_crypto(line, policy, *accepted.media) : nullptr;
}

Reason accept_fax(const ReadLine& line, const Policy& policy) {
    return !policy.fax                      ? "fax is disabled"
           : !same(line.transport, "udptl") ? "unsupported transport"
                                            : nullptr;
}

// Gives a media the ports of its number among those of its type, so that they are the same in a
// re-INVITE.
Reason set_ports(QOVA_Media& media, std::size_t number) {
    const std::size_t base = media.mediaType == QOVA_Media::MT_FAX
                                 ? QOVA_Capability::FAX_PORT_BASE
                                 : QOVA_Capability::AUDIO_PORT_BASE;
    const std::size_t port = base + 2 * number;
    if (port > 65534) {
        return "no port left";
    }
    media.sndPort = media.rcvPort = static_cast<unsigned short>(port);
    media.sndPort2 = media.rcvPort2 = static_cast<unsigned short>(port + 1);
    return nullptr;
}

Reason accept(const ReadLine& line, const Policy& policy, std::size_t number, Accepted& accepted) {
    if (line.media == nullptr) {
        return "unsupported media type";
    }
    const QOVA_Media& offered = *line.media;
    const IPAddress& own = policy.address.ip();
    if (offered.address->IsAny() == 0 &&
        (offered.address->IsMulticast() || offered.address->Family() != own.Family())) {
        return "unreachable address";
    }
    accepted.media = std::make_unique<QOVA_Media>(offered);
    QOVA_Media& media = *accepted.media;
    while (!media.cryptos.empty()) {  // the answer has its own
        qova::erase(media.cryptos, media.cryptos.begin());
    }
    media.cryptoCount = 0;
    const Reason reason = media.mediaType == QOVA_Media::MT_AUDIO
                              ? accept_audio(line, policy, accepted)
                          : media.mediaType == QOVA_Media::MT_FAX ? accept_fax(line, policy)
                                                                  : "unsupported media type";
    if (reason != nullptr) {
        return reason;
    }
    qova::replace(media.address, std::unique_ptr<INetAddress>(own.Copy()));
    media.brcv = offered.bsnd;
    media.bsnd = !line.holds;
    return set_ports(media, number);
}

// Returns true if the answer has audio lines and receives nothing on any of them.
bool is_held(const QOVA_Capability& answer) {
    const auto audio = answer.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED);
    return !audio.empty() && std::none_of(audio.begin(), audio.end(),
                                          [](const QOVA_Media* media) { return media->brcv; });
}

}  // namespace

void random_bytes(unsigned char* to, std::size_t size) {
    if (::getentropy(to, size) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot get random bytes");
    }
}

Answer answer(const Reading& offer, const Policy& policy) {
    Answer result;
    result.capability = std::make_unique<QOVA_Capability>();
    QOVA_Capability& capability = *result.capability;
    capability.silenceSuppSdp = offer.suppresses_silence;
    std::map<QOVA_Media::e_MediaType, std::size_t> lines_of;
    for (const ReadLine& line : offer.lines) {
        const auto type = line.media == nullptr ? QOVA_Media::MT_NIL : line.media->mediaType;
        const std::size_t number = lines_of[type]++;
        Accepted accepted;
        const Reason reason =
            line.is_rejected ? "by the offer" : accept(line, policy, number, accepted);
        if (reason == nullptr) {
            result.accepts = true;
            capability.silenceSuppSdp |= type == QOVA_Media::MT_AUDIO && line.suppresses_silence;
        } else {
            accepted = {std::make_unique<QOVA_Media>(), {}};
            accepted.media->mediaType = type;
            accepted.media->mediaStatus = QOVA_Media::MS_REJECTED;
            if (!line.is_rejected) {
                result.diagnostics.push_back({line.number, Severity::REJECTION, reason});
            }
        }
        if (line.media == nullptr) {
            capability.passThrough += rejected_line(line);
        } else {
            qova::append(capability.filteredMedia, std::move(accepted.media));
        }
        result.payloads.push_back(std::move(accepted.payloads));
    }
    capability.hold = is_held(capability);
    return result;
}

}  // namespace sdp
