// The log-text writer. A line is composed on the stack and appended to the result once: no stream,
// no locale, no allocation of its own but the result's. The longest text of every piece is known
// when the program is compiled, and so is the size of the buffer.

#ifndef QOVA_SRC_TEXT_H
#define QOVA_SRC_TEXT_H

#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/enumerations.h"
#include "qova/media.h"

namespace qova {

// A name takes as many bytes as it fills with NULs, so that it can be copied whole.
inline constexpr std::size_t name_size = 12;

// The greatest number of characters that a piece of a type takes. Literals and numbers stand for
// themselves, enumerations for their names, an array of bytes for its numbers side by side.
template <class Piece>
constexpr std::size_t longest() {
    using Element = std::remove_extent_t<Piece>;
    if constexpr (std::is_same_v<Element, char>) {
        return sizeof(Piece) - 1;
    } else if constexpr (std::is_array_v<Piece>) {
        return std::extent_v<Piece> * longest<Element>();
    } else if constexpr (std::is_enum_v<Piece>) {
        return name_size;
    } else {
        using Limits = std::numeric_limits<Piece>;
        static_assert(Limits::is_integer);
        return Limits::digits10 + 1 + (Limits::is_signed ? 1 : 0);
    }
}
static_assert(longest<char[4]>() == 3 && longest<unsigned char[8]>() == 24 &&
              longest<bool>() == 1 && longest<unsigned int>() == 10 && longest<int>() == 11);

// Each writes a piece and returns the end of it. Numbers: text.cpp.
char* put(char* to, int value);
char* put(char* to, unsigned int value);

// Names: enumerations.cpp.
char* put(char* to, QOVA_Codec value);
char* put(char* to, QOVA_EarlyMedia value);
char* put(char* to, QOVA_FaxTransport value);
char* put(char* to, QOVA_FaxRateMgt value);
char* put(char* to, QOVA_Media::e_MediaType value);
char* put(char* to, QOVA_Media::e_MediaStatus value);

inline char* put(char* to, bool value) {
    *to = value ? '1' : '0';
    return to + 1;
}

template <std::size_t N>
char* put(char* to, const char (&literal)[N]) {
    constexpr std::size_t length = longest<char[N]>();
    std::memcpy(to, literal, length);
    return to + length;
}

template <std::size_t N>
char* put(char* to, const unsigned char (&bytes)[N]) {
    for (const unsigned int byte : bytes) {
        to = put(to, byte);
    }
    return to;
}

// Appends pieces to a text.
template <class... Piece>
void append(std::string& text, const Piece&... pieces) {
    char line[(longest<Piece>() + ...)];
    char* end = line;
    ((end = put(end, pieces)), ...);
    text.append(line, static_cast<std::size_t>(end - line));
}

// Appends the log text of an attribute: attributes.cpp. That of an attribute of a class unknown
// here is asked of the object itself.
void append_text(std::string& text, const QOVA_MediaAttribute& attribute);

// Appends the log text of a crypto line: crypto.cpp.
void append_text(std::string& text, const QOVA_Crypto& crypto);

// Appends the log text of a media: media.cpp.
void append_text(std::string& text, const QOVA_Media& media);

// Room for texts with common values, such as one key, so that the result seldom has to move.
inline constexpr std::size_t usual_crypto_length = 128;
std::size_t usual_length(const QOVA_Media& media);

}  // namespace qova

#endif
