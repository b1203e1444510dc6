// Descriptions for the tests of the tools.

#ifndef QOVA_TESTS_TOOLS_DESCRIPTIONS_H
#define QOVA_TESTS_TOOLS_DESCRIPTIONS_H

#include <string>
#include <vector>

#include "sdp/text.h"

// Lines with CR LF after each.
inline std::string lines(const std::vector<std::string>& list) {
    std::string text;
    for (const std::string& line : list) {
        text += line + "\r\n";
    }
    return text;
}

// A session at 10.0.0.1, five lines long, and what follows it.
inline std::string session(const std::vector<std::string>& media) {
    return lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "s=-", "c=IN IP4 10.0.0.1", "t=0 0"}) +
           lines(media);
}

// "LINE: message" of a call that refuses its description, or "accepted".
template <class Call>
std::string refusal(Call call) {
    try {
        call();
        return "accepted";
    } catch (const sdp::Refusal& refusal) {
        return std::to_string(refusal.line) + ": " + refusal.what();
    }
}

#endif
