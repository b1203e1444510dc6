// Keys: crypto lines (RFC 4568), and lines as they may be shown.

#ifndef QOVA_EXAMPLES_SDP_CRYPTO_H
#define QOVA_EXAMPLES_SDP_CRYPTO_H

#include <memory>
#include <string>

#include "qova/crypto.h"
#include "sdp_text.h"

namespace sdp {

// Reads an a=crypto line. Throws Refusal.
std::unique_ptr<QOVA_Crypto> read_crypto(const Line& line);

// The lines of a section as they came, but for their keys.
std::string without_keys(const Description& description, const Section& section);

}  // namespace sdp

#endif
