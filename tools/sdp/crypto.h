// Keys: a=crypto lines (RFC 4568), and lines without their keys.

#ifndef QOVA_TOOLS_SDP_CRYPTO_H
#define QOVA_TOOLS_SDP_CRYPTO_H

#include <memory>
#include <string>

#include "qova/crypto.h"
#include "sdp/text.h"

namespace sdp {

// Parses an a=crypto line. Throws Refusal.
std::unique_ptr<QOVA_Crypto> read_crypto(const Line& line);

// Returns true if an a=crypto line has a mandatory session parameter.
bool needs_session_parameter(const Line& line);

// Returns the value of an a=crypto line with one key. The suite is spelled as in the offer.
std::string crypto_value(const QOVA_Crypto& crypto, const Section& offer);

// Returns the size of a suite's master key and salt in bytes; 0 if it is unknown.
std::size_t key_size(g_crypto_suite suite);

// Returns the lines of a section with "(withheld)" instead of their keys.
std::string without_keys(const Section& section);

}  // namespace sdp

#endif
