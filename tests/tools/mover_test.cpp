#include "move/mover.h"

#include <gtest/gtest.h>

#include "moves.h"

namespace {

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
        move_by(session({"m=audio 32010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"}), to_public);
    EXPECT_NE(move.log_before.find("Accepted @10.0.0.1/snd=32010~32011/rcv=32010~32011"),
              std::string::npos);
    EXPECT_NE(move.log_after.find("Accepted @203.0.113.5/snd=40010~40011/rcv=40010~40011"),
              std::string::npos);
    EXPECT_NE(move.log_after.find("Rejected @10.0.0.1/snd=0~0/rcv=0~0"), std::string::npos);
}

TEST(SdpMove, ShowsTheMovedTextInTheLogAfter) {
    const sdp::Move move =
        move_by(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 0.0.0.0", "m=audio 32012 RTP/AVP 0"}),
                to_public);
    EXPECT_NE(move.log_after.find("Accepted @0.0.0.0/snd=40010~40011"), std::string::npos);
    EXPECT_NE(move.log_after.find("Accepted @203.0.113.5/snd=40012~40013"), std::string::npos);
}

TEST(SdpMove, ReadsAnOfferOrAnAnswer) {
    const std::string text = session({"m=audio 32010 RTP/AVP 0"});
    Plan plan = to_public;
    EXPECT_EQ(move_by(text, plan).log_after.substr(0, 17), "Capability(offer,");
    plan.role = sdp::Role::ANSWER;
    EXPECT_EQ(move_by(text, plan).log_before.substr(0, 18), "Capability(answer,");
    EXPECT_EQ(move_by(text, plan).log_after.substr(0, 18), "Capability(answer,");
}

TEST(SdpMove, HandsOnTheWarningsAndMovesTheRest) {
    const std::string text = session(
        {"m=audio 32010 RTP/AVP 0", "a=rtcp:0", "a=rtcp:32011", "a=rtcp:32013", "a=ptime:x"});
    const sdp::Move move = move_by(text, to_public);
    ASSERT_EQ(move.diagnostics.size(), 3U);
    EXPECT_EQ(move.diagnostics[0].line, 7U);
    EXPECT_EQ(move.diagnostics[1].line, 9U);
    EXPECT_EQ(move.diagnostics[2].line, 10U);
    const std::string candidate = "a=candidate:1 1 UDP 1 10.0.0.1 32010 typ host";
    const sdp::Move mixed =
        move_by(session({"m=audio 32010 RTP/AVP 0", candidate, "a=ptime:x"}), to_public);
    ASSERT_EQ(mixed.diagnostics.size(), 2U);
    EXPECT_EQ(mixed.diagnostics[0].line, 7U);
    EXPECT_EQ(mixed.diagnostics[1].line, 8U);
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
    const sdp::Move back = move_by(v6, to_public);
    EXPECT_EQ(old_address(back), "2001:DB8:0::5");
    EXPECT_EQ(moved(back.text, back_to(old_address(back))), v6);
}

TEST(SdpMove, LeavesAnUnspecifiedAddress) {
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "c=IN IP4 0.0.0.0", "m=audio 32012 RTP/AVP 0",
                           "c=IN IP6 ::", "m=audio 32014 RTP/AVP 0", "a=rtcp:9000 IN IP4 0.0.0.0"}),
              lines({"m=audio 40010 RTP/AVP 0", "c=IN IP4 0.0.0.0", "m=audio 40012 RTP/AVP 0",
                     "c=IN IP6 ::", "m=audio 40014 RTP/AVP 0", "a=rtcp:17000 IN IP4 0.0.0.0"}));
    EXPECT_EQ(moved_media({"m=audio 32010 RTP/AVP 0", "c=IN IP4 0.0.0.0",
                           "m=video 32010 RTP/AVP 31", "c=IN IP4 0.0.0.0"}),
              lines({"m=audio 40010 RTP/AVP 0", "c=IN IP4 0.0.0.0", "m=video 32010 RTP/AVP 31",
                     "c=IN IP4 0.0.0.0"}));
    const std::string held = lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "c=IN IP4 0.0.0.0",
                                    "m=audio 32010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"});
    EXPECT_EQ(moved(held), lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "c=IN IP4 0.0.0.0",
                                  "m=audio 40010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"}));
    EXPECT_EQ(moved(moved(held), back_to("10.0.0.1")), held);
    EXPECT_EQ(there_and_back(held), held);
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

