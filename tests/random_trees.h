// Random media descriptions of every shape, the same on every platform for the same engine state.

#ifndef QOVA_TESTS_RANDOM_TREES_H
#define QOVA_TESTS_RANDOM_TREES_H

#include <memory>
#include <random>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace trees {

// Of one of the four concrete classes. Enumerations may be out of range, numbers extreme.
std::unique_ptr<QOVA_MediaAttribute> attribute(std::mt19937& random);

// With no, one or several keys; key material, and MKI bytes beyond the MKI's length, are random
// too.
std::unique_ptr<QOVA_Crypto> crypto(std::mt19937& random);

// With an IPv4 or IPv6 address, codec parameters given or absent, lists that are empty, short or
// long, and a crypto count that need not agree with them.
std::unique_ptr<QOVA_Media> media(std::mt19937& random);

// With no, some or many media; the text passed through may hold any byte.
std::unique_ptr<QOVA_Capability> capability(std::mt19937& random);

}  // namespace trees

#endif
