#include "sdp_mover.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <vector>

#include "descriptions.h"
#include "qova/media.h"
#include "sdp_reader.h"

namespace {

using sdp::Plan;

// Audio ports move by 8000, fax ports by 334.
const Plan to_public = {"203.0.113.5", 40000, 7000};

Plan back_to(const std::string& address) {
    return {address, to_public.audio_port, to_public.fax_port, true};
}

std::string moved(const std::string& text, const Plan& plan = to_public) {
    return sdp::move(text, plan).text;
}

std::string refusal_of(const std::string& text, const Plan& plan = to_public) {
    return refusal([&] { sdp::move(text, plan); });
}

// Moves a text there and back again.
std::string there_and_back(const std::string& text, const Plan& plan = to_public) {
    const sdp::Move there = sdp::move(text, plan);
    const Plan back = {there.old_address, plan.audio_port, plan.fax_port, true};
    return moved(there.text, back);
}

// The lines of a moved session at 10.0.0.1, from the sixth on.
std::string moved_media(std::initializer_list<std::string> media, const Plan& plan = to_public) {
    const std::string text = session(media);
    EXPECT_EQ(there_and_back(text, plan), text);
    const std::string result = moved(text, plan);
    return result.substr(result.find("t=0 0\r\n") + 7);
}

// --- What changes --------------------------------------------------------------------------------

TEST(SdpMove, ChangesAddressesAndPortsAndNothingElse) {
    const std::string text =
        "v=0\r\n"
        "o=me 1 2 IN IP4 10.0.0.1\r\n"
        "s=10.0.0.1 32000 \r\n"
        "\r\n"
        "c=IN  IP4\t10.0.0.1 \n"
        "t=0 0\n"
        "a=x:10.0.0.1\r\n"
        "m=audio 32010\tRTP/AVP  0 8\r"
        "  a=rtcp: 32015 IN IP4 10.0.0.1\n"
        "a=candidate:1 1 UDP 1 10.0.0.1 32010 typ host\n"
        "m=image 6666/2 udptl t38\n"
        "c=IN IP4 10.0.0.1\n"
        "m=video 32020 RTP/AVP 31\n"
        "a=rtcp:32029 IN IP4 10.0.0.1";
    EXPECT_EQ(moved(text),
              "v=0\r\n"
              "o=me 1 2 IN IP4 203.0.113.5\r\n"
              "s=10.0.0.1 32000 \r\n"
              "\r\n"
              "c=IN  IP4\t203.0.113.5 \n"
              "t=0 0\n"
              "a=x:10.0.0.1\r\n"
              "m=audio 40010\tRTP/AVP  0 8\r"
              "  a=rtcp: 40015 IN IP4 203.0.113.5\n"
              "a=candidate:1 1 UDP 1 10.0.0.1 32010 typ host\n"
              "m=image 7000/2 udptl t38\n"
              "c=IN IP4 203.0.113.5\n"
              "m=video 32020 RTP/AVP 31\n"
              "a=rtcp:32029 IN IP4 203.0.113.5");
    EXPECT_EQ(moved(moved(text), back_to("10.0.0.1")), text);
}

TEST(SdpMove, ShowsTheCapabilityBeforeAndAfter) {
    const sdp::Move move =
        sdp::move(session({"m=audio 32010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"}), to_public);
    EXPECT_NE(move.log_before.find("Accepted @10.0.0.1/snd=32010~32011/rcv=32010~32011"),
              std::string::npos);
    EXPECT_NE(move.log_after.find("Accepted @203.0.113.5/snd=40010~40011/rcv=40010~40011"),
              std::string::npos);
    EXPECT_NE(move.log_after.find("Rejected @10.0.0.1/snd=0~0/rcv=0~0"), std::string::npos);
}

TEST(SdpMove, HandsOnTheWarningsAndMovesTheRest) {
    const std::string text = session(
        {"m=audio 32010 RTP/AVP 0", "a=rtcp:0", "a=rtcp:32011", "a=rtcp:32013", "a=ptime:x"});
    const sdp::Move move = sdp::move(text, to_public);
    ASSERT_EQ(move.warnings.size(), 3U);
    EXPECT_EQ(move.warnings[0].line, 7U);
    EXPECT_EQ(move.warnings[1].line, 9U);
    EXPECT_EQ(move.warnings[2].line, 10U);
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "a=rtcp:0", "a=rtcp:32011", "a=rtcp:32013",
                           "a=ptime:x"}),
              lines({"m=audio 40010 RTP/AVP 0", "a=rtcp:0", "a=rtcp:40011", "a=rtcp:32013",
                     "a=ptime:x"}));
}

