#include "sdp/formats.h"

#include <climits>
#include <initializer_list>
#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"

namespace sdp {

namespace {

// Reads a value into the member that has its name.
template <class Member>
void take(const Parameter& parameter, const char* name, Member& member,
          unsigned long long greatest) {
    if (same(parameter.name, name)) {
        member =
            static_cast<Member>(needed_number(parameter.line, name, parameter.value, greatest));
    }
}

// Which of some words a value is. Throws Refusal where it is none of them.
int word(const Parameter& parameter, std::initializer_list<std::string_view> words,
         const std::string& message) {
    int index = 0;
    for (const std::string_view candidate : words) {
        if (same(parameter.value, candidate)) {
            return index;
        }
        ++index;
    }
    throw Refusal(parameter.line, message);
}

Fmtp fmtp_of(const Line& line) {
    const std::vector<std::string_view> fields = split(line.value, blanks, 2);
    Fmtp fmtp = {needed_payload_type(line.number, "a=fmtp", fields[0]), {}};
    if (fields.size() != 2) {
        throw Refusal(line.number, "a=fmtp: the parameters are missing");
    }
    for (const std::string_view parameter : split(fields[1], ";")) {
        std::vector<std::string_view> parts = split(parameter, "=", 2);
        parts.resize(2);
        fmtp.parameters.push_back({line.number, trimmed(parts[0]), trimmed(parts[1])});
    }
    return fmtp;
}

}  // namespace

std::vector<Fmtp> fmtps_of(const Section& section, std::vector<Warning>& warnings) {
    std::vector<Fmtp> found;
    for (const Line& line : section) {
        if (same(line.name, "fmtp")) {
            tolerate(warnings, [&] { found.push_back(fmtp_of(line)); });
        }
    }
    return found;
}

void check_separator(const Parameter& parameter) {
    const std::size_t blank = parameter.value.find_first_of(blanks);
    if (blank != std::string_view::npos &&
        parameter.value.find('=', blank) != std::string_view::npos) {
        throw Refusal(parameter.line,
                      "a=fmtp: blanks separate two parameters, where a semicolon belongs");
    }
}

void read_amrwb(const Parameter& parameter, Sdp::Sdp_Amrwb_Param& amrwb) {
    if (same(parameter.name, "mode-set")) {
        std::list<int> modes;
        for (const std::string_view mode : split(parameter.value, ",")) {
            modes.push_back(
                static_cast<int>(needed_number(parameter.line, "mode-set", trimmed(mode), 8)));
        }
        amrwb.modeSet = modes;
    }
    take(parameter, "octet-align", amrwb.octetAlign, 1);
    take(parameter, "mode-change-period", amrwb.modeChangePeriod, 2);
    take(parameter, "mode-change-capability", amrwb.modeChangeCapability, 2);
    take(parameter, "mode-change-neighbor", amrwb.modeChangeNeighbor, 1);
    take(parameter, "crc", amrwb.crc, 1);
    take(parameter, "robust-sorting", amrwb.robustSorting, 1);
    take(parameter, "interleaving", amrwb.interleaving, 65535);
    take(parameter, "channels", amrwb.channels, 6);
    take(parameter, "max-red", amrwb.maxRed, 65535);
}

void read_opus(const Parameter& parameter, Sdp::Sdp_Opus_Param& opus) {
    take(parameter, "maxplaybackrate", opus.maxPlaybackRate, INT_MAX);
    take(parameter, "sprop-maxcapturerate", opus.spropMaxCaptureRate, USHRT_MAX);
    take(parameter, "maxaveragebitrate", opus.maxAverageBitrate, INT_MAX);
    take(parameter, "stereo", opus.stereo, 1);
    take(parameter, "cbr", opus.cbr, 1);
    take(parameter, "useinbandfec", opus.useInbandFec, 1);
    take(parameter, "usedtx", opus.useDtx, 1);
    take(parameter, "maxptime", opus.maxPtime, USHRT_MAX);
    take(parameter, "sprop-stereo", opus.spropStereo, 1);
}

void read_t38(const Parameter& parameter, QOVA_FaxAttribute& fax) {
    take(parameter, "T38MaxBitRate", fax.mxRate, UINT_MAX);
    take(parameter, "T38FaxMaxBuffer", fax.mxBuffer, UINT_MAX);
    take(parameter, "T38FaxMaxDatagram", fax.mxDgram, UINT_MAX);
    // A flag may stand without a value.
    Parameter flag = parameter;
    flag.value = parameter.value.empty() ? "1" : parameter.value;
    take(flag, "T38FaxFillBitRemoval", fax.fillBit, 1);
    take(flag, "T38FaxTranscodingMMR", fax.transMMR, 1);
    take(flag, "T38FaxTranscodingJBIG", fax.transJBIG, 1);
    if (same(parameter.name, "T38FaxRateManagement")) {
        const int is_local = word(parameter, {"transferredTCF", "localTCF"},
                                  "the rate management is neither of T.38's two");
        fax.rateMgt = is_local != 0 ? RM_LOCALTCF : RM_TRFTCF;
    }
    if (same(parameter.name, "T38FaxUdpEC")) {
        fax.errCorr =
            static_cast<unsigned>(word(parameter, {"t38UDPNoEC", "t38UDPRedundancy", "t38UDPFEC"},
                                       "the error correction is none of T.38's three"));
    }
}

void read_annex(const Parameter& parameter, std::string_view annex, bool& vad) {
    if (same(parameter.name, annex)) {
        vad = word(parameter, {"no", "yes"}, std::string(annex) + " is neither yes nor no") != 0;
    }
}

}  // namespace sdp
