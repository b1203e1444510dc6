// Format parameters: the a=fmtp lines of AMR-WB, Opus, G.729 and G.723.1, and the T.38 attributes.

#ifndef QOVA_TOOLS_SDP_FORMATS_H
#define QOVA_TOOLS_SDP_FORMATS_H

#include <string_view>
#include <vector>

#include "sdp/text.h"

class QOVA_FaxAttribute;
namespace Sdp {
class Sdp_Amrwb_Param;
class Sdp_Opus_Param;
}  // namespace Sdp

namespace sdp {

// A value with a name, as in "stereo=1" and in "a=T38MaxBitRate:14400".
struct Parameter {
    std::size_t line;
    std::string_view name;
    std::string_view value;
};

// One a=fmtp line.
struct Fmtp {
    unsigned payload;
    std::vector<Parameter> parameters;
};
std::vector<Fmtp> fmtps_of(const Section& section, std::vector<Warning>& warnings);

// Throws Refusal where blanks, and no semicolon, separate a parameter from the next.
void check_separator(const Parameter& parameter);

// Each goes to the member of its name; those with other names play no part. A value that the member
// cannot take throws Refusal.
void read_amrwb(const Parameter& parameter, Sdp::Sdp_Amrwb_Param& amrwb);
void read_opus(const Parameter& parameter, Sdp::Sdp_Opus_Param& opus);
void read_t38(const Parameter& parameter, QOVA_FaxAttribute& fax);

// Voice activity detection as annex "annexb" of G.729 and "annexa" of G.723.1 say it.
void read_annex(const Parameter& parameter, std::string_view annex, bool& vad);

}  // namespace sdp

#endif