TEST(SdpMove, LabelsTheAddressByItsFamily) {
    const std::string v4 = session({"m=audio 32010 RTP/AVP 0", "a=rtcp:32011 IN IP4 10.0.0.1"});
    const Plan to_v6 = {"2001:db8::5", 32000, 6666};
    const std::string v6 = moved(v4, to_v6);
    EXPECT_EQ(v6, lines({"v=0", "o=- 1 1 IN IP6 2001:db8::5", "s=-", "c=IN IP6 2001:db8::5",
                         "t=0 0", "m=audio 32010 RTP/AVP 0", "a=rtcp:32011 IN IP6 2001:db8::5"}));
    EXPECT_EQ(moved(v6, {"10.0.0.1", 32000, 6666, true}), v4);
    EXPECT_EQ(there_and_back(v6, {"198.51.100.1", 32000, 6666}), v6);
}

TEST(SdpMove, KeepsTheLetterCaseOfTheFamily) {
    const std::string text = lines({"v=0", "o=- 1 1 In Ip4 10.0.0.1", "c=IN ip4 10.0.0.1",
                                    "m=audio 32010 RTP/AVP 0", "a=rtcp:32011 in iP4 10.0.0.1"});
    const Plan to_v6 = {"2001:db8::5", 32000, 6666};
    EXPECT_EQ(moved(text, to_v6),
              lines({"v=0", "o=- 1 1 In Ip6 2001:db8::5", "c=IN ip6 2001:db8::5",
                     "m=audio 32010 RTP/AVP 0", "a=rtcp:32011 in iP6 2001:db8::5"}));
    EXPECT_EQ(there_and_back(text, to_v6), text);
}

TEST(SdpMove, WritesTheAddressAsItWasGiven) {
    const std::string text = session({"m=audio 32010 RTP/AVP 0"});
    const std::string v6 = moved(text, {"2001:DB8:0::5", 32000, 6666});
    EXPECT_NE(v6.find("c=IN IP6 2001:DB8:0::5\r\n"), std::string::npos);
    const sdp::Move back = sdp::move(v6, to_public);
    EXPECT_EQ(back.old_address, "2001:DB8:0::5");
    EXPECT_EQ(moved(back.text, back_to(back.old_address)), v6);
}

TEST(SdpMove, LeavesAnUnspecifiedAddress) {
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "c=IN IP4 0.0.0.0", "m=audio 32012 RTP/AVP 0",
                           "c=IN IP6 ::", "m=audio 32014 RTP/AVP 0", "a=rtcp:9000 IN IP4 0.0.0.0"}),
              lines({"m=audio 40010 RTP/AVP 0", "c=IN IP4 0.0.0.0", "m=audio 40012 RTP/AVP 0",
                     "c=IN IP6 ::", "m=audio 40014 RTP/AVP 0", "a=rtcp:17000 IN IP4 0.0.0.0"}));
    const std::string held = lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "c=IN IP4 0.0.0.0",
                                    "m=audio 32010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"});
    EXPECT_EQ(moved(held), lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "c=IN IP4 0.0.0.0",
                                  "m=audio 40010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"}));
    EXPECT_EQ(moved(moved(held), back_to("0.0.0.0")), held);
    EXPECT_EQ(moved(moved(held), back_to("10.0.0.1")), held);
}

