// What the tests of the reader read, and what the reader says of it.

#ifndef QOVA_TESTS_TOOLS_READINGS_H
#define QOVA_TESTS_TOOLS_READINGS_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include "descriptions.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "sdp/reader.h"

inline sdp::Reading reading_of(const std::string& text,
                               sdp::Strictness strictness = sdp::Strictness::LENIENT) {
    return sdp::read(sdp::Description(text), sdp::Role::OFFER, strictness);
}

// What is wrong with a description, however strictly it is read.
inline std::string refusal_of(const std::string& text) {
    const std::string lenient = refusal([&] { reading_of(text); });
    EXPECT_EQ(refusal([&] { reading_of(text, sdp::Strictness::STRICT); }), lenient);
    return lenient;
}

// "LINE: message" of each.
inline std::string told(const sdp::Diagnostics& warnings) {
    std::string all;
    for (const sdp::Diagnostic& warning : warnings) {
        all += (all.empty() ? "" : "\n") + std::to_string(warning.line) + ": " + warning.message;
    }
    return all;
}

// The warnings about a description. Strictly read, the first is the refusal.
inline std::string warnings_of(const std::string& text) {
    const std::string all = told(reading_of(text).diagnostics);
    EXPECT_EQ(refusal([&] { reading_of(text, sdp::Strictness::STRICT); }),
              all.empty() ? "accepted" : all.substr(0, all.find('\n')));
    return all;
}

template <class T>
const T& attribute(const QOVA_Media& media, std::size_t index = 0) {
    auto at = media.attributes.begin();
    std::advance(at, index);
    return dynamic_cast<const T&>(**at);
}

// The only media of a session that has one line with attributes.
class OneLine {
public:
    OneLine(std::initializer_list<std::string> lines) : reading(reading_of(session(lines))) {}

    const QOVA_Capability& capability() const { return *reading.capability; }
    const QOVA_Media& media() const { return *capability().filteredMedia.front(); }
    const QOVA_AudioAttribute& audio(std::size_t index = 0) const {
        return attribute<QOVA_AudioAttribute>(media(), index);
    }
    const QOVA_FaxAttribute& fax() const { return attribute<QOVA_FaxAttribute>(media()); }
    const QOVA_Crypto& crypto() const { return *media().cryptos.front(); }

private:
    sdp::Reading reading;
};

inline std::vector<int> codecs(const QOVA_Media& media, QOVA_Codec QOVA_AudioAttribute::*member =
                                                            &QOVA_AudioAttribute::codec) {
    std::vector<int> found;
    for (std::size_t i = 0; i < media.attributes.size(); ++i) {
        found.push_back(attribute<QOVA_AudioAttribute>(media, i).*member);
    }
    return found;
}

#endif
