// The offers that are measured.

#ifndef QOVA_BENCH_OFFER_H
#define QOVA_BENCH_OFFER_H

#include <cstddef>
#include <string>

#include "qova/capability.h"

namespace offer {

// How many lines the small offer has: one of each kind.
constexpr int small = 3;

// Only the last line of its kind offers these, so that a search for them passes all lines.
constexpr QOVA_Codec last_codec = static_cast<QOVA_Codec>(127);
constexpr QOVA_FaxTransport last_transport = FT_T38_TCP;

// Nobody offers these.
constexpr QOVA_Codec no_codec = CODEC_G729_NIL;
constexpr QOVA_FaxTransport no_transport = FT_NIL;

// As many lines as asked for, by turns: audio with eight payloads and two crypto lines, T.38 fax,
// and video.
QOVA_Capability make(int lines);

// Two offers to compare. They have no parameter objects, which are compared by identity, and so can
// be equal; or else they differ in what a comparison looks at last: the suite of the last crypto
// line, or a port of a last line that has no crypto lines.
struct Pair {
    Pair(int lines, bool equal);

    QOVA_Capability left;
    QOVA_Capability right;
};

// The last audio line, or null.
QOVA_Media* last_audio(const QOVA_Capability& capability);

// The objects and list nodes that a capability owns at any depth.
std::size_t owned_by(const QOVA_Capability& capability);

// The same offer as a session description (RFC 4566).
std::string sdp(const QOVA_Capability& capability);

}  // namespace offer

#endif
