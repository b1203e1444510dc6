/// @file
/// Compares two descriptions of a call, as after a re-INVITE.

#ifndef QOVA_TOOLS_ANSWER_CHANGES_H
#define QOVA_TOOLS_ANSWER_CHANGES_H

#include "qova/media.h"

class QOVA_Capability;

namespace sdp {

// [aside]
/// Hides the parameter objects of a media during its own lifetime, because QOVA_Media::operator==
/// compares them by identity.
class ParametersAside {
public:
    explicit ParametersAside(QOVA_Media& given_media)
        : media(given_media), amrwb(media.amrwbParam), opus(media.opusParam) {
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

/// Returns true if two media lines have the same negotiated values, keys included. Two rejected
/// lines are the same if they have the same type. Hides the parameter objects of both during the
/// comparison. Linear in the number of attributes and keys.
bool same_media(QOVA_Media& left, QOVA_Media& right);

/// Returns true if a side's media, pass-through text, hold or silence suppression changed. Ignores
/// QOVA_Capability::offer. Changes nothing, but hides parameter objects as same_media() does.
bool changed(QOVA_Capability& before, QOVA_Capability& now);

}  // namespace sdp

#endif
