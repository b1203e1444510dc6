#include "sdp/formats.h"

#include <climits>
#include <initializer_list>
#include <list>
#include <string>

#include "sdp/strings.h"

namespace sdp {
namespace {

// Stores the value if the parameter has this name.
template <class Member>
void take(const Parameter& parameter, const char* name, Member& member, unsigned long long max) {
    if (same(parameter.name, name)) {
        member = required<Member>(parameter.line, name + std::string(": expected a number"),
                                  parameter.value, 0, max);
    }
}

// The same for a value that must be one of several words. Stores its index, counted from `first`.
template <class Member>
void take(const Parameter& parameter, const char* name, Member& member,
          std::initializer_list<std::string_view> words, int first = 0) {
    if (!same(parameter.name, name)) {
        return;
    }
    int index = first;
    std::string expected;
    for (const std::string_view word : words) {
        if (same(parameter.value, word)) {
            member = static_cast<Member>(index);
            return;
        }
        expected.append(index == first ? "" : " or ").append(word);
        ++index;
    }
    throw Refusal(parameter.line, name + (": expected " + expected));
}

void append_parameters(const Line& line, std::vector<Parameter>& parameters) {
    const std::vector<std::string_view> fields = split(line.value, blanks, 2);
    const unsigned payload =
        required(line.number, "a=fmtp: expected a payload type", fields[0], 0, max_payload_type);
    refuse_if(fields.size() != 2, line.number, "a=fmtp: the parameters are missing");
    for (const std::string_view parameter : split(fields[1], ";")) {
        std::vector<std::string_view> parts = split(parameter, "=", 2);
        parts.resize(2);
        parameters.push_back({line.number, trimmed(parts[0]), trimmed(parts[1]), payload});
    }
}

}  // namespace

std::vector<Parameter> parameters_of(const Section& section, Diagnostics& warnings) {
    std::vector<Parameter> found;
    for (const Line* const line : attributes(section, "fmtp")) {
        warn_of_refusal(warnings, [&] { append_parameters(*line, found); });
    }
    return found;
}

void check_separator(const Parameter& parameter) {
    const std::size_t blank = parameter.value.find_first_of(blanks);
    refuse_if(blank != std::string_view::npos &&
                  parameter.value.find('=', blank) != std::string_view::npos,
              parameter.line, "a=fmtp: expected a semicolon between two parameters");
}

void read_amrwb(const Parameter& parameter, Sdp::Sdp_Amrwb_Param& amrwb) {
    if (same(parameter.name, "mode-set")) {
        std::list<int> modes;
        for (const std::string_view mode : split(parameter.value, ",")) {
            modes.push_back(
                required<int>(parameter.line, "mode-set: expected a number", trimmed(mode), 0, 8));
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
    // A flag without a value is set.
    Parameter flag = parameter;
    flag.value = parameter.value.empty() ? "1" : parameter.value;
    take(flag, "T38FaxFillBitRemoval", fax.fillBit, 1);
    take(flag, "T38FaxTranscodingMMR", fax.transMMR, 1);
    take(flag, "T38FaxTranscodingJBIG", fax.transJBIG, 1);
    take(parameter, "T38FaxRateManagement", fax.rateMgt, {"transferredTCF", "localTCF"}, RM_TRFTCF);
    take(parameter, "T38FaxUdpEC", fax.errCorr, {"t38UDPNoEC", "t38UDPRedundancy", "t38UDPFEC"});
}

void read_annex(const Parameter& parameter, const char* annex, bool& vad) {
    take(parameter, annex, vad, {"no", "yes"});
}

}  // namespace sdp