TEST(SdpMove, LeavesAnOriginThatIsNotTheMedias) {
    const auto origin = [](const std::string& address) {
        const std::string text =
            lines({"v=0", "o=- 1 1 " + address, "c=IN IP4 10.0.0.1", "m=audio 32010 RTP/AVP 0"});
        EXPECT_EQ(there_and_back(text), text);
        const std::string result = moved(text);
        return result.substr(13, result.find("\r\n", 13) - 13);
    };
    EXPECT_EQ(origin("IN IP4 10.0.0.1"), "IN IP4 203.0.113.5");
    EXPECT_EQ(origin("IN IP4 127.0.0.1"), "IN IP4 127.0.0.1");
    EXPECT_EQ(origin("IN IP4 host.example.com"), "IN IP4 host.example.com");
    EXPECT_EQ(origin("IN IP6 2001:db8::1"), "IN IP6 2001:db8::1");
}

TEST(SdpMove, ChangesASessionAddressThatOnlyMediaAddressesRepeat) {
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.1", "m=text 5 RTP/AVP 98"}),
              lines({"m=audio 40010 RTP/AVP 0", "c=IN IP4 203.0.113.5", "m=text 5 RTP/AVP 98",
                     "c=IN IP4 10.0.0.1"}));
}

TEST(SdpMove, LeavesASessionAddressThatNoMovingLineHas) {
    const std::string media =
        lines({"m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.2", "m=audio 0 RTP/AVP 0"});
    const std::string text = session({}) + media;
    EXPECT_EQ(moved(text),
              session({"m=audio 40010 RTP/AVP 0", "c=IN IP4 203.0.113.5", "m=audio 0 RTP/AVP 0"}));
    EXPECT_EQ(moved(moved(text), back_to("10.0.0.2")), text);
    const std::string host = lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 host.example.com",
                                    "m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.2"});
    EXPECT_EQ(there_and_back(host), host);
}

TEST(SdpMove, GathersMediaOfSeveralAddresses) {
    const sdp::Move move = sdp::move(
        session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.2", "m=audio 32012 RTP/AVP 0"}),
        to_public);
    EXPECT_EQ(move.text, lines({"v=0", "o=- 1 1 IN IP4 203.0.113.5", "s=-", "c=IN IP4 203.0.113.5",
                                "t=0 0", "m=audio 40010 RTP/AVP 0", "c=IN IP4 203.0.113.5",
                                "m=audio 40012 RTP/AVP 0"}));
    EXPECT_EQ(move.old_address, "");
}

TEST(SdpMove, ToTheSameAddressAndPortsChangesNothing) {
    const std::string text =
        session({"m=audio 032010 RTP/AVP 0", "m=audio 0 RTP/AVP 0", "m=text 5 RTP/AVP 98"});
    EXPECT_EQ(moved(text, {"10.0.0.1", 32000, 6666}), text);
}

// --- Lines that keep their address ---------------------------------------------------------------

const std::string own = "c=IN IP4 10.0.0.1";

TEST(SdpMoveKeeps, RejectedAndPassedThroughLinesGetACOfTheirOwn) {
    EXPECT_EQ(moved_media({"m=audio 0 RTP/AVP 0", "a=x", "m=audio 32010 RTP/AVP 0",
                           "m=text 5 RTP/AVP 98", "i=typed", "b=AS:1", "m=image 0 udptl t38"}),
              lines({"m=audio 0 RTP/AVP 0", own, "a=x", "m=audio 40010 RTP/AVP 0",
                     "m=text 5 RTP/AVP 98", "i=typed", own, "b=AS:1", "m=image 0 udptl t38", own}));
}

