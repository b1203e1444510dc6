// Writes log texts. Each line is built in a buffer on the stack and appended to the result once:
// no stream, no locale, no allocation except the result's. The longest text of every piece is known
// at compile time, and so is the size of the buffer.

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

// Every name fills an array of this size, padded with NULs, so that it can be copied as a block.
inline constexpr std::size_t name_size = 12;

// Returns the maximum length of a piece. Enumerations are printed by name, arrays of bytes as
// numbers without separators.
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

// Each put() writes a piece and returns its end. These are in text.cpp.
char* put(char* to, int value);
char* put(char* to, unsigned int value);

// These write names and are in enumerations.cpp.
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

// Appends the log text of an attribute (attributes.cpp). Attributes of other classes render
// themselves.
void append_text(std::string& text, const QOVA_MediaAttribute& attribute);

// Appends the log text of a crypto line (crypto.cpp).
void append_text(std::string& text, const QOVA_Crypto& crypto);

// Appends the log text of a media (media.cpp).
void append_text(std::string& text, const QOVA_Media& media);

// Estimates for texts of usual length, so that the result rarely has to grow.
inline constexpr std::size_t usual_crypto_length = 128;
inline constexpr std::size_t usual_media_length = 1024;

}  // namespace qova

#endif
