#include "offer.h"

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "socket/address.h"

namespace {

constexpr QOVA_Codec tone_events = static_cast<QOVA_Codec>(101);

QOVA_AudioAttribute* make_audio(QOVA_Codec codec) {
    auto* const audio = new QOVA_AudioAttribute;
    audio->status = QOVA_Media::MS_ACCEPTED;
    audio->attributeType = QOVA_Media::AT_AUDIO;
    audio->codec = codec;
    audio->framing = 20;
    audio->echo = true;
    audio->mxFraming = 40;
    audio->mf = tone_events;
    return audio;
}

QOVA_Crypto* make_crypto(unsigned int tag, g_crypto_suite suite) {
    auto* const crypto = new QOVA_Crypto;
    crypto->tag = tag;
    crypto->algo = suite;
    QOVA_CryptoKey key = {};
    key.lifetime = 1048576;
    key.mkiSize = 4;
    key.mki[3] = static_cast<unsigned char>(tag);
    crypto->keys.push_back(key);
    return crypto;
}

void fill_audio(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_AUDIO;
    for (const QOVA_Codec codec : {CODEC_G711_ALAW, CODEC_G711_ULAW, CODEC_G723, CODEC_G729,
                                   CODEC_G722, CODEC_G722_2, CODEC_OPUS, tone_events}) {
        media.attributes.push_back(make_audio(codec));
    }
    media.cryptoCount = 2;
    media.cryptos.push_back(make_crypto(1, CS_AES_CM_128_HMAC_SHA1_80));
    media.cryptos.push_back(make_crypto(2, CS_AES_CM_128_HMAC_SHA1_32));
}

void fill_fax(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_FAX;
    auto* const fax = new QOVA_FaxAttribute;
    fax->status = QOVA_Media::MS_ACCEPTED;
    fax->attributeType = QOVA_Media::AT_FAX;
    fax->red = 3;
    fax->mxRate = 14400;
    fax->rateMgt = RM_TRFTCF;
    fax->transport = FT_T38_UDPTL;
    fax->mxBuffer = 2000;
    fax->mxDgram = 512;
    fax->errCorr = 1;
    media.attributes.push_back(fax);
}

void fill_video(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_VIDEO;
    auto* const video = new QOVA_VideoAttribute;
    video->status = QOVA_Media::MS_ACCEPTED;
    video->attributeType = QOVA_Media::AT_VIDEO;
    media.attributes.push_back(video);
}

QOVA_Media* make_media(int line, bool with_parameters) {
    auto* const media = new QOVA_Media;
    if (!with_parameters) {
        delete media->amrwbParam;
        media->amrwbParam = nullptr;
        delete media->opusParam;
        media->opusParam = nullptr;
    }
    IPAddress address;
    IPAddress::Parse("10.1." + std::to_string(line / 250) + "." + std::to_string(line % 250 + 1),
                     address);
    delete media->address;
    media->address = INetAddress::Clone(&address);
    const int base =
        line % 3 == 1 ? QOVA_Capability::FAX_PORT_BASE : QOVA_Capability::AUDIO_PORT_BASE;
    for (unsigned short* port :
         {&media->sndPort, &media->sndPort2, &media->rcvPort, &media->rcvPort2}) {
        *port = static_cast<unsigned short>(base + 2 * line +
                                            (port == &media->sndPort2 || port == &media->rcvPort2));
    }
    switch (line % 3) {
        case 0:
            fill_audio(*media);
            break;
        case 1:
            fill_fax(*media);
            break;
        default:
            fill_video(*media);
            break;
    }
    return media;
}

QOVA_Media* last_of(QOVA_Media::e_MediaType type, const QOVA_Capability& capability) {
    QOVA_Media* found = nullptr;
    for (QOVA_Media* media : capability.filteredMedia) {
        found = media->mediaType == type ? media : found;
    }
    return found;
}

QOVA_Capability make_capability(int lines, bool with_parameters) {
    QOVA_Capability capability;
    capability.offer = true;
    for (int line = 0; line < lines; ++line) {
        capability.filteredMedia.push_back(make_media(line, with_parameters));
    }
    if (const QOVA_Media* audio = last_of(QOVA_Media::MT_AUDIO, capability)) {
        auto& payload = static_cast<QOVA_AudioAttribute&>(*audio->attributes.back());
        payload.codec = offer::last_codec;
        payload.mf = offer::last_codec;
    }
    if (const QOVA_Media* fax = last_of(QOVA_Media::MT_FAX, capability)) {
        static_cast<QOVA_FaxAttribute&>(*fax->attributes.back()).transport = offer::last_transport;
    }
    return capability;
}

void change_last_member(QOVA_Media& last) {
    if (last.cryptos.empty()) {
        ++last.rcvPort2;
    } else {
        last.cryptos.back()->algo = CS_F8_128_HMAC_SHA1_80;
    }
}

std::string number(int value) {
    return std::to_string(value);
}

struct Payload {
    int type;
    const char* encoding;
};

Payload payload_of(QOVA_Codec codec) {
    switch (codec) {
        case CODEC_G711_ALAW:
            return {8, "PCMA/8000"};
        case CODEC_G711_ULAW:
            return {0, "PCMU/8000"};
        case CODEC_G723:
            return {4, "G723/8000"};
        case CODEC_G729:
            return {18, "G729/8000"};
        case CODEC_G722:
            return {9, "G722/8000"};
        case CODEC_G722_2:
            return {104, "AMR-WB/16000"};
        case CODEC_OPUS:
            return {105, "opus/48000/2"};
        default:
            return {codec, codec == tone_events ? "telephone-event/8000" : "red/8000"};
    }
}

std::string audio_sdp(const QOVA_Media& media) {
    std::string formats;
    std::string maps;
    for (const QOVA_MediaAttribute* attribute : media.attributes) {
        const Payload payload =
            payload_of(static_cast<const QOVA_AudioAttribute*>(attribute)->codec);
        formats += " " + number(payload.type);
        maps += "a=rtpmap:" + number(payload.type) + " " + payload.encoding + "\r\n";
    }
    std::string text = " RTP/SAVP" + formats + "\r\n" + maps + "a=ptime:20\r\na=maxptime:40\r\n";
    for (const QOVA_Crypto* crypto : media.cryptos) {
        text += "a=crypto:" + std::to_string(crypto->tag) + " " +
                Sdp::CryptoParser::enumToAlgo(crypto->algo) +
                " inline:AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA|2^20|" +
                number(crypto->keys.front().mki[3]) + ":4\r\n";
    }
    return text;
}

std::string fax_sdp(const QOVA_Media& media) {
    const auto& fax = static_cast<const QOVA_FaxAttribute&>(*media.attributes.front());
    return std::string(" ") + (fax.transport == FT_T38_TCP ? "tcp" : "udptl") +
           " t38\r\na=T38FaxVersion:0\r\na=T38MaxBitRate:" + std::to_string(fax.mxRate) +
           "\r\na=T38FaxRateManagement:transferredTCF\r\na=T38FaxMaxBuffer:" +
           std::to_string(fax.mxBuffer) + "\r\na=T38FaxMaxDatagram:" + std::to_string(fax.mxDgram) +
           "\r\na=T38FaxUdpEC:t38UDPRedundancy\r\n";
}

}  // namespace

