// Moves for the tests of the mover.

#ifndef QOVA_TESTS_TOOLS_MOVES_H
#define QOVA_TESTS_TOOLS_MOVES_H

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

#include "descriptions.h"
#include "move/mover.h"

// A plan and options whose address is a text.
struct Plan {
    std::string address;
    unsigned short audio_port;
    unsigned short fax_port;
    bool back = false;
    bool merge = false;
    sdp::Role role = sdp::Role::OFFER;
    sdp::Strictness strictness = sdp::Strictness::LENIENT;
};

// Audio ports move by 8000, fax ports by 334.
inline const Plan to_public = {"203.0.113.5", 40000, 7000};

inline sdp::Move move_by(const std::string& text, const Plan& plan) {
    return sdp::move(
        text, {sdp::MediaAddress::parse(plan.address).value(), plan.audio_port, plan.fax_port},
        {plan.back, plan.merge, plan.role, plan.strictness});
}

inline std::string old_address(const sdp::Move& move) {
    return move.old_address ? move.old_address->text() : "";
}

inline Plan back_to(const std::string& address) {
    return {address, to_public.audio_port, to_public.fax_port, true};
}

inline std::string moved(const std::string& text, const Plan& plan = to_public) {
    return move_by(text, plan).text;
}

inline std::string refusal_of(const std::string& text, const Plan& plan = to_public) {
    return refusal([&] { move_by(text, plan); });
}

// Moves a text there and back again.
inline std::string there_and_back(const std::string& text, const Plan& plan = to_public) {
    const sdp::Move there = move_by(text, plan);
    const Plan back = {old_address(there), plan.audio_port, plan.fax_port, true};
    return moved(there.text, back);
}

// A session at 10.0.0.1 after its move, from the sixth line on. The way back is tried too.
inline std::string moved_media(std::initializer_list<std::string> media,
                               const Plan& plan = to_public) {
    const std::string text = session(media);
    EXPECT_EQ(there_and_back(text, plan), text);
    const std::string result = moved(text, plan);
    return result.substr(result.find("t=0 0\r\n") + 7);
}

#endif
