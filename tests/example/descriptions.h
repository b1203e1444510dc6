// Descriptions for the tests of the example's reader and mover.

#ifndef QOVA_TESTS_EXAMPLE_DESCRIPTIONS_H
#define QOVA_TESTS_EXAMPLE_DESCRIPTIONS_H

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

#include "sdp_text.h"

// Lines with CR LF behind each.
inline std::string lines(std::initializer_list<std::string> list) {
    std::string text;
    for (const std::string& line : list) {
        text += line + "\r\n";
    }
    return text;
}

// A session at 10.0.0.1, five lines long, and what follows it.
inline std::string session(std::initializer_list<std::string> media) {
    return lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "s=-", "c=IN IP4 10.0.0.1", "t=0 0"}) +
           lines(media);
}

inline std::string shown(const sdp::Error& error) {
    return std::to_string(error.line) + ": " + error.message;
}

// The value of a result that has to be one.
template <class T>
T accepted(sdp::Result<T> result) {
    if (const auto* const error = std::get_if<sdp::Error>(&result)) {
        throw std::runtime_error("refused: " + shown(*error));
    }
    return std::get<T>(std::move(result));
}

// "LINE: message" of a result that has to be an error.
template <class T>
std::string refusal(const sdp::Result<T>& result) {
    const auto* const error = std::get_if<sdp::Error>(&result);
    return error == nullptr ? "accepted" : shown(*error);
}

#endif
