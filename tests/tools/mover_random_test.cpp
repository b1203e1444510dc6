#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <vector>

#include "move/mover.h"
#include "moves.h"
#include "qova/media.h"
#include "sdp/reader.h"

namespace {

// Descriptions of every shape that the rules speak of, most of them with one address.
class RandomDescriptions {
public:
    // Bundles, and ports that are shared or none, which the model does not know.
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
            line(pick({"", "", "", " "}) +
                 "c=" + address({"10.0.0.1", "10.0.0.1", "10.0.0.1", "0.0.0.0", "10.0.0.9"}));
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
            line("a=rtcp:" + std::to_string(1 + random() % 65535) +
                 pick({"", " IN IP4 10.0.0.1", " IN IP4 10.0.0.1"}));
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

std::optional<sdp::Move> move_of(const std::string& text) {
    try {
        Plan plan = to_public;
        plan.merge = true;
        return move_by(text, plan);
    } catch (const sdp::Refusal&) {
        return std::nullopt;
    }
}

TEST(SdpMoveOfAnyDescription, IsUndoneByTheReverseMoveOrRefused) {
    RandomDescriptions descriptions(true);
    int accepted_count = 0;
    int with_added_line = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = descriptions.next();
        const auto move = move_of(text);
        if (!move || !move->old_address) {
            continue;
        }
        ++accepted_count;
        with_added_line += move->text.size() > text.size() + 17 ? 1 : 0;
        ASSERT_EQ(moved(move->text, back_to(old_address(*move))), text);
    }
    EXPECT_GT(accepted_count, 5000);
    EXPECT_GT(with_added_line, 500);
}

TEST(SdpMoveOfAnyDescription, LeavesATextThatReadsAsTheMovedModel) {
    RandomDescriptions descriptions(false);
    IPAddress address;
    IPAddress::Parse(to_public.address, address);
    int compared = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = descriptions.next();
        const auto move = move_of(text);
        if (!move) {
            continue;
        }
        const sdp::Reading before =
            sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::LENIENT);
        const sdp::Reading after =
            sdp::read(sdp::Description(move->text), sdp::Role::OFFER, sdp::Strictness::LENIENT);
        // The model moves unspecified addresses too; the text keeps them.
        before.capability->setPublicAddrPort(UDPAddr(address, 0), to_public.audio_port,
                                             to_public.fax_port);
        ASSERT_EQ(before.lines.size(), after.lines.size());
        for (std::size_t k = 0; k < before.lines.size(); ++k) {
            QOVA_Media* const moved = before.lines[k].media;
            const QOVA_Media* const reread = after.lines[k].media;
            ASSERT_EQ(moved == nullptr, reread == nullptr);
            if (moved == nullptr) {
                continue;
            }
            if (reread->address->IsAny() != 0) {
                delete moved->address;
                moved->address = reread->address->Copy();
            }
            ASSERT_EQ(std::string(*moved), std::string(*reread)) << text;
            ++compared;
        }
    }
    EXPECT_GT(compared, 5000);
}

}  // namespace
