// The sizes of the public classes, the offsets of their members and the numbers of their
// enumerators, asserted when this is compiled. Programs read the members directly, so each line is
// ABI.

#include <cstddef>
#include <type_traits>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"

// The classes have virtual functions, where offsetof is only conditionally supported: GCC and Clang
// do.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace {

// A value for 64-bit targets and one for 32-bit targets.
constexpr std::size_t bits(std::size_t on_64, std::size_t on_32) {
    return sizeof(void*) == 8 ? on_64 : on_32;
}

static_assert(sizeof(std::list<int>) == bits(24, 12), "std::list of the C++11 ABI");
static_assert(sizeof(std::string) == bits(32, 24), "std::string of the C++11 ABI");

static_assert(sizeof(QOVA_MediaAttribute) == bits(16, 12), "QOVA_MediaAttribute");
static_assert(offsetof(QOVA_MediaAttribute, status) == bits(8, 4), "status");
static_assert(offsetof(QOVA_MediaAttribute, attributeType) == bits(12, 8), "attributeType");

static_assert(sizeof(QOVA_AudioAttribute) == bits(40, 32), "QOVA_AudioAttribute");
static_assert(offsetof(QOVA_AudioAttribute, codec) == bits(16, 12), "codec");
static_assert(offsetof(QOVA_AudioAttribute, framing) == bits(20, 16), "framing");
static_assert(offsetof(QOVA_AudioAttribute, vad) == bits(24, 20), "vad");
static_assert(offsetof(QOVA_AudioAttribute, echo) == bits(25, 21), "echo");
static_assert(offsetof(QOVA_AudioAttribute, mxFraming) == bits(28, 24), "mxFraming");
static_assert(offsetof(QOVA_AudioAttribute, mf) == bits(32, 28), "mf");

static_assert(sizeof(QOVA_VideoAttribute) == bits(16, 12), "QOVA_VideoAttribute");

static_assert(sizeof(QOVA_FaxAttribute) == bits(56, 48), "QOVA_FaxAttribute");
static_assert(offsetof(QOVA_FaxAttribute, red) == bits(16, 12), "red");
static_assert(offsetof(QOVA_FaxAttribute, depth) == bits(20, 16), "depth");
static_assert(offsetof(QOVA_FaxAttribute, mxRate) == bits(24, 20), "mxRate");
static_assert(offsetof(QOVA_FaxAttribute, rateMgt) == bits(28, 24), "rateMgt");
static_assert(offsetof(QOVA_FaxAttribute, transport) == bits(32, 28), "transport");
static_assert(offsetof(QOVA_FaxAttribute, fillBit) == bits(36, 32), "fillBit");
static_assert(offsetof(QOVA_FaxAttribute, transMMR) == bits(37, 33), "transMMR");
static_assert(offsetof(QOVA_FaxAttribute, transJBIG) == bits(38, 34), "transJBIG");
static_assert(offsetof(QOVA_FaxAttribute, mxBuffer) == bits(40, 36), "mxBuffer");
static_assert(offsetof(QOVA_FaxAttribute, mxDgram) == bits(44, 40), "mxDgram");
static_assert(offsetof(QOVA_FaxAttribute, errCorr) == bits(48, 44), "errCorr");

static_assert(sizeof(QOVA_DataAttribute) == bits(24, 16), "QOVA_DataAttribute");
static_assert(offsetof(QOVA_DataAttribute, type) == bits(16, 12), "type");

static_assert(sizeof(QOVA_CryptoKey) == 60, "QOVA_CryptoKey");
static_assert(offsetof(QOVA_CryptoKey, lifetime) == 0, "lifetime");
static_assert(offsetof(QOVA_CryptoKey, mkiSize) == 4, "mkiSize");
static_assert(offsetof(QOVA_CryptoKey, mki) == 5, "mki");
static_assert(offsetof(QOVA_CryptoKey, key) == 13, "key");

static_assert(sizeof(QOVA_Crypto) == bits(40, 24), "QOVA_Crypto");
static_assert(offsetof(QOVA_Crypto, tag) == bits(8, 4), "tag");
static_assert(offsetof(QOVA_Crypto, algo) == bits(12, 8), "algo");
static_assert(offsetof(QOVA_Crypto, keys) == bits(16, 12), "keys");

