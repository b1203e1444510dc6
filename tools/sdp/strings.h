/// @file
/// Helpers for text. None of them copies or looks at the locale.

#ifndef QOVA_TOOLS_SDP_STRINGS_H
#define QOVA_TOOLS_SDP_STRINGS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sdp {

/// Compares without regard to ASCII case.
bool same(std::string_view left, std::string_view right);

/// Returns true if `text` starts with `prefix`, without regard to ASCII case.
bool starts_with(std::string_view text, std::string_view prefix);

/// The characters that separate fields in SDP.
constexpr std::string_view blanks = " \t";

/// Returns the text without blanks at its ends.
std::string_view trimmed(std::string_view text);

/// Returns the first line of a text, without its line ending (LF, CR LF or CR).
std::string_view first_line(std::string_view text);

/// Splits a text at each of the separators into at most `max` pieces; the last piece is the rest of
/// the text. The result has at least one piece, and pieces can be empty.
std::vector<std::string_view> split(std::string_view text, std::string_view separators,
                                    std::size_t max = std::string_view::npos);

/// Splits a text at blanks. No piece is empty, so the result can be.
std::vector<std::string_view> tokens(std::string_view text);

/// Parses a decimal number. Returns nullopt if the text has anything but digits or the number
/// exceeds `max`.
std::optional<unsigned long long> number(std::string_view digits, unsigned long long max);

/// Replaces the control characters except tabs, so that text from outside cannot act on a terminal.
std::string printable(std::string text);

/// Appends a newline, unless the text already ends with one.
std::string with_newline(std::string text);

}  // namespace sdp

#endif
