// Checks the properties for random descriptions.

#include "properties.h"

#include <gtest/gtest.h>

#include <random>

#include "qova/capability.h"
#include "qova/media.h"

namespace {

// Makes descriptions that the rules of a move distinguish, most of them with one address. Each
// statement draws one random number only, because the order of evaluation is unspecified.
class RandomDescriptions {
public:
    // With bundles and shared ports, which the model does not know.
    explicit RandomDescriptions(bool with_bundles) : has_bundles(with_bundles) {}

    std::string next() {
        ending = pick({"\r\n", "\n", "\r"});
        text.clear();
        line("v=0");
        line("o=- 1 1 " + address({"10.0.0.1", "10.0.0.1", "10.0.0.9", "203.0.113.5"}));
        if (one_in(2)) {
            line("s=-");
        }
        has_session_address = !one_in(4);
        if (has_session_address) {
            const std::string at =
                address({"10.0.0.1", "10.0.0.1", "10.0.0.1", "0.0.0.0", "10.0.0.9"});
            line(pick({"", "", "", " "}) + ("c=" + at));
        }
        if (has_bundles) {
            line("a=group:BUNDLE 0 1 2");
        }
        for (unsigned count = random() % 5; count != 0; --count) {
            media();
        }
        if (one_in(3)) {
            text.resize(text.find_last_not_of("\r\n") + 1);
        }
        return text;
    }

private:
    unsigned random() { return static_cast<unsigned>(engine()); }
    bool one_in(unsigned n) { return random() % n == 0; }
    std::string pick(const std::vector<std::string>& choices) {
        return choices[random() % choices.size()];
    }
    std::string address(const std::vector<std::string>& choices) {
        return "IN IP4 " + pick(choices);
    }
    void line(const std::string& content) {
        text += content + (one_in(12) ? pick({"\r\n", "\n", "\n\n"}) : ending);
    }

    void media() {
        std::string port = one_in(3) ? "0" : std::to_string(1 + random() % 65535);
        if (has_bundles && one_in(2)) {
            port = pick({"9", "32000", "32000", "32002"});
        }
        line(pick({"m=audio " + port + " RTP/AVP 0", "m=audio " + port + " RTP/AVP 0",
                   "m=image " + port + " udptl t38", "m=video " + port + " RTP/AVP 31",
                   "m=text " + port + " RTP/AVP 98"}));
        if (one_in(6)) {
            line("i=x");
        }
        if (has_bundles) {
            line("a=mid:" + pick({"0", "1", "2", "3"}));
        }
        const bool needs_address = !has_session_address;
        for (unsigned count = needs_address ? 1 + random() % 2 : random() % 3; count != 0;
             --count) {
            line("c=" + address({"10.0.0.1", "10.0.0.1", "10.0.0.1", "10.0.0.1", "0.0.0.0",
                                 "203.0.113.5"}));
        }
        if (one_in(4)) {
            const std::string rtcp = "a=rtcp:" + std::to_string(1 + random() % 65535);
            line(rtcp + pick({"", " IN IP4 10.0.0.1", " IN IP4 10.0.0.1"}));
        }
        if (one_in(4)) {
            line(pick({"b=AS:64", "a=sendonly", "a=x"}));
        }
        if (one_in(8)) {
            line("c=IN IP4 10.0.0.1");
        }
    }

    const bool has_bundles;
    std::mt19937 engine{20240607};
    std::string ending;
    std::string text;
    bool has_session_address = false;
};

TEST(Properties, HoldForRandomDescriptions) {
    RandomDescriptions descriptions(true);
    tools::Journey merge;
    merge.options.merge = true;
    tools::Counts counts;
    for (int i = 0; i < 4000; ++i) {
        const std::string text = descriptions.next();
        ASSERT_NO_THROW(tools::check_move(text, merge, counts)) << text;
        if (i % 20 == 0) {
            tools::Counts others;
            ASSERT_NO_THROW(tools::check_properties(text, others)) << text;
        }
    }
    EXPECT_GT(counts.moved, 1200U);
    EXPECT_GT(counts.restored, 1000U);
}

TEST(RandomMove, TextReadsAsTheMovedModel) {
    RandomDescriptions descriptions(false);
    tools::Journey merge;
    merge.options.merge = true;
    int compared = 0;
    for (int i = 0; i < 4000; ++i) {
        const std::string text = descriptions.next();
        const auto moved = tools::move(text, merge);
        if (moved.is_refused()) {
            continue;
        }
        const sdp::Reading model = sdp::read(sdp::Description(text), sdp::Role::OFFER, {});
        const sdp::Reading reread =
            sdp::read(sdp::Description(moved.value.text), sdp::Role::OFFER, {});
        model.capability->setPublicAddrPort(UDPAddr(merge.plan.address.ip(), 0),
                                            merge.plan.audio_port, merge.plan.fax_port);
        ASSERT_EQ(model.lines.size(), reread.lines.size());
        for (std::size_t k = 0; k < model.lines.size(); ++k) {
            const QOVA_Media* const media = reread.lines[k].media;
            // The model moves unspecified addresses, too; the text keeps them.
            if (media != nullptr && media->address->IsAny() == 0) {
                ASSERT_EQ(std::string(*model.lines[k].media), std::string(*media)) << text;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 1000);
}

}  // namespace
