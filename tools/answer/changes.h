// Finds out whether a re-INVITE changed something.

#ifndef QOVA_TOOLS_ANSWER_CHANGES_H
#define QOVA_TOOLS_ANSWER_CHANGES_H

#include "qova/media.h"

class QOVA_Capability;

namespace sdp {

// [aside]
// Takes a media's parameter objects out of the way for as long as it lives.
class ParametersAside {
public:
    explicit ParametersAside(QOVA_Media& of) : media(of), amrwb(of.amrwbParam), opus(of.opusParam) {
        media.amrwbParam = nullptr;
        media.opusParam = nullptr;
    }
    ~ParametersAside() {
        media.amrwbParam = amrwb;
        media.opusParam = opus;
    }
    ParametersAside(const ParametersAside&) = delete;
    ParametersAside& operator=(const ParametersAside&) = delete;

private:
    QOVA_Media& media;
    Sdp::Sdp_Amrwb_Param* amrwb;
    Sdp::Sdp_Opus_Param* opus;
};
// [aside]

// Whether two media lines agree in what they are negotiated to be. Of two rejected lines the kind
// alone counts. Both are as before when it returns.
bool same_media(QOVA_Media& left, QOVA_Media& right);

// Whether a call side's media changed, whatever role each has.
bool changed(QOVA_Capability& before, QOVA_Capability& now);

}  // namespace sdp

#endif