TEST(SdpMoveKeeps, TheirRtcpAndOtherAddresses) {
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "m=audio 0 RTP/AVP 0", "c=IN IP4 10.0.0.9",
                           "a=rtcp:9 IN IP4 10.0.0.1", "m=text 5 RTP/AVP 98", "c=IN IP4 host"}),
              lines({"m=audio 40010 RTP/AVP 0", "m=audio 0 RTP/AVP 0", "c=IN IP4 10.0.0.9",
                     "a=rtcp:9 IN IP4 10.0.0.1", "m=text 5 RTP/AVP 98", "c=IN IP4 host"}));
}

TEST(SdpMoveKeeps, ACThatRepeatedTheSessionsFromTheStart) {
    const std::string rejected = "m=audio 0 RTP/AVP 0";
    const std::string audio = "m=audio 32010 RTP/AVP 0";
    const std::string moved_audio = "m=audio 40010 RTP/AVP 0";
    EXPECT_EQ(moved_media({audio, rejected, own}), lines({moved_audio, rejected, own, own}));
    EXPECT_EQ(moved_media({audio, rejected, own, own, "a=x"}),
              lines({moved_audio, rejected, own, own, own, "a=x"}));
    // Not where a move puts one, or not what it puts there: it needs no mark.
    EXPECT_EQ(moved_media({audio, rejected, "a=x", own}),
              lines({moved_audio, rejected, "a=x", own}));
    EXPECT_EQ(moved_media({audio, rejected, "", own}), lines({moved_audio, rejected, "", own}));
    EXPECT_EQ(moved_media({audio, rejected, " " + own}), lines({moved_audio, rejected, " " + own}));
    EXPECT_EQ(moved_media({audio, rejected, own, "c=IN IP4 10.0.0.9"}),
              lines({moved_audio, rejected, own, "c=IN IP4 10.0.0.9"}));
}

TEST(SdpMoveKeeps, ACThatIsAtTheNewAddressAlready) {
    const std::string target = "c=IN IP4 203.0.113.5";
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "m=audio 0 RTP/AVP 0", target}),
              lines({"m=audio 40010 RTP/AVP 0", "m=audio 0 RTP/AVP 0", target}));
}

TEST(SdpMoveKeeps, TheLineEndings) {
    const std::string head =
        "v=0\no=- 1 1 IN IP4 h\nc=IN IP4 10.0.0.1\r\nm=audio 32010 RTP/AVP 0\n";
    const std::string moved_head =
        "v=0\no=- 1 1 IN IP4 h\nc=IN IP4 203.0.113.5\r\nm=audio 40010 RTP/AVP 0\n";
    const auto both_ways = [&head](const std::string& media) {
        EXPECT_EQ(there_and_back(head + media), head + media);
        return moved(head + media);
    };
    const std::string rejected = "m=audio 0 RTP/AVP 0";
    EXPECT_EQ(both_ways(rejected), moved_head + rejected + "\r\n" + own);
    EXPECT_EQ(both_ways(rejected + "\n"), moved_head + rejected + "\n" + own + "\n");
    EXPECT_EQ(both_ways(rejected + "\r"), moved_head + rejected + "\r" + own + "\r");
    EXPECT_EQ(both_ways(rejected + "\r\n" + own),
              moved_head + rejected + "\r\n" + own + "\r\n" + own);
    EXPECT_EQ(both_ways(rejected + "\n" + own), moved_head + rejected + "\n" + own + "\n" + own);
    EXPECT_EQ(both_ways(rejected + "\ni=x"), moved_head + rejected + "\ni=x\r\n" + own);
}

TEST(SdpMoveBack, GivesALineWithoutCTheAddressThatItHad) {
    const std::string text = lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 203.0.113.5",
                                    "m=audio 40010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"});
    EXPECT_EQ(moved(text, back_to("10.0.0.1")),
              lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 10.0.0.1", "m=audio 32010 RTP/AVP 0",
                     "m=audio 0 RTP/AVP 0", "c=IN IP4 203.0.113.5"}));
}

