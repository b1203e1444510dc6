// What the tests of the answerer answer, and how.

#ifndef QOVA_TESTS_TOOLS_ANSWERS_H
#define QOVA_TESTS_TOOLS_ANSWERS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "answer/answerer.h"
#include "answer/call_side.h"
#include "building_blocks.h"
#include "descriptions.h"
#include "qova/media.h"
#include "readings.h"
#include "sdp/writer.h"

// The bytes 0 to 45 in base64: prefixes of it are keys of every suite's length.
inline const std::string offered_key =
    "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKissLQ==";
inline const std::string aes_80 = "AES_CM_128_HMAC_SHA1_80 inline:" + offered_key.substr(0, 40);
inline const std::string aes_32 = "AES_CM_128_HMAC_SHA1_32 inline:" + offered_key.substr(0, 40);

// Takes all there is. Its random bytes count down from 255, so that the answer can be foretold.
inline sdp::Policy policy_at(const std::string& address = "192.0.2.1") {
    sdp::Policy policy{sdp::MediaAddress::parse(address).value()};
    policy.random = [next = 255](unsigned char* to, std::size_t size) mutable {
        std::generate_n(to, size, [&next] { return static_cast<unsigned char>(next--); });
    };
    return policy;
}

inline sdp::Plan public_plan() {
    return {sdp::MediaAddress::parse("203.0.113.5").value(), 40000, 7000};
}

// A session's media lines and their answer.
struct Answered {
    explicit Answered(const std::vector<std::string>& media,
                      const sdp::Policy& policy = policy_at())
        : text(session(media)),
          description(text),
          reading(sdp::read(description, sdp::Role::OFFER, sdp::Strictness::LENIENT)),
          answer(sdp::answer(reading, policy)) {}

    const QOVA_Capability& capability() const { return *answer.capability; }
    const QOVA_Media& media() const { return *capability().filteredMedia.front(); }

    std::string rejections() const { return told(answer.diagnostics); }

    std::string text;
    sdp::Description description;
    sdp::Reading reading;
    sdp::Answer answer;
};

// The text of the answer to a session, from its first media line on.
inline std::string answered_media(const std::vector<std::string>& media,
                                  const sdp::Policy& policy = policy_at()) {
    const Answered answered(media, policy);
    const std::string text =
        sdp::write(answered.description, answered.reading, answered.capability(),
                   answered.answer.payloads, policy.address.ip(), {1, 1});
    const std::string head =
        lines({"v=0", "o=- 1 1 IN IP4 192.0.2.1", "s=-", "c=IN IP4 192.0.2.1", "t=0 0"});
    EXPECT_EQ(text.substr(0, head.size()), head);
    return text.substr(std::min(head.size(), text.size()));
}

#endif
