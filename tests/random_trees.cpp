#include "random_trees.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>

#include "netconf/sdp.h"
#include "socket/address.h"

namespace {

// Takes a wide number, so that the conversion is one on every platform.
unsigned int low_word(std::uint64_t number) {
    return static_cast<unsigned int>(number);
}

// The standard's distributions give other numbers with another library; a remainder does not.
unsigned int below(unsigned int limit, std::mt19937& random) {
    return low_word(random()) % limit;
}

bool flag(std::mt19937& random) {
    return below(2, random) == 1;
}

unsigned int any_unsigned(std::mt19937& random) {
    switch (below(6, random)) {
        case 0:
            return 0;
        case 1:
            return UINT_MAX;
        case 2:
            return static_cast<unsigned int>(INT_MAX) + below(2, random);
        case 3:
            return low_word(random());
        default:
            return below(20000, random);
    }
}

int any_int(std::mt19937& random) {
    switch (below(6, random)) {
        case 0:
            return INT_MIN;
        case 1:
            return INT_MAX;
        case 2:
            return -1 - static_cast<int>(below(1000, random));
        case 3:
            return static_cast<int>(low_word(random()));
        default:
            return static_cast<int>(below(20000, random));
    }
}

unsigned char any_byte(std::mt19937& random) {
    switch (below(4, random)) {
        case 0:
            return 0;
        case 1:
            return 255;
        default:
            return static_cast<unsigned char>(below(256, random));
    }
}

unsigned short any_port(std::mt19937& random) {
    switch (below(4, random)) {
        case 0:
            return 0;
        case 1:
            return 65535;
        default:
            return static_cast<unsigned short>(below(65536, random));
    }
}

// Mostly an enumerator or a close neighbour of one; sometimes any number.
template <typename Enumeration>
Enumeration any_of(unsigned int enumerators, std::mt19937& random) {
    if (below(4, random) == 0) {
        return static_cast<Enumeration>(any_int(random));
    }
    return static_cast<Enumeration>(static_cast<int>(below(enumerators + 2, random)) - 1);
}

QOVA_Codec any_codec(std::mt19937& random) {
    if (below(3, random) == 0) {
        return static_cast<QOVA_Codec>(94 + below(36, random));
    }
    return any_of<QOVA_Codec>(11, random);
}

QOVA_Media::e_MediaStatus any_status(std::mt19937& random) {
    return any_of<QOVA_Media::e_MediaStatus>(4, random);
}

QOVA_Media::e_MediaType any_type(std::mt19937& random) {
    return any_of<QOVA_Media::e_MediaType>(5, random);
}

std::size_t any_length(std::mt19937& random) {
    switch (below(8, random)) {
        case 0:
        case 1:
            return 0;
        case 2:
            return 20 + below(20, random);
        default:
            return 1 + below(4, random);
    }
}

std::unique_ptr<QOVA_MediaAttribute> audio(std::mt19937& random) {
    auto result = std::make_unique<QOVA_AudioAttribute>();
    result->codec = any_codec(random);
    result->framing = any_int(random);
    result->vad = flag(random);
    result->echo = flag(random);
    result->mxFraming = any_int(random);
    result->mf = any_codec(random);
    return result;
}

std::unique_ptr<QOVA_MediaAttribute> fax(std::mt19937& random) {
    auto result = std::make_unique<QOVA_FaxAttribute>();
    result->red = any_unsigned(random);
    result->depth = any_unsigned(random);
    result->mxRate = any_unsigned(random);
    result->rateMgt = any_of<QOVA_FaxRateMgt>(3, random);
    result->transport = any_of<QOVA_FaxTransport>(3, random);
    result->fillBit = flag(random);
    result->transMMR = flag(random);
    result->transJBIG = flag(random);
    result->mxBuffer = any_unsigned(random);
    result->mxDgram = any_unsigned(random);
    result->errCorr = any_unsigned(random);
    return result;
}

std::unique_ptr<QOVA_MediaAttribute> data(std::mt19937& random) {
    auto result = std::make_unique<QOVA_DataAttribute>();
    result->type = any_int(random);
    return result;
}

QOVA_CryptoKey key(std::mt19937& random) {
    QOVA_CryptoKey result = {};
    result.lifetime = any_unsigned(random);
    result.mkiSize = any_byte(random);
    for (unsigned char& byte : result.mki) {
        byte = any_byte(random);
    }
    for (unsigned char& byte : result.key) {
        byte = any_byte(random);
    }
    return result;
}

std::string any_address(std::mt19937& random) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    if (flag(random)) {
        for (int i = 0; i < 4; ++i) {
            text << (i == 0 ? "" : ".") << static_cast<unsigned int>(any_byte(random));
        }
    } else {
        text << std::hex;
        for (int i = 0; i < 8; ++i) {
            text << (i == 0 ? "" : ":") << any_port(random);
        }
    }
    return text.str();
}

