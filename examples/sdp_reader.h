// Reads a session description (RFC 4566) into a QOVA_Capability.
//
// Attributes with values are read from their own lines: the parser drops fmtp lines that are broken
// or repeated, and it knows no line numbers.
//
// README.md has the table of what becomes of what.

#ifndef QOVA_EXAMPLES_SDP_READER_H
#define QOVA_EXAMPLES_SDP_READER_H

#include <memory>
#include <vector>

#include "qova/capability.h"
#include "sdp_text.h"

namespace sdp {

enum class Role { OFFER, ANSWER };

// A value that the model cannot take: it gets a warning, or the description is refused for it.
enum class Strictness { LENIENT, STRICT };

// A capability, and which line of the description each of its media comes from.
struct Reading {
    std::unique_ptr<QOVA_Capability> capability;
    std::vector<QOVA_Media*> media;  // one for each m= line; null: passed through
    std::vector<Warning> warnings;   // in the order of the lines; empty when STRICT
};

// Linear in the length of the text. Throws Refusal.
Reading read(const Description& description, Role role, Strictness strictness);

}  // namespace sdp

#endif
