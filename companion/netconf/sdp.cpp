#include "netconf/sdp.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr const char* suite_names[] = {
    "NIL",
    "AES_CM_128_HMAC_SHA1_80",
    "AES_CM_128_HMAC_SHA1_32",
    "F8_128_HMAC_SHA1_80",
    "SEED_CTR_128_HMAC_SHA1_80",
    "SEED_128_CCM_80",
    "SEED_128_GCM_96",
    "AES_192_CM_HMAC_SHA1_80",
    "AES_192_CM_HMAC_SHA1_32",
    "AES_256_CM_HMAC_SHA1_80",
    "AES_256_CM_HMAC_SHA1_32",
    "AEAD_AES_128_GCM",
    "AEAD_AES_256_GCM",
};

// Writes " FORMAT(parameter=value; parameter=value)", or nothing if there are no parameters.
class ParameterText {
public:
    explicit ParameterText(const char* format) : separator(std::string(" ") + format + "(") {}

    void add(const char* parameter, const std::string& value) {
        text.append(separator).append(parameter).append("=").append(value);
        separator = "; ";
    }

    void add_unless(int absent, const char* parameter, int value) {
        if (value != absent) {
            add(parameter, std::to_string(value));
        }
    }

    std::string take() {
        text += text.empty() ? "" : ")";
        return std::move(text);
    }

private:
    std::string separator;
    std::string text;
};

std::string join(const std::list<int>& values) {
    std::string text;
    for (const int value : values) {
        text += (text.empty() ? "" : ",") + std::to_string(value);
    }
    return text;
}

}  // namespace

Sdp::Sdp_Amrwb_Param::operator const std::string() const {
    ParameterText text("AMR-WB");
    text.add_unless(0, "payload-type", payloadType);
    text.add_unless(ABSENT, "octet-align", octetAlign);
    if (!modeSet.empty()) {
        text.add("mode-set", join(modeSet));
    }
    text.add_unless(ABSENT, "mode-change-period", modeChangePeriod);
    text.add_unless(ABSENT, "mode-change-capability", modeChangeCapability);
    text.add_unless(ABSENT, "mode-change-neighbor", modeChangeNeighbor);
    text.add_unless(ABSENT, "crc", crc);
    text.add_unless(ABSENT, "robust-sorting", robustSorting);
    text.add_unless(ABSENT, "interleaving", interleaving);
    text.add_unless(ABSENT, "channels", channels);
    text.add_unless(ABSENT, "max-red", maxRed);
    return text.take();
}

Sdp::Sdp_Opus_Param::operator const std::string() const {
    ParameterText text("opus");
    text.add_unless(0, "maxplaybackrate", maxPlaybackRate);
    text.add_unless(0, "sprop-maxcapturerate", spropMaxCaptureRate);
    text.add_unless(0, "maxaveragebitrate", maxAverageBitrate);
    text.add_unless(0, "stereo", stereo);
    text.add_unless(0, "cbr", cbr);
    text.add_unless(0, "useinbandfec", useInbandFec);
    text.add_unless(0, "usedtx", useDtx);
    text.add_unless(0, "maxptime", maxPtime);
    text.add_unless(0, "sprop-stereo", spropStereo);
    return text.take();
}

std::string Sdp::CryptoParser::enumToAlgo(const g_crypto_suite& suite) {
    return suite_names[static_cast<unsigned>(suite) < std::size(suite_names) ? suite : CS_NIL];
}

g_crypto_suite Sdp::CryptoParser::algoToEnum(const std::string& name) {
    const auto* const found = std::find(std::begin(suite_names), std::end(suite_names), name);
    return found == std::end(suite_names)
               ? CS_NIL
               : static_cast<g_crypto_suite>(found - std::begin(suite_names));
}
