#include "literal_renderer.h"

#include <algorithm>
#include <locale>
#include <ostream>
#include <sstream>
#include <typeinfo>

#include "netconf/sdp.h"
#include "socket/address.h"

// No switch has a default: a new enumerator does not compile before it has its name here.
#pragma GCC diagnostic error "-Wswitch"

namespace {

// Without this a stream takes its digits from the global locale.
void use_plain_digits(std::ostringstream& stream) {
    stream.imbue(std::locale::classic());
}

std::string text_of(const QOVA_AudioAttribute& audio) {
    std::ostringstream stream;
    use_plain_digits(stream);
    stream << "\t\t -> ";
    stream << literal::name(audio.codec);
    stream << " / ";
    stream << literal::name(audio.status);
    stream << " / framing=" << audio.framing;
    stream << " / vad=" << audio.vad;
    stream << " / echo=" << audio.echo;
    stream << " / mxFraming=" << audio.mxFraming;
    stream << " / MF=" << static_cast<int>(audio.mf);
    stream << std::endl;
    return stream.str();
}

std::string text_of(const QOVA_FaxAttribute& fax) {
    std::ostringstream stream;
    use_plain_digits(stream);
    stream << "\t\t -> fax / transport=";
    stream << literal::name(fax.transport);
    stream << " / red=" << fax.red;
    stream << " / depth=" << fax.depth;
    stream << " / mxRate=" << fax.mxRate;
    stream << "\n\t\t    rateMgt=";
    stream << literal::name(fax.rateMgt);
    stream << " / fillBit=" << fax.fillBit;
    stream << " / transMMR=" << fax.transMMR;
    stream << " / transJBIG=" << fax.transJBIG;
    stream << "\n\t\t    mxBuffer=" << fax.mxBuffer;
    stream << "/ mxDgram=" << fax.mxDgram;
    stream << " / errCorr=" << fax.errCorr;
    stream << std::endl;
    return stream.str();
}

}  // namespace

std::string literal::name(QOVA_Codec codec) {
    switch (codec) {
        case CODEC_NIL:
            return "NIL";
        case CODEC_G711_ALAW:
            return "G711alaw";
        case CODEC_G711_ULAW:
            return "G711ulaw";
        case CODEC_G723:
            return "G723";
        case CODEC_G729:
            return "G729";
        case CODEC_G729A:
            return "G729a";
        case CODEC_G711_NIL:
            return "G711nil";
        case CODEC_G729_NIL:
            return "G729nil";
        case CODEC_G722:
            return "G722";
        case CODEC_G722_2:
            return "G722.2";
        case CODEC_OPUS:
            return "OPUS";
    }
    const int number = codec;
    return number < 96 || number > 127 ? "NIL" : "DYN(" + std::to_string(number) + ")";
}

const char* literal::name(QOVA_EarlyMedia direction) {
    switch (direction) {
        case EM_NIL:
            return "nil";
        case EM_SENDRECV:
            return "sendrecv";
        case EM_SENDONLY:
            return "sendonly";
        case EM_RECVONLY:
            return "recvonly";
        case EM_INACTIVE:
            return "inactive";
    }
    return "unknown???";
}

const char* literal::name(QOVA_Media::e_MediaType type) {
    switch (type) {
        case QOVA_Media::MT_NIL:
            return "Nil";
        case QOVA_Media::MT_AUDIO:
            return "Audio";
        case QOVA_Media::MT_VIDEO:
            return "Video";
        case QOVA_Media::MT_FAX:
            return "Fax";
        case QOVA_Media::MT_DATA:
            return "Data";
    }
    return "Nil";
}

const char* literal::name(QOVA_Media::e_MediaStatus status) {
    switch (status) {
        case QOVA_Media::MS_UNKNOWN:
            return "Unknown";
        case QOVA_Media::MS_ACCEPTED:
            return "Accepted";
        case QOVA_Media::MS_REJECTED:
            return "Rejected";
        case QOVA_Media::MS_MODIFIED:
            return "Modified";
    }
    return "Unknown";
}

const char* literal::name(QOVA_FaxTransport transport) {
    switch (transport) {
        case FT_NIL:
            return "NIL";
        case FT_T38_UDPTL:
            return "T38udptl";
        case FT_T38_TCP:
            return "T38tcp";
    }
    return "NIL";
}

const char* literal::name(QOVA_FaxRateMgt rate_management) {
    switch (rate_management) {
        case RM_NIL:
            return "NIL";
        case RM_TRFTCF:
            return "TRFTCF";
        case RM_LOCALTCF:
            return "LocalTCF";
    }
    return "NIL";
}

