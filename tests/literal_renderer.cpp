#include "literal_renderer.h"

#include <locale>
#include <ostream>
#include <sstream>
#include <typeinfo>

#include "netconf/sdp.h"
#include "socket/address.h"

namespace {

// Without this a stream takes its digits from the global locale.
void use_plain_digits(std::ostringstream& stream) {
    stream.imbue(std::locale::classic());
}

std::string name_of(QOVA_Codec codec) {
    const int number = codec;
    switch (number) {
        case 1:
            return "G711alaw";
        case 2:
            return "G711ulaw";
        case 3:
            return "G723";
        case 4:
            return "G729";
        case 5:
            return "G729a";
        case 6:
            return "G711nil";
        case 7:
            return "G729nil";
        case 8:
            return "G722";
        case 9:
            return "G722.2";
        case 10:
            return "OPUS";
        default:
            break;
    }
    if (number < 96 || number > 127) {
        return "NIL";
    }
    return "DYN(" + std::to_string(number) + ")";
}

const char* name_of(QOVA_Media::e_MediaStatus status) {
    const int number = status;
    switch (number) {
        case 1:
            return "Accepted";
        case 2:
            return "Rejected";
        case 3:
            return "Modified";
        default:
            return "Unknown";
    }
}

const char* name_of(QOVA_Media::e_MediaType type) {
    const int number = type;
    switch (number) {
        case 1:
            return "Audio";
        case 2:
            return "Video";
        case 3:
            return "Fax";
        case 4:
            return "Data";
        default:
            return "Nil";
    }
}

const char* name_of(QOVA_FaxTransport transport) {
    const int number = transport;
    switch (number) {
        case 1:
            return "T38udptl";
        case 2:
            return "T38tcp";
        default:
            return "NIL";
    }
}

const char* name_of(QOVA_FaxRateMgt rate_management) {
    const int number = rate_management;
    switch (number) {
        case 1:
            return "TRFTCF";
        case 2:
            return "LocalTCF";
        default:
            return "NIL";
    }
}

std::string text_of(const QOVA_AudioAttribute& audio) {
    std::ostringstream stream;
    use_plain_digits(stream);
    stream << "\t\t -> ";
    stream << name_of(audio.codec);
    stream << " / ";
    stream << name_of(audio.status);
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
    stream << name_of(fax.transport);
    stream << " / red=" << fax.red;
    stream << " / depth=" << fax.depth;
    stream << " / mxRate=" << fax.mxRate;
    stream << "\n\t\t    rateMgt=";
    stream << name_of(fax.rateMgt);
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
    stream << Sdp::CryptoParser::enumToAlgo(crypto.algo);
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
    header << name_of(media.mediaType);
    header << ")/";
    header << name_of(media.mediaStatus);
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
