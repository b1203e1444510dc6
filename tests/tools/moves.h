// Moves for the tests of the mover.

#ifndef QOVA_TESTS_TOOLS_MOVES_H
#define QOVA_TESTS_TOOLS_MOVES_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "descriptions.h"
#include "move/mover.h"

// Audio ports move by 8000, fax ports by 334.
inline const sdp::Plan to_public = {"203.0.113.5", 40000, 7000};

inline sdp::Plan back_to(const std::string& address) {
    return {address, to_public.audio_port, to_public.fax_port, true};
}

inline std::string moved(const std::string& text, const sdp::Plan& plan = to_public) {
    return sdp::move(text, plan).text;
}

inline std::string refusal_of(const std::string& text, const sdp::Plan& plan = to_public) {
    return refusal([&] { sdp::move(text, plan); });
}

// Moves a text there and back again.
inline std::string there_and_back(const std::string& text, const sdp::Plan& plan = to_public) {
    const sdp::Move there = sdp::move(text, plan);
    const sdp::Plan back = {there.old_address, plan.audio_port, plan.fax_port, true};
    return moved(there.text, back);
}

// A session at 10.0.0.1 after its move, from the sixth line on. The way back is tried too.
inline std::string moved_media(std::initializer_list<std::string> media,
                               const sdp::Plan& plan = to_public) {
    const std::string text = session(media);
    EXPECT_EQ(there_and_back(text, plan), text);
    const std::string result = moved(text, plan);
    return result.substr(result.find("t=0 0\r\n") + 7);
}

#endif