QOVA_Capability offer::make(int lines) {
    return make_capability(lines, true);
}

offer::Pair::Pair(int lines, bool equal)
    : left(make_capability(lines, false)), right(make_capability(lines, false)) {
    if (!equal) {
        change_last_member(*right.filteredMedia.back());
    }
}

QOVA_Media* offer::last_audio(const QOVA_Capability& capability) {
    return last_of(QOVA_Media::MT_AUDIO, capability);
}

std::size_t offer::owned_by(const QOVA_Capability& capability) {
    std::size_t count = 0;
    for (const QOVA_Media* media : capability.filteredMedia) {
        // Itself, its address and both parameter objects; the nodes are those of lists.
        count += 1 + 4 + 2 * media->attributes.size() + 2 * media->cryptos.size() +
                 media->amrwbParam->modeSet.size();
        for (const QOVA_Crypto* crypto : media->cryptos) {
            count += crypto->keys.size();
        }
    }
    return count;
}

std::string offer::sdp(const QOVA_Capability& capability) {
    std::string text = "v=0\r\no=- 1 1 IN IP4 10.1.0.1\r\ns=-\r\nt=0 0\r\n";
    for (const QOVA_Media* media : capability.filteredMedia) {
        const std::string port = number(media->rcvPort);
        std::string rest;
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            text += "m=audio " + port;
            rest = audio_sdp(*media);
        } else if (media->mediaType == QOVA_Media::MT_FAX) {
            text += "m=image " + port;
            rest = fax_sdp(*media);
        } else {
            text += "m=video " + port;
            rest = " RTP/AVP 98\r\na=rtpmap:98 H264/90000\r\n";
        }
        const std::size_t end_of_line = rest.find('\n') + 1;
        text += rest.substr(0, end_of_line) + "c=IN IP4 " + media->address->ToString() + "\r\n" +
                rest.substr(end_of_line) + "a=rtcp:" + number(media->rcvPort2) + "\r\n";
    }
    return text;
}
