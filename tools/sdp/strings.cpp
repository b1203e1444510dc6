#include "sdp/strings.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace sdp {
namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Faster for short texts than std::string_view::find_first_of, which calls memchr for each
// character.
std::size_t find_any(std::string_view text, std::string_view characters) {
    return static_cast<std::size_t>(
        std::find_first_of(text.begin(), text.end(), characters.begin(), characters.end()) -
        text.begin());
}

}  // namespace

bool same(std::string_view left, std::string_view right) {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char l, char r) { return lower(l) == lower(r); });
}

bool starts_with(std::string_view text, std::string_view prefix) {
    return same(text.substr(0, prefix.size()), prefix);
}

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);  // npos + 1 is 0
}

std::string_view first_line(std::string_view text) {
    return text.substr(0, find_any(text, "\r\n"));
}

std::vector<std::string_view> split(std::string_view text, std::string_view separators,
                                    std::size_t max) {
    std::vector<std::string_view> pieces;
    while (pieces.size() + 1 < max) {
        const std::size_t end = find_any(text, separators);
        if (end == text.size()) {
            break;
        }
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    pieces.push_back(text);
    return pieces;
}

std::vector<std::string_view> tokens(std::string_view text) {
    std::vector<std::string_view> pieces = split(text, blanks);
    pieces.erase(std::remove(pieces.begin(), pieces.end(), ""), pieces.end());
    return pieces;
}

std::optional<unsigned long long> number(std::string_view digits, unsigned long long max) {
    unsigned long long value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || stop != end || value > max) {
        return std::nullopt;
    }
    return value;
}

std::string printable(std::string text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte < 0x20 && byte != '\t') || byte == 0x7f) {
            text[i] = '?';
        } else if (i > 0 && text[i - 1] == '\xc2' && byte >= 0x80 && byte < 0xa0) {
            text.replace(i - 1, 2, "??");  // U+0080 to U+009F
        }
    }
    return text;
}

std::string with_newline(std::string text) {
    if (text.empty() || text.back() != '\n') {
        text += '\n';
    }
    return text;
}

}  // namespace sdp