TEST(SdpMove, MergesMediaOfSeveralAddressesWhenAsked) {
    Plan plan = to_public;
    plan.merge = true;
    const sdp::Move move = move_by(
        session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.2", "m=audio 32012 RTP/AVP 0"}), plan);
    EXPECT_EQ(move.text, lines({"v=0", "o=- 1 1 IN IP4 203.0.113.5", "s=-", "c=IN IP4 203.0.113.5",
                                "t=0 0", "m=audio 40010 RTP/AVP 0", "c=IN IP4 203.0.113.5",
                                "m=audio 40012 RTP/AVP 0"}));
    EXPECT_EQ(old_address(move), "");
}

TEST(SdpMove, ToTheSameAddressAndPortsChangesNothing) {
    const std::string text =
        session({"m=audio 032010 RTP/AVP 0", "m=audio 0 RTP/AVP 0", "m=text 5 RTP/AVP 98"});
    EXPECT_EQ(moved(text, {"10.0.0.1", 32000, 6666}), text);
}

// --- Ports that are none, and ports that are shared ----------------------------------------------

TEST(SdpMovePorts, OfNoCandidateYetStay) {
    EXPECT_EQ(
        moved_media({"m=audio 9 UDP/TLS/RTP/SAVPF 0", "c=IN IP4 0.0.0.0", "a=rtcp:9 IN IP4 0.0.0.0",
                     "m=audio 9 UDP/TLS/RTP/SAVPF 0", "c=IN IP6 ::", "m=audio 32010 RTP/AVP 0",
                     "a=rtcp:9 IN IP4 0.0.0.0", "m=image 9 udptl t38", "c=IN IP4 0.0.0.0"}),
        lines({"m=audio 9 UDP/TLS/RTP/SAVPF 0", "c=IN IP4 0.0.0.0", "a=rtcp:9 IN IP4 0.0.0.0",
               "m=audio 9 UDP/TLS/RTP/SAVPF 0", "c=IN IP6 ::", "m=audio 40010 RTP/AVP 0",
               "a=rtcp:9 IN IP4 0.0.0.0", "m=image 9 udptl t38", "c=IN IP4 0.0.0.0"}));
    // At an address it is a port like any other.
    EXPECT_EQ(moved_media({"m=audio 9 RTP/AVP 0", "a=rtcp:9"}),
              lines({"m=audio 8009 RTP/AVP 0", "a=rtcp:8009"}));
}

TEST(SdpMovePorts, OfTcpLinesThatWillConnectStay) {
    EXPECT_EQ(moved_media({"m=image 9 TCP t38", "a=setup:active", "m=audio 9 TCP/RTP/AVP 0",
                           "m=image 9 tcptl t38", "m=image 6668 TCP t38"}),
              lines({"m=image 9 TCP t38", "a=setup:active", "m=audio 9 TCP/RTP/AVP 0",
                     "m=image 9 tcptl t38", "m=image 7002 TCP t38"}));
}

TEST(SdpMovePorts, NeedNoSecondPortWhereNoneExists) {
    const Plan to_the_end = {"203.0.113.5", 65535, 65535};
    EXPECT_EQ(refusal_of(session({"m=audio 32000 RTP/AVP 0"}), to_the_end),
              "6: the move would change port 32001 to 65536");
    EXPECT_EQ(moved_media({"m=audio 32000 RTP/AVP 0", "a=rtcp-mux"}, to_the_end),
              lines({"m=audio 65535 RTP/AVP 0", "a=rtcp-mux"}));
    EXPECT_EQ(moved_media({"m=audio 32000 TCP/RTP/AVP 0"}, to_the_end),
              lines({"m=audio 65535 TCP/RTP/AVP 0"}));
    EXPECT_EQ(moved_media({"m=image 6666 udptl t38"}, to_the_end),
              lines({"m=image 65535 udptl t38"}));
    EXPECT_EQ(moved_media({"m=image 65535 udptl t38"}, {"203.0.113.5", 32000, 6665}),
              lines({"m=image 65534 udptl t38"}));
}

// A session with a group, which is line 6.
std::string grouped(const std::string& group, std::initializer_list<std::string> media) {
    return session({"a=group:" + group}) + lines(media);
}

TEST(SdpMovePorts, OfBundledLinesMoveTogether) {
    const std::string text =
        grouped("BUNDLE a v d",
                {"m=video 32010 RTP/AVP 31", "a=mid:v", "a=rtcp:32010", "m=audio 32010 RTP/AVP 0",
                 "a=mid:a", "a=rtcp-mux", "m=application 32010 UDP/DTLS/SCTP webrtc-datachannel",
                 "a=mid:d", "m=video 32012 RTP/AVP 31", "a=mid:other", "m=video 0 RTP/AVP 31",
                 "c=IN IP4 10.0.0.9", "a=mid:v", "a=bundle-only"});
    const std::string result = moved(text);
    EXPECT_EQ(
        result.substr(result.find("m=")),
        lines({"m=video 40010 RTP/AVP 31", "a=mid:v", "a=rtcp:40010", "m=audio 40010 RTP/AVP 0",
               "a=mid:a", "a=rtcp-mux", "m=application 40010 UDP/DTLS/SCTP webrtc-datachannel",
               "a=mid:d", "m=video 32012 RTP/AVP 31", "a=mid:other", "m=video 0 RTP/AVP 31",
               "c=IN IP4 10.0.0.9", "a=mid:v", "a=bundle-only"}));
    EXPECT_EQ(there_and_back(text), text);
    const std::string on_their_own = grouped("bundle a v", {"m=audio 32010 RTP/AVP 0", "a=mid:a",
                                                            "m=video 32012 RTP/AVP 31", "a=mid:v"});
    EXPECT_NE(moved(on_their_own).find("m=video 32012"), std::string::npos);
    EXPECT_EQ(there_and_back(on_their_own), on_their_own);
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

TEST(SdpMoveBack, SaysWhenNoMoveUndoesIt) {
    const std::string text = session({"m=audio 32010 RTP/AVP 0"});
    EXPECT_EQ(old_address(move_by(moved(text), back_to("10.0.0.1"))), "203.0.113.5");
    const std::string zeros = session({"m=audio 040010 RTP/AVP 0"});
    EXPECT_EQ(old_address(move_by(zeros, back_to("10.0.0.2"))), "");
}

TEST(SdpMoveBack, GivesALineWithoutCTheAddressThatItHad) {
    const std::string text = lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 203.0.113.5",
                                    "m=audio 40010 RTP/AVP 0", "m=audio 0 RTP/AVP 0"});
    EXPECT_EQ(moved(text, back_to("10.0.0.1")),
              lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 10.0.0.1", "m=audio 32010 RTP/AVP 0",
                     "m=audio 0 RTP/AVP 0", "c=IN IP4 203.0.113.5"}));
}

}  // namespace
