#include "answer/answerer.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>
#include <system_error>

#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "sdp/crypto.h"
#include "sdp/media.h"

namespace sdp {

namespace {

template <class T>
bool contains(const std::vector<T>& list, T value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

// Puts a new object in the place of one that a media owns.
template <class T>
void reset(T*& owned) {
    auto fresh = std::make_unique<T>();
    delete owned;
    owned = fresh.release();
}

// Leaves the payloads of the policy's codecs. Returns their types, and those of their tone events.
std::vector<unsigned> choose_codecs(const ReadLine& line, const Policy& policy, QOVA_Media& media) {
    std::vector<unsigned> accepted;
    std::vector<unsigned> tones;
    auto payload = line.payloads.begin();
    for (auto it = media.attributes.begin(); it != media.attributes.end(); ++payload) {
        auto& audio = static_cast<QOVA_AudioAttribute&>(**it);
        if (contains(policy.codecs, audio.codec)) {
            accepted.push_back(*payload);
            if (audio.mf != CODEC_NIL) {
                tones.push_back(static_cast<unsigned>(audio.mf));
            }
            ++it;
        } else {
            delete &audio;
            it = media.attributes.erase(it);
        }
    }
    if (accepted.empty()) {
        throw Refusal(line.number, "no codec in common");
    }
    // The parameters of a codec go with it.
    if (media.find(CODEC_G722_2) == nullptr) {
        reset(media.amrwbParam);
    }
    if (media.find(CODEC_OPUS) == nullptr) {
        reset(media.opusParam);
    }
    accepted.insert(accepted.end(), tones.begin(), tones.end());
    return accepted;
}

std::unique_ptr<QOVA_Crypto> choose_crypto(const ReadLine& line, const Policy& policy) {
    for (const QOVA_Crypto* const offered : line.cryptos) {
        if (contains(policy.suites, offered->algo)) {
            auto crypto = std::make_unique<QOVA_Crypto>();
            crypto->tag = offered->tag;
            crypto->algo = offered->algo;
            QOVA_CryptoKey key = {};
            policy.random(key.key, key_size(crypto->algo));
            crypto->keys.push_back(key);
            return crypto;
        }
    }
    throw Refusal(line.number, "no crypto suite in common");
}

void clear_cryptos(QOVA_Media& media) {
    for (const QOVA_Crypto* const crypto : media.cryptos) {
        delete crypto;
    }
    media.cryptos.clear();
    media.cryptoCount = 0;
}

void accept_audio(const ReadLine& line, const Policy& policy, QOVA_Media& media,
                  std::vector<unsigned>& payloads) {
    const auto is = [&line](const char* transport) { return same(line.transport, transport); };
    const bool is_secure = is("RTP/SAVP") || is("RTP/SAVPF");
    if (!is_secure && !is("RTP/AVP") && !is("RTP/AVPF")) {
        throw Refusal(line.number, "its transport is not served");
    }
    payloads = choose_codecs(line, policy, media);
    clear_cryptos(media);  // a plain line may have offered some, too
    if (is_secure) {
        append(media.cryptos, choose_crypto(line, policy));
        media.cryptoCount = 1;
    }
}

void accept_fax(const ReadLine& line, const Policy& policy, QOVA_Media& media) {
    if (!policy.fax) {
        throw Refusal(line.number, "no fax is wanted");
    }
    if (!same(line.transport, "udptl")) {
        throw Refusal(line.number, "its transport is not served");
    }
    clear_cryptos(media);
}

void set_ports(QOVA_Media& media, unsigned short port) {
    media.sndPort = media.rcvPort = port;
    media.sndPort2 = media.rcvPort2 = static_cast<unsigned short>(port + 1);
}

// The line's number among those of its kind gives its ports, so that they stay in a re-INVITE.
unsigned short port_of(const ReadLine& line, std::size_t earlier) {
    const std::size_t base = line.media->mediaType == QOVA_Media::MT_FAX
                                 ? QOVA_Capability::FAX_PORT_BASE
                                 : QOVA_Capability::AUDIO_PORT_BASE;
    if (base + 2 * earlier > 65534) {
        throw Refusal(line.number, "no port is left for it");
    }
    return static_cast<unsigned short>(base + 2 * earlier);
}

// Throws Refusal, which says why the line is rejected.
std::unique_ptr<QOVA_Media> accepted(const ReadLine& line, const Policy& policy,
                                     std::size_t earlier, std::vector<unsigned>& payloads) {
    if (line.media == nullptr) {
        throw Refusal(line.number, "its kind is not served");
    }
    const QOVA_Media& offered = *line.media;
    const bool is_known = offered.address->IsAny() == 0;
    if (is_known &&
        (offered.address->IsMulticast() || offered.address->Family() != policy.address.Family())) {
        throw Refusal(line.number, "its address cannot be reached");
    }
    auto media = std::make_unique<QOVA_Media>(offered);
    if (media->mediaType == QOVA_Media::MT_AUDIO) {
        accept_audio(line, policy, *media, payloads);
    } else if (media->mediaType == QOVA_Media::MT_FAX) {
        accept_fax(line, policy, *media);
    } else {
        throw Refusal(line.number, "its kind is not served");
    }
    set_ports(*media, port_of(line, earlier));
    set_address(*media, policy.address);
    media->brcv = offered.bsnd;
    media->bsnd = !line.holds;
    return media;
}

std::unique_ptr<QOVA_Media> rejected(QOVA_Media::e_MediaType kind) {
    auto media = std::make_unique<QOVA_Media>();
    media->mediaType = kind;
    media->mediaStatus = QOVA_Media::MS_REJECTED;
    return media;
}

std::string rejected_text(const ReadLine& line) {
    return "m=" + line.kind + " 0 " + line.transport + " " +
           (line.formats.empty() ? "0" : line.formats.front()) + "\r\n";
}

// What the answer itself says: whether it has audio lines, and all of them receive nothing.
bool is_held(const QOVA_Capability& answer) {
    bool has_audio = false;
    for (const QOVA_Media* const media :
         answer.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED)) {
        has_audio = true;
        if (media->brcv) {
            return false;
        }
    }
    return has_audio;
}

}  // namespace

void random_bytes(unsigned char* to, std::size_t size) {
    if (::getentropy(to, size) != 0) {
        throw std::system_error(errno, std::generic_category(), "no random bytes");
    }
}

Answer answer(const Reading& offer, const Policy& policy) {
    Answer answer;
    answer.capability = std::make_unique<QOVA_Capability>();
    QOVA_Capability& capability = *answer.capability;
    capability.silenceSuppSdp = offer.suppresses_silence;
    std::map<QOVA_Media::e_MediaType, std::size_t> lines_of;
    for (const ReadLine& line : offer.lines) {
        std::vector<unsigned>& payloads = answer.payloads.emplace_back();
        const auto kind = line.media == nullptr ? QOVA_Media::MT_NIL : line.media->mediaType;
        const std::size_t earlier = lines_of[kind]++;
        std::unique_ptr<QOVA_Media> media;
        if (!line.is_rejected && tolerate(answer.rejections, [&] {
                media = accepted(line, policy, earlier, payloads);
            })) {
            answer.accepts = true;
            capability.silenceSuppSdp |= kind == QOVA_Media::MT_AUDIO && line.suppresses_silence;
        } else {
            payloads.clear();
            media = rejected(kind);
        }
        if (line.media == nullptr) {
            capability.passThrough += rejected_text(line);
        } else {
            append(capability.filteredMedia, std::move(media));
        }
    }
    capability.hold = is_held(capability);
    return answer;
}

}  // namespace sdp
