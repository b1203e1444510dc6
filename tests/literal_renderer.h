// A second rendition of the log texts, written with one stream for each object straight from their
// tables. It shares no code with the library: what both agree on is not one slip made twice.

#ifndef QOVA_TESTS_LITERAL_RENDERER_H
#define QOVA_TESTS_LITERAL_RENDERER_H

#include <string>

#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace literal {

// An attribute that is not exactly of one of the four concrete classes renders itself.
std::string text(const QOVA_MediaAttribute& attribute);

std::string text(const QOVA_Crypto& crypto);

std::string text(const QOVA_Media& media);

std::string text(const QOVA_Capability& capability);

}  // namespace literal

#endif
