// Keys: crypto lines (RFC 4568), and lines as they may be shown.

#ifndef QOVA_TOOLS_SDP_CRYPTO_H
#define QOVA_TOOLS_SDP_CRYPTO_H

#include <memory>
#include <string>

#include "qova/crypto.h"
#include "sdp/text.h"

namespace sdp {

// Reads an a=crypto line. Throws Refusal.
std::unique_ptr<QOVA_Crypto> read_crypto(const Line& line);

// Whether an a=crypto line may be accepted only by who understands one of its session parameters.
bool needs_session_parameter(const Line& line);

// The value of an a=crypto line that has one key, and whose suite has the name that an offer gives
// it: its letter case, and how it transposes it, are its own.
std::string crypto_value(const QOVA_Crypto& crypto, const Section& offer);

// Master key and salt of a suite, in bytes; 0 for one whose keys are unknown.
std::size_t key_size(g_crypto_suite suite);

// The lines of a section as they came, but for their keys.
std::string without_keys(const Description& description, const Section& section);

}  // namespace sdp

#endif
