// Building blocks for tests: addresses, payloads, keys, and filled objects of every class.

#ifndef QOVA_TESTS_BUILDING_BLOCKS_H
#define QOVA_TESTS_BUILDING_BLOCKS_H

#include <memory>
#include <stdexcept>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/ownership.h"
#include "socket/address.h"

// ---- Pieces ----

inline IPAddress ip(const std::string& text) {
    IPAddress address;
    if (!IPAddress::Parse(text, address)) {
        throw std::invalid_argument(text);
    }
    return address;
}

inline UDPAddr endpoint(const char* text) {
    return {ip(text), 5060};
}

inline void set_address(QOVA_Media& media, const char* text) {
    qova::replace(media.address, std::make_unique<IPAddress>(ip(text)));
}

inline QOVA_Codec payload_type(int number) {
    return static_cast<QOVA_Codec>(number);
}

inline QOVA_AudioAttribute& append_audio(QOVA_Media& media, QOVA_Codec codec,
                                         QOVA_Codec mf = CODEC_NIL) {
    auto& audio = qova::append<QOVA_AudioAttribute>(media.attributes);
    audio.codec = codec;
    audio.mf = mf;
    return audio;
}

inline QOVA_FaxAttribute& append_fax(QOVA_Media& media, QOVA_FaxTransport transport) {
    auto& fax = qova::append<QOVA_FaxAttribute>(media.attributes);
    fax.transport = transport;
    return fax;
}

inline QOVA_Crypto& append_crypto(QOVA_Media& media, unsigned int tag) {
    auto& crypto = qova::append<QOVA_Crypto>(media.cryptos);
    crypto.tag = tag;
    return crypto;
}

template <class Media = QOVA_Media>
Media& append_media(QOVA_Capability& capability, QOVA_Media::e_MediaType type,
                    QOVA_Media::e_MediaStatus status = QOVA_Media::MS_ACCEPTED) {
    auto& media = qova::append<Media>(capability.filteredMedia);
    media.mediaType = type;
    media.mediaStatus = status;
    return media;
}

// A key whose material counts up from its first byte.
inline QOVA_CryptoKey key_of(unsigned int lifetime, unsigned char first_byte_of_mki,
                             unsigned char material) {
    QOVA_CryptoKey key = {};
    key.lifetime = lifetime;
    key.mkiSize = 1;
    key.mki[0] = first_byte_of_mki;
    for (unsigned char& byte : key.key) {
        byte = material++;
    }
    return key;
}

// Parameter objects are compared by identity: only without them can two media be equal.
inline QOVA_Media& drop_parameters(QOVA_Media& media) {
    qova::replace(media.amrwbParam, std::unique_ptr<Sdp::Sdp_Amrwb_Param>());
    qova::replace(media.opusParam, std::unique_ptr<Sdp::Sdp_Opus_Param>());
    return media;
}

// ---- Filled objects: each member differs from its default and, if possible, from the others ----

inline void fill_base(QOVA_MediaAttribute& attribute) {
    attribute.status = QOVA_Media::MS_MODIFIED;
    attribute.attributeType = static_cast<QOVA_Media::e_AttributeType>(-7);
}

inline void fill(QOVA_AudioAttribute& audio) {
    fill_base(audio);
    audio.codec = CODEC_G711_ULAW;
    audio.framing = 20;
    audio.vad = true;
    audio.echo = true;
    audio.mxFraming = 40;
    audio.mf = payload_type(101);
}

inline void fill(QOVA_VideoAttribute& video) {
    fill_base(video);
}

inline void fill(QOVA_FaxAttribute& fax) {
    fill_base(fax);
    fax.red = 3;
    fax.depth = 4;
    fax.mxRate = 14400;
    fax.rateMgt = RM_LOCALTCF;
    fax.transport = FT_T38_UDPTL;
    fax.fillBit = true;
    fax.transMMR = true;
    fax.transJBIG = true;
    fax.mxBuffer = 2000;
    fax.mxDgram = 512;
    fax.errCorr = 5;
}

inline void fill(QOVA_DataAttribute& data) {
    fill_base(data);
    data.type = 7;
}

inline void fill(QOVA_Crypto& crypto) {
    crypto.tag = 4294967295U;
    crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
    crypto.keys = {key_of(1048576, 1, 'a'), key_of(2097152, 2, 'A'), key_of(4294967295U, 3, 128)};
}

inline void fill(Sdp::Sdp_Amrwb_Param& parameters) {
    parameters.octetAlign = 1;
    parameters.modeSet = {0, 1, 2};
    parameters.modeChangePeriod = 3;
    parameters.modeChangeCapability = 4;
    parameters.modeChangeNeighbor = 5;
    parameters.crc = 6;
    parameters.robustSorting = 7;
    parameters.interleaving = 8;
    parameters.channels = 9;
    parameters.maxRed = 10;
    parameters.payloadType = 97;
}

inline void fill(Sdp::Sdp_Opus_Param& parameters) {
    parameters.maxPlaybackRate = 16000;
    parameters.spropMaxCaptureRate = 48000;
    parameters.maxAverageBitrate = 20000;
    parameters.stereo = true;
    parameters.cbr = true;
    parameters.useInbandFec = true;
    parameters.useDtx = true;
    parameters.maxPtime = 60;
    parameters.spropStereo = true;
}

// The texts are too long for a string's internal buffer, so they need an allocation.
inline void fill(QOVA_Media& media) {
    media.mediaStatus = QOVA_Media::MS_MODIFIED;
    media.mediaType = QOVA_Media::MT_AUDIO;
    fill(qova::append<QOVA_AudioAttribute>(media.attributes));
    fill(qova::append<QOVA_FaxAttribute>(media.attributes));
    fill(qova::append<QOVA_VideoAttribute>(media.attributes));
    fill(qova::append<QOVA_DataAttribute>(media.attributes));
    set_address(media, "2001:db8:1111:2222:3333:4444:5555:6666");
    media.bsnd = false;  // brcv stays true, to differ from it
    media.sndPort = 4000;
    media.rcvPort = 5000;
    media.sndPort2 = 4001;
    media.rcvPort2 = 5001;
    fill(*media.amrwbParam);
    fill(*media.opusParam);
    media.cryptoCount = 5;
    fill(qova::append<QOVA_Crypto>(media.cryptos));
}

inline void fill(QOVA_Capability& capability) {
    fill(qova::append<QOVA_Media>(capability.filteredMedia));
    append_fax(append_media(capability, QOVA_Media::MT_FAX, QOVA_Media::MS_REJECTED), FT_T38_TCP);
    capability.marked = true;
    capability.offer = true;
    capability.passThrough = "m=application 5000 udp wb\r\na=orient:portrait\r\n";
    capability.hold = true;
    capability.spare1 = 11;
    capability.spare2 = 12;
    capability.spare3 = 13;
    capability.silenceSuppSdp = true;
}

template <class Object>
std::unique_ptr<Object> full() {
    auto object = std::make_unique<Object>();
    fill(*object);
    return object;
}

#endif