int any_parameter(std::mt19937& random) {
    if (flag(random)) {
        return Sdp::Sdp_Amrwb_Param::ABSENT;
    }
    return flag(random) ? static_cast<int>(below(4, random)) : any_int(random);
}

void fill(Sdp::Sdp_Amrwb_Param& parameters, std::mt19937& random) {
    parameters.octetAlign = any_parameter(random);
    for (unsigned int left = below(10, random); left != 0; --left) {
        parameters.modeSet.push_back(any_parameter(random));
    }
    parameters.modeChangePeriod = any_parameter(random);
    parameters.modeChangeCapability = any_parameter(random);
    parameters.modeChangeNeighbor = any_parameter(random);
    parameters.crc = any_parameter(random);
    parameters.robustSorting = any_parameter(random);
    parameters.interleaving = any_parameter(random);
    parameters.channels = any_parameter(random);
    parameters.maxRed = any_parameter(random);
    parameters.payloadType = any_int(random);
}

void fill(Sdp::Sdp_Opus_Param& parameters, std::mt19937& random) {
    parameters.maxPlaybackRate = any_int(random);
    parameters.spropMaxCaptureRate = any_port(random);
    parameters.maxAverageBitrate = any_int(random);
    parameters.stereo = flag(random);
    parameters.cbr = flag(random);
    parameters.useInbandFec = flag(random);
    parameters.useDtx = flag(random);
    parameters.maxPtime = any_port(random);
    parameters.spropStereo = flag(random);
}

void fill(QOVA_Media& media, std::mt19937& random) {
    media.mediaStatus = any_status(random);
    media.mediaType = any_type(random);
    for (std::size_t left = any_length(random); left != 0; --left) {
        media.attributes.push_back(nullptr);
        media.attributes.back() = trees::attribute(random).release();
    }
    IPAddress address;
    IPAddress::Parse(any_address(random), address);
    INetAddress* const copy = address.Copy();
    delete media.address;
    media.address = copy;
    media.bsnd = flag(random);
    media.brcv = flag(random);
    media.sndPort = any_port(random);
    media.rcvPort = any_port(random);
    media.sndPort2 = any_port(random);
    media.rcvPort2 = any_port(random);
    if (flag(random)) {
        fill(*media.amrwbParam, random);
    }
    if (flag(random)) {
        fill(*media.opusParam, random);
    }
    for (std::size_t left = any_length(random); left != 0; --left) {
        media.cryptos.push_back(nullptr);
        media.cryptos.back() = trees::crypto(random).release();
    }
    media.cryptoCount = flag(random) ? low_word(media.cryptos.size()) : any_unsigned(random);
}

}  // namespace

std::unique_ptr<QOVA_MediaAttribute> trees::attribute(std::mt19937& random) {
    std::unique_ptr<QOVA_MediaAttribute> result;
    switch (below(6, random)) {
        case 0:
            result = std::make_unique<QOVA_VideoAttribute>();
            break;
        case 1:
            result = data(random);
            break;
        case 2:
        case 3:
            result = fax(random);
            break;
        default:
            result = audio(random);
            break;
    }
    result->status = any_status(random);
    result->attributeType = any_of<QOVA_Media::e_AttributeType>(5, random);
    return result;
}

std::unique_ptr<QOVA_Crypto> trees::crypto(std::mt19937& random) {
    auto result = std::make_unique<QOVA_Crypto>();
    result->tag = any_unsigned(random);
    result->algo = any_of<g_crypto_suite>(13, random);
    for (unsigned int left = below(4, random); left != 0; --left) {
        result->keys.push_back(key(random));
    }
    return result;
}

std::unique_ptr<QOVA_Media> trees::media(std::mt19937& random) {
    auto result = std::make_unique<QOVA_Media>();
    fill(*result, random);
    return result;
}

std::unique_ptr<QOVA_Capability> trees::capability(std::mt19937& random) {
    auto result = std::make_unique<QOVA_Capability>();
    unsigned int media_left = below(5, random);
    if (below(50, random) == 0) {
        media_left = 20;
    }
    for (; media_left != 0; --media_left) {
        result->filteredMedia.push_back(nullptr);
        result->filteredMedia.back() = media(random).release();
    }
    result->marked = flag(random);
    result->offer = flag(random);
    if (flag(random)) {
        for (unsigned int left = below(200, random); left != 0; --left) {
            const bool line_end = below(20, random) == 0;
            result->passThrough += line_end ? '\n' : static_cast<char>(any_byte(random));
        }
    }
    result->hold = flag(random);
    result->spare1 = any_byte(random);
    result->spare2 = any_byte(random);
    result->spare3 = any_byte(random);
    result->silenceSuppSdp = flag(random);
    return result;
}
