// The log-text writer. A line is composed on the stack and appended to the result once: no stream,
// no locale, no allocation of its own but the result's. The longest text of every piece is known
// when the program is compiled, and so is the size of the buffer.

#ifndef QOVA_SRC_TEXT_H
#define QOVA_SRC_TEXT_H

#include <cstddef>
#include <cstring>
#include <string>

#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/enumerations.h"
#include "qova/media.h"

namespace qova {

// The greatest number of characters that a piece of a type takes. Literals and numbers stand for
// themselves, enumerations for their names, an array of bytes for its numbers side by side.
template <class Piece>
inline constexpr std::size_t longest = 0;
template <std::size_t N>
inline constexpr std::size_t longest<char[N]> = N - 1;
template <>
inline constexpr std::size_t longest<bool> = 1;
template <>
inline constexpr std::size_t longest<int> = 11;
template <>
inline constexpr std::size_t longest<unsigned int> = 10;
template <>
inline constexpr std::size_t longest<unsigned short> = 5;
template <>
inline constexpr std::size_t longest<unsigned char> = 3;
template <std::size_t N>
inline constexpr std::size_t longest<unsigned char[N]> = N* longest<unsigned char>;

// One more than the longest, for a name and its length to fill twelve bytes.
inline constexpr std::size_t longest_name = 11;
template <>
inline constexpr std::size_t longest<QOVA_Codec> = longest_name;
template <>
inline constexpr std::size_t longest<QOVA_EarlyMedia> = longest_name;
template <>
inline constexpr std::size_t longest<QOVA_FaxTransport> = longest_name;
template <>
inline constexpr std::size_t longest<QOVA_FaxRateMgt> = longest_name;
template <>
inline constexpr std::size_t longest<QOVA_Media::e_MediaType> = longest_name;
template <>
inline constexpr std::size_t longest<QOVA_Media::e_MediaStatus> = longest_name;

// Each writes a piece and returns the end of it.
char* put(char* to, int value);
char* put(char* to, unsigned int value);
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
    std::memcpy(to, literal, longest<char[N]>);
    return to + longest<char[N]>;
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
    static_assert(((longest<Piece> != 0) && ...), "a piece whose longest text is not known");
    char line[(longest<Piece> + ...)];
    char* end = line;
    ((end = put(end, pieces)), ...);
    text.append(line, static_cast<std::size_t>(end - line));
}

// The text of one piece.
template <class Piece>
std::string text_of(const Piece& piece) {
    std::string text;
    append(text, piece);
    return text;
}

// Append the log text of an object. That of an attribute of a class unknown here is asked of the
// object itself.
void append_text(std::string& text, const QOVA_MediaAttribute& attribute);
void append_text(std::string& text, const QOVA_Crypto& crypto);
void append_text(std::string& text, const QOVA_Media& media);

// Room for texts with common values, such as one key, so that the result seldom has to move.
inline constexpr std::size_t usual_crypto_length = 128;
std::size_t usual_length(const QOVA_Media& media);

}  // namespace qova

#endif
