// Format parameters: a=fmtp of AMR-WB, Opus, G.729 and G.723.1, and the T.38 attributes.

#ifndef QOVA_TOOLS_SDP_FORMATS_H
#define QOVA_TOOLS_SDP_FORMATS_H

#include <string_view>
#include <vector>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "sdp/text.h"

namespace sdp {

// A named value, such as "stereo=1" or "a=T38MaxBitRate:14400".
struct Parameter {
    std::size_t line;
    std::string_view name;
    std::string_view value;
    unsigned payload = 0;  // the payload type of an a=fmtp line
};

// Parses the a=fmtp lines of a section. Those that cannot be parsed get a warning.
std::vector<Parameter> parameters_of(const Section& section, Diagnostics& warnings);

// Throws Refusal if blanks instead of a semicolon separate a parameter from the next.
void check_separator(const Parameter& parameter);

// Each stores the value in the member that has the parameter's name, if there is one. Throws
// Refusal if the member cannot hold the value.
void read_amrwb(const Parameter& parameter, Sdp::Sdp_Amrwb_Param& amrwb);
void read_opus(const Parameter& parameter, Sdp::Sdp_Opus_Param& opus);
void read_t38(const Parameter& parameter, QOVA_FaxAttribute& fax);

// Stores the voice activity detection of G.729 ("annexb") or G.723.1 ("annexa"). Throws Refusal.
void read_annex(const Parameter& parameter, const char* annex, bool& vad);

}  // namespace sdp

#endif