// --- Refusals ------------------------------------------------------------------------------------

TEST(SdpMoveRefusal, OfPortsThatWrapOrBecomeZero) {
    const auto of_line = [](const std::string& line, unsigned short audio, unsigned short fax) {
        return refusal_of(session({line}), {"10.0.0.2", audio, fax});
    };
    EXPECT_EQ(of_line("m=audio 8000 RTP/AVP 0", 24001, 6666), "accepted");
    EXPECT_EQ(of_line("m=audio 8000 RTP/AVP 0", 24000, 6666), "6: the move takes port 8000 to 0");
    EXPECT_EQ(of_line("m=audio 8000 RTP/AVP 0", 1, 6666), "6: the move takes port 8000 to -23999");
    EXPECT_EQ(of_line("m=audio 62000 RTP/AVP 0", 35534, 6666), "accepted");
    EXPECT_EQ(of_line("m=audio 62000 RTP/AVP 0", 35535, 6666),
              "6: the move takes port 62001 to 65536");
    EXPECT_EQ(of_line("m=audio 62000/2 RTP/AVP 0", 35533, 6666),
              "6: the move takes port 62003 to 65536");
    EXPECT_EQ(of_line("m=image 6667 udptl t38", 32000, 65533), "accepted");
    EXPECT_EQ(of_line("m=image 6667 udptl t38", 32000, 65534),
              "6: the move takes port 6668 to 65536");
    EXPECT_EQ(of_line("m=audio 65535 RTP/AVP 0", 32000, 6666),
              "6: port 65535 leaves no second port to move");
    EXPECT_EQ(of_line("m=video 65000 RTP/AVP 31", 65535, 65535), "accepted");
    EXPECT_EQ(of_line("m=audio 0 RTP/AVP 0", 65535, 65535), "accepted");
    EXPECT_EQ(
        refusal_of(session({"m=audio 40000 RTP/AVP 0", "a=rtcp:9"}), {"10.0.0.2", 31991, 6666}),
        "6: the move takes port 9 to 0");
    EXPECT_EQ(refusal_of(session({"m=audio 8000 RTP/AVP 0"}), {"10.0.0.2", 40000, 6666, true}),
              "6: the move takes port 8000 to 0");
    EXPECT_EQ(refusal_of(session({"m=audio 60000 RTP/AVP 0"}), {"10.0.0.2", 1, 6666, true}),
              "6: the move takes port 60000 to 91999");
}

TEST(SdpMoveRefusal, OfAddressesThatMediaCannotHave) {
    const std::string text = session({"m=audio 32010 RTP/AVP 0"});
    const std::string message = "0: the new address is not one that media can have";
    for (const char* const address : {"", "x", "10.0.0", "10.0.0.256", "010.0.0.1", "224.0.0.1",
                                      "ff02::1", "fe80::1%eth0", "10.0.0.1 "}) {
        EXPECT_EQ(refusal_of(text, {address, 40000, 7000}), message) << address;
    }
    EXPECT_EQ(refusal_of(text, {"0.0.0.0", 40000, 7000}),
              "0: the new address is unspecified, which would hold the call");
}

TEST(SdpMoveRefusal, OfMulticast) {
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 224.2.1.1/127"})),
              "7: a multicast address cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP6 ff15::101"})),
              "7: a multicast address cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.1/24"})),
              "7: an address with a number after it cannot move");
}

TEST(SdpMoveRefusal, OfALineWithTwoAddresses) {
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "a=rtcp:32011 IN IP4 10.0.0.2"})),
              "7: the media has a second address, which cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", own, "c=IN IP4 10.0.0.2"})),
              "8: the media has a second address, which cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", own, own})), "accepted");
    EXPECT_EQ(refusal_of(session({"m=audio 0 RTP/AVP 0", "a=rtcp:1 IN IP4 10.0.0.2"})), "accepted");
}

