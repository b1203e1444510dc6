// The offers that are measured.

#ifndef QOVA_BENCH_OFFER_H
#define QOVA_BENCH_OFFER_H

#include <memory>
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

// As many lines as asked for, in turn: audio with eight payloads and two crypto lines, T.38 fax,
// and video. Offers without parameter objects, which are compared by identity, can be equal.
std::shared_ptr<QOVA_Capability> make(int lines, bool with_parameters = true);

// Changes what a comparison looks at last: the suite of the last crypto line, or a port of a last
// line that has no crypto lines.
void change_last_member(QOVA_Capability& capability);

// The last line of a kind, or null.
QOVA_Media* last_of(QOVA_Media::e_MediaType type, const QOVA_Capability& capability);

// The same offer as a session description (RFC 4566).
std::string sdp(const QOVA_Capability& capability);

}  // namespace offer

#endif
