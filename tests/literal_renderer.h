// A second rendition of the log texts, written with one stream for each object straight from their
// tables. It shares no code with the library: what both agree on is not one slip made twice.

#ifndef QOVA_TESTS_LITERAL_RENDERER_H
#define QOVA_TESTS_LITERAL_RENDERER_H

#include <string>

#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/enumerations.h"
#include "qova/media.h"

namespace literal {

// The names of any value.
std::string name(QOVA_Codec codec);
const char* name(QOVA_EarlyMedia direction);
const char* name(QOVA_Media::e_MediaType type);
const char* name(QOVA_Media::e_MediaStatus status);
const char* name(QOVA_FaxTransport transport);
const char* name(QOVA_FaxRateMgt rate_management);
const char* name(g_crypto_suite suite);

// An attribute that is not exactly of one of the four concrete classes renders itself.
std::string text(const QOVA_MediaAttribute& attribute);

std::string text(const QOVA_Crypto& crypto);

std::string text(const QOVA_Media& media);

std::string text(const QOVA_Capability& capability);

// The first line in which a text is not what it should be; empty when both are the same.
std::string difference(const std::string& text, const std::string& expected);

}  // namespace literal

#endif