TEST(SdpMoveRefusal, OfWhatCouldNotBeUndone) {
    const std::string message =
        ": the reverse move would not restore this line: it is already at the new address, or "
        "spells the old address or a port in an unusual way";
    EXPECT_EQ(refusal_of(session({"m=audio 032010 RTP/AVP 0"})), "6" + message);
    EXPECT_EQ(refusal_of(lines({"v=0", "o=- 1 1 IN IP4 203.0.113.5", "c=IN IP4 10.0.0.1",
                                "m=audio 32010 RTP/AVP 0"})),
              "2" + message);
    EXPECT_EQ(refusal_of(lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 203.0.113.5",
                                "m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.1"})),
              "3" + message);
    EXPECT_EQ(refusal_of(lines({"v=0", "o=- 1 1 IN IP6 2001:DB8::1", "c=IN IP6 2001:db8::1",
                                "m=audio 32010 RTP/AVP 0"})),
              "2" + message);
}

TEST(SdpMoveRefusal, OfAHostName) {
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 media.example.com"})),
              "7: host names are not looked up");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "a=rtcp:32011 IN IP4 host"})),
              "7: host names are not looked up");
    EXPECT_EQ(refusal_of(lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 media.example.com",
                                "m=audio 32010 RTP/AVP 0"})),
              "3: host names are not looked up");
}

TEST(SdpMoveRefusal, OfWhatTheReaderRefuses) {
    EXPECT_EQ(refusal_of(""), "0: no session description: there is nothing in it");
    EXPECT_EQ(refusal_of(session({"m=audio x RTP/AVP 0"})),
              "6: the port is no number from 0 to 65535");
}

// --- Any description -----------------------------------------------------------------------------

// Descriptions of every shape that the rules speak of, most of them with one address.
class RandomDescriptions {
public:
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
        const std::string port = one_in(3) ? "0" : std::to_string(1 + random() % 65535);
        line(pick({"m=audio " + port + " RTP/AVP 0", "m=audio " + port + " RTP/AVP 0",
                   "m=image " + port + " udptl t38", "m=video " + port + " RTP/AVP 31",
                   "m=text " + port + " RTP/AVP 98"}));
        if (one_in(6)) {
            line("i=x");
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

    std::mt19937 engine{20240607};
    std::string ending;
    std::string text;
    bool has_session_address = false;
};

std::optional<sdp::Move> move_of(const std::string& text) {
    try {
        return sdp::move(text, to_public);
    } catch (const sdp::Refusal&) {
        return std::nullopt;
    }
}

TEST(SdpMoveOfAnyDescription, IsUndoneByTheReverseMoveOrRefused) {
    RandomDescriptions descriptions;
    int accepted_count = 0;
    int with_added_line = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = descriptions.next();
        const auto move = move_of(text);
        if (!move || move->old_address.empty()) {
            continue;
        }
        ++accepted_count;
        with_added_line += move->text.size() > text.size() + 17 ? 1 : 0;
        ASSERT_EQ(moved(move->text, back_to(move->old_address)), text);
    }
    EXPECT_GT(accepted_count, 5000);
    EXPECT_GT(with_added_line, 500);
}

TEST(SdpMoveOfAnyDescription, LeavesATextThatReadsAsTheMovedModel) {
    RandomDescriptions descriptions;
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
        ASSERT_EQ(before.media.size(), after.media.size());
        for (std::size_t k = 0; k < before.media.size(); ++k) {
            ASSERT_EQ(before.media[k] == nullptr, after.media[k] == nullptr);
            if (before.media[k] == nullptr) {
                continue;
            }
            if (after.media[k]->address->IsAny() != 0) {
                delete before.media[k]->address;
                before.media[k]->address = after.media[k]->address->Copy();
            }
            ASSERT_EQ(std::string(*before.media[k]), std::string(*after.media[k])) << text;
            ++compared;
        }
    }
    EXPECT_GT(compared, 5000);
}

}  // namespace