static_assert(sizeof(QOVA_Media) == bits(112, 64), "QOVA_Media");
static_assert(offsetof(QOVA_Media, mediaStatus) == bits(8, 4), "mediaStatus");
static_assert(offsetof(QOVA_Media, mediaType) == bits(12, 8), "mediaType");
static_assert(offsetof(QOVA_Media, attributes) == bits(16, 12), "attributes");
static_assert(offsetof(QOVA_Media, address) == bits(40, 24), "address");
static_assert(offsetof(QOVA_Media, bsnd) == bits(48, 28), "bsnd");
static_assert(offsetof(QOVA_Media, brcv) == bits(49, 29), "brcv");
static_assert(offsetof(QOVA_Media, sndPort) == bits(50, 30), "sndPort");
static_assert(offsetof(QOVA_Media, rcvPort) == bits(52, 32), "rcvPort");
static_assert(offsetof(QOVA_Media, sndPort2) == bits(54, 34), "sndPort2");
static_assert(offsetof(QOVA_Media, rcvPort2) == bits(56, 36), "rcvPort2");
static_assert(offsetof(QOVA_Media, amrwbParam) == bits(64, 40), "amrwbParam");
static_assert(offsetof(QOVA_Media, opusParam) == bits(72, 44), "opusParam");
static_assert(offsetof(QOVA_Media, cryptoCount) == bits(80, 48), "cryptoCount");
static_assert(offsetof(QOVA_Media, cryptos) == bits(88, 52), "cryptos");

static_assert(sizeof(QOVA_Capability) == bits(72, 48), "QOVA_Capability");
static_assert(offsetof(QOVA_Capability, filteredMedia) == 0, "filteredMedia");
static_assert(offsetof(QOVA_Capability, marked) == bits(24, 12), "marked");
static_assert(offsetof(QOVA_Capability, offer) == bits(25, 13), "offer");
static_assert(offsetof(QOVA_Capability, passThrough) == bits(32, 16), "passThrough");
static_assert(offsetof(QOVA_Capability, hold) == bits(64, 40), "hold");
static_assert(offsetof(QOVA_Capability, spare1) == bits(65, 41), "spare1");
static_assert(offsetof(QOVA_Capability, spare2) == bits(66, 42), "spare2");
static_assert(offsetof(QOVA_Capability, spare3) == bits(67, 43), "spare3");
static_assert(offsetof(QOVA_Capability, silenceSuppSdp) == bits(68, 44), "silenceSuppSdp");

static_assert(QOVA_Capability::AUDIO_PORT_BASE == 32000, "AUDIO_PORT_BASE");
static_assert(QOVA_Capability::FAX_PORT_BASE == 6666, "FAX_PORT_BASE");

template <class Enumeration>
constexpr bool is_int() {
    return std::is_same<std::underlying_type_t<Enumeration>, int>::value;
}

static_assert(is_int<QOVA_Codec>() && is_int<QOVA_FaxTransport>() && is_int<QOVA_EarlyMedia>() &&
                  is_int<QOVA_FaxRateMgt>() && is_int<QOVA_Media::e_MediaType>() &&
                  is_int<QOVA_Media::e_MediaStatus>() && is_int<QOVA_Media::e_AttributeType>() &&
                  is_int<g_crypto_suite>(),
              "every enumeration stores any int");
static_assert(CODEC_NIL == 0 && CODEC_G711_ALAW == 1 && CODEC_G711_ULAW == 2 && CODEC_G723 == 3 &&
                  CODEC_G729 == 4 && CODEC_G729A == 5 && CODEC_G711_NIL == 6 &&
                  CODEC_G729_NIL == 7 && CODEC_G722 == 8 && CODEC_G722_2 == 9 && CODEC_OPUS == 10,
              "QOVA_Codec");
static_assert(FT_NIL == 0 && FT_T38_UDPTL == 1 && FT_T38_TCP == 2, "QOVA_FaxTransport");
static_assert(EM_NIL == 0 && EM_SENDRECV == 1 && EM_SENDONLY == 2 && EM_RECVONLY == 3 &&
                  EM_INACTIVE == 4,
              "QOVA_EarlyMedia");
static_assert(RM_NIL == 0 && RM_TRFTCF == 1 && RM_LOCALTCF == 2, "QOVA_FaxRateMgt");
static_assert(QOVA_Media::MT_NIL == 0 && QOVA_Media::MT_AUDIO == 1 && QOVA_Media::MT_VIDEO == 2 &&
                  QOVA_Media::MT_FAX == 3 && QOVA_Media::MT_DATA == 4,
              "e_MediaType");
static_assert(QOVA_Media::MS_UNKNOWN == 0 && QOVA_Media::MS_ACCEPTED == 1 &&
                  QOVA_Media::MS_REJECTED == 2 && QOVA_Media::MS_MODIFIED == 3,
              "e_MediaStatus");
static_assert(QOVA_Media::AT_NIL == 0 && QOVA_Media::AT_AUDIO == 1 && QOVA_Media::AT_VIDEO == 2 &&
                  QOVA_Media::AT_FAX == 3 && QOVA_Media::AT_DATA == 4,
              "e_AttributeType");

}  // namespace
