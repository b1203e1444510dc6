#include "offer.h"

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "socket/address.h"

namespace {

constexpr QOVA_Codec tone_events = static_cast<QOVA_Codec>(101);

template <class Attribute>
Attribute& append(QOVA_Media& media, QOVA_Media::e_AttributeType type) {
    auto* const attribute = new Attribute;
    media.attributes.push_back(attribute);
    attribute->status = QOVA_Media::MS_ACCEPTED;
    attribute->attributeType = type;
    return *attribute;
}

void append_crypto(QOVA_Media& media, g_crypto_suite suite) {
    auto* const crypto = new QOVA_Crypto;
    media.cryptos.push_back(crypto);
    crypto->tag = ++media.cryptoCount;
    crypto->algo = suite;
    crypto->keys.push_back({});
    crypto->keys.back().lifetime = 1048576;
    crypto->keys.back().mkiSize = 4;
    crypto->keys.back().mki[3] = static_cast<unsigned char>(crypto->tag);
}

void fill_audio(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_AUDIO;
    for (const QOVA_Codec codec : {CODEC_G711_ALAW, CODEC_G711_ULAW, CODEC_G723, CODEC_G729,
                                   CODEC_G722, CODEC_G722_2, CODEC_OPUS, tone_events}) {
        auto& audio = append<QOVA_AudioAttribute>(media, QOVA_Media::AT_AUDIO);
        audio.codec = codec;
        audio.framing = 20;
        audio.echo = true;
        audio.mxFraming = 40;
        audio.mf = tone_events;
    }
    append_crypto(media, CS_AES_CM_128_HMAC_SHA1_80);
    append_crypto(media, CS_AES_CM_128_HMAC_SHA1_32);
}

void fill_fax(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_FAX;
    auto& fax = append<QOVA_FaxAttribute>(media, QOVA_Media::AT_FAX);
    fax.red = 3;
    fax.mxRate = 14400;
    fax.rateMgt = RM_TRFTCF;
    fax.transport = FT_T38_UDPTL;
    fax.mxBuffer = 2000;
    fax.mxDgram = 512;
    fax.errCorr = 1;
}

void fill_video(QOVA_Media& media) {
    media.mediaType = QOVA_Media::MT_VIDEO;
    append<QOVA_VideoAttribute>(media, QOVA_Media::AT_VIDEO);
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
    media->sndPort = media->rcvPort = static_cast<unsigned short>(base + 2 * line);
    media->sndPort2 = media->rcvPort2 = static_cast<unsigned short>(base + 2 * line + 1);
    constexpr void (*fill[])(QOVA_Media&) = {fill_audio, fill_fax, fill_video};
    fill[line % 3](*media);
    return media;
}

// What follows the port of a line's description; `place` is its address and second port.
std::string audio_sdp(const QOVA_Media& media, const std::string& place) {
    const bool last = media.find(offer::last_codec) != nullptr;
    const std::string event = last ? "127" : "101";
    std::string text = " RTP/SAVP 8 0 4 18 9 104 105 " + event + place +
                       "a=rtpmap:8 PCMA/8000\r\na=rtpmap:0 PCMU/8000\r\na=rtpmap:4 G723/8000\r\n"
                       "a=rtpmap:18 G729/8000\r\na=rtpmap:9 G722/8000\r\n"
                       "a=rtpmap:104 AMR-WB/16000\r\na=rtpmap:105 opus/48000/2\r\na=rtpmap:" +
                       event + (last ? " red" : " telephone-event") +
                       "/8000\r\na=ptime:20\r\na=maxptime:40\r\n";
    for (const QOVA_Crypto* crypto : media.cryptos) {
        const std::string tag = std::to_string(crypto->tag);
        text += "a=crypto:" + tag + " " + Sdp::CryptoParser::enumToAlgo(crypto->algo) +
                " inline:AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA|2^20|" + tag + ":4\r\n";
    }
    return text;
}

std::string fax_sdp(const QOVA_Media& media, const std::string& place) {
    const bool last = media.find(offer::last_transport) != nullptr;
    return (last ? " tcp t38" : " udptl t38") + place +
           "a=T38FaxVersion:0\r\na=T38MaxBitRate:14400\r\na=T38FaxRateManagement:transferredTCF\r\n"
           "a=T38FaxMaxBuffer:2000\r\na=T38FaxMaxDatagram:512\r\n"
           "a=T38FaxUdpEC:t38UDPRedundancy\r\n";
}

}  // namespace

std::shared_ptr<QOVA_Capability> offer::make(int lines, bool with_parameters) {
    auto capability = std::make_shared<QOVA_Capability>();
    capability->offer = true;
    for (int line = 0; line < lines; ++line) {
        capability->filteredMedia.push_back(make_media(line, with_parameters));
    }
    if (const QOVA_Media* audio = last_of(QOVA_Media::MT_AUDIO, *capability)) {
        auto& payload = static_cast<QOVA_AudioAttribute&>(*audio->attributes.back());
        payload.codec = offer::last_codec;
        payload.mf = offer::last_codec;
    }
    if (const QOVA_Media* fax = last_of(QOVA_Media::MT_FAX, *capability)) {
        static_cast<QOVA_FaxAttribute&>(*fax->attributes.back()).transport = offer::last_transport;
    }
    return capability;
}

void offer::change_last_member(QOVA_Capability& capability) {
    QOVA_Media& last = *capability.filteredMedia.back();
    if (last.cryptos.empty()) {
        ++last.rcvPort2;
    } else {
        last.cryptos.back()->algo = CS_F8_128_HMAC_SHA1_80;
    }
}

QOVA_Media* offer::last_of(QOVA_Media::e_MediaType type, const QOVA_Capability& capability) {
    QOVA_Media* found = nullptr;
    for (QOVA_Media* media : capability.filteredMedia) {
        found = media->mediaType == type ? media : found;
    }
    return found;
}

std::string offer::sdp(const QOVA_Capability& capability) {
    std::string text = "v=0\r\no=- 1 1 IN IP4 10.1.0.1\r\ns=-\r\nt=0 0\r\n";
    for (const QOVA_Media* media : capability.filteredMedia) {
        const std::string port = std::to_string(media->rcvPort);
        const std::string place = "\r\nc=IN IP4 " + media->address->ToString() +
                                  "\r\na=rtcp:" + std::to_string(media->rcvPort2) + "\r\n";
        if (media->mediaType == QOVA_Media::MT_AUDIO) {
            text += "m=audio " + port + audio_sdp(*media, place);
        } else if (media->mediaType == QOVA_Media::MT_FAX) {
            text += "m=image " + port + fax_sdp(*media, place);
        } else {
            text += "m=video " + port + " RTP/AVP 98" + place + "a=rtpmap:98 H264/90000\r\n";
        }
    }
    return text;
}