const char* literal::name(g_crypto_suite suite) {
    switch (suite) {
        case CS_NIL:
            return "NIL";
        case CS_AES_CM_128_HMAC_SHA1_80:
            return "AES_CM_128_HMAC_SHA1_80";
        case CS_AES_CM_128_HMAC_SHA1_32:
            return "AES_CM_128_HMAC_SHA1_32";
        case CS_F8_128_HMAC_SHA1_80:
            return "F8_128_HMAC_SHA1_80";
        case CS_SEED_CTR_128_HMAC_SHA1_80:
            return "SEED_CTR_128_HMAC_SHA1_80";
        case CS_SEED_128_CCM_80:
            return "SEED_128_CCM_80";
        case CS_SEED_128_GCM_96:
            return "SEED_128_GCM_96";
        case CS_AES_192_CM_HMAC_SHA1_80:
            return "AES_192_CM_HMAC_SHA1_80";
        case CS_AES_192_CM_HMAC_SHA1_32:
            return "AES_192_CM_HMAC_SHA1_32";
        case CS_AES_256_CM_HMAC_SHA1_80:
            return "AES_256_CM_HMAC_SHA1_80";
        case CS_AES_256_CM_HMAC_SHA1_32:
            return "AES_256_CM_HMAC_SHA1_32";
        case CS_AEAD_AES_128_GCM:
            return "AEAD_AES_128_GCM";
        case CS_AEAD_AES_256_GCM:
            return "AEAD_AES_256_GCM";
    }
    return "NIL";
}

std::string literal::text(const QOVA_MediaAttribute& attribute) {
    const std::type_info& type = typeid(attribute);
    if (type == typeid(QOVA_AudioAttribute)) {
        return text_of(static_cast<const QOVA_AudioAttribute&>(attribute));
    }
    if (type == typeid(QOVA_FaxAttribute)) {
        return text_of(static_cast<const QOVA_FaxAttribute&>(attribute));
    }
    if (type == typeid(QOVA_VideoAttribute)) {
        return "\t\t -> video : not implemented\n";
    }
    if (type == typeid(QOVA_DataAttribute)) {
        return "\t\t -> Data / type=NIL\n";
    }
    return attribute;
}

std::string literal::text(const QOVA_Crypto& crypto) {
    std::ostringstream stream;
    use_plain_digits(stream);
    stream << "\t\ttag=";
    stream << crypto.tag;
    stream << ", algo=";
    stream << name(crypto.algo);
    for (const QOVA_CryptoKey& key : crypto.keys) {
        stream << ", key=";
        stream << "(lifetime=";
        stream << key.lifetime;
        stream << " / mki=";
        for (const unsigned char byte : key.mki) {
            stream << static_cast<unsigned int>(byte);
        }
        stream << " / mkiSize=";
        stream << static_cast<unsigned int>(key.mkiSize);
        stream << ")";
    }
    stream << std::endl;
    return stream.str();
}

std::string literal::text(const QOVA_Media& media) {
    const std::string amrwb = *media.amrwbParam;
    const std::string opus = *media.opusParam;

    std::ostringstream header;
    use_plain_digits(header);
    header << "\t-> media(";
    header << name(media.mediaType);
    header << ")/";
    header << name(media.mediaStatus);
    header << " @";
    header << media.address->ToString();
    header << "/snd=";
    header << media.sndPort;
    header << "~";
    header << media.sndPort2;
    header << "/rcv=";
    header << media.rcvPort;
    header << "~";
    header << media.rcvPort2;
    header << "/bsnd=";
    header << media.bsnd;
    header << "/brcv=";
    header << media.brcv;
    header << amrwb.c_str();  // parameter texts end at their first NUL
    header << opus.c_str();
    header << "\n\t   Attributes :";
    std::string result = header.str();

    for (const QOVA_MediaAttribute* const attribute : media.attributes) {
        result += text(*attribute);
    }

    std::ostringstream crypto_header;
    use_plain_digits(crypto_header);
    crypto_header << "\t   Crypto attributes (";
    crypto_header << media.cryptoCount;
    crypto_header << ") :";
    crypto_header << std::endl;
    result += crypto_header.str();

    for (const QOVA_Crypto* const crypto : media.cryptos) {
        result += text(*crypto);
    }
    return result;
}

std::string literal::text(const QOVA_Capability& capability) {
    std::string result = "Capability(";
    result += capability.offer ? "offer, " : "answer, ";
    result += capability.hold ? "Hold, " : "Not Hold, ";
    result += capability.silenceSuppSdp ? "silenceSuppSdp=yes)" : "silenceSuppSdp=no)";
    if (capability.marked) {
        result += "'";
    }
    if (!capability.filteredMedia.empty()) {
        result += "\n\tFiltered=\n";
        for (const QOVA_Media* const media : capability.filteredMedia) {
            result += text(*media);
        }
    }
    if (!capability.passThrough.empty()) {
        result += "\n\tPass-through=\n";
        result += capability.passThrough;
        result += "\n";
    }
    return result;
}

std::string literal::difference(const std::string& text, const std::string& expected) {
    if (text == expected) {
        return "";
    }
    const auto place = static_cast<std::size_t>(
        std::mismatch(text.begin(), text.end(), expected.begin(), expected.end()).first -
        text.begin());
    const std::size_t start = text.substr(0, place).rfind('\n') + 1;
    const auto line = [&](const std::string& whole) {
        return " \"" + whole.substr(start, whole.find('\n', place) - start) + "\"";
    };
    return "byte " + std::to_string(place) + " of the text, in the line" + line(text) +
           ", which should be" + line(expected);
}
