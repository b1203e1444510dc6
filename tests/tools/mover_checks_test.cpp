#include <gtest/gtest.h>

#include "move/mover.h"
#include "moves.h"

namespace {

const std::string own = "c=IN IP4 10.0.0.1";

TEST(SdpMoveRefusal, OfPortsThatWrapOrBecomeZero) {
    const auto of_line = [](const std::string& line, unsigned short audio, unsigned short fax) {
        return refusal_of(session({line}), {"10.0.0.2", audio, fax});
    };
    EXPECT_EQ(of_line("m=audio 8000 RTP/AVP 0", 24001, 6666), "accepted");
    EXPECT_EQ(of_line("m=audio 8000 RTP/AVP 0", 24000, 6666),
              "6: the move would change port 8000 to 0");
    EXPECT_EQ(of_line("m=audio 8000 RTP/AVP 0", 1, 6666),
              "6: the move would change port 8000 to -23999");
    EXPECT_EQ(of_line("m=audio 62000 RTP/AVP 0", 35534, 6666), "accepted");
    EXPECT_EQ(of_line("m=audio 62000 RTP/AVP 0", 35535, 6666),
              "6: the move would change port 62001 to 65536");
    EXPECT_EQ(of_line("m=audio 62000/2 RTP/AVP 0", 35533, 6666),
              "6: the move would change port 62003 to 65536");
    EXPECT_EQ(of_line("m=image 6667 udptl t38", 32000, 65534), "accepted");
    EXPECT_EQ(of_line("m=image 6667 udptl t38", 32000, 65535),
              "6: the move would change port 6667 to 65536");
    EXPECT_EQ(of_line("m=audio 65535 RTP/AVP 0", 32000, 6666),
              "6: there is no RTCP port after port 65535");
    EXPECT_EQ(of_line("m=video 65000 RTP/AVP 31", 65535, 65535), "accepted");
    EXPECT_EQ(of_line("m=audio 0 RTP/AVP 0", 65535, 65535), "accepted");
    EXPECT_EQ(
        refusal_of(session({"m=audio 40000 RTP/AVP 0", "a=rtcp:9"}), {"10.0.0.2", 31991, 6666}),
        "6: the move would change port 9 to 0");
    EXPECT_EQ(refusal_of(session({"m=audio 8000 RTP/AVP 0"}), {"10.0.0.2", 40000, 6666, true}),
              "6: the move would change port 8000 to 0");
    EXPECT_EQ(refusal_of(session({"m=audio 60000 RTP/AVP 0"}), {"10.0.0.2", 1, 6666, true}),
              "6: the move would change port 60000 to 91999");
}

TEST(SdpMoveRefusal, OfAddressesThatMediaCannotHave) {
    for (const char* const address : {"", "x", "10.0.0", "10.0.0.256", "010.0.0.1", "224.0.0.1",
                                      "ff02::1", "fe80::1%eth0", "10.0.0.1 ", "0.0.0.0", "::"}) {
        EXPECT_FALSE(sdp::MediaAddress::parse(address)) << address;
    }
}

TEST(SdpMoveRefusal, OfMulticast) {
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 224.2.1.1/127"})),
              "7: a multicast address cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP6 ff15::101"})),
              "7: a multicast address cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 10.0.0.1/24"})),
              "7: an address with a TTL or a count cannot move");
}

TEST(SdpMoveRefusal, OfALineWithTwoAddresses) {
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "a=rtcp:32011 IN IP4 10.0.0.2"})),
              "7: a media line with two addresses cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", own, "c=IN IP4 10.0.0.2"})),
              "8: a media line with two addresses cannot move");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", own, own})), "accepted");
    EXPECT_EQ(refusal_of(session({"m=audio 0 RTP/AVP 0", "a=rtcp:1 IN IP4 10.0.0.2"})), "accepted");
}

TEST(SdpMoveRefusal, OfWhatCouldNotBeUndone) {
    const std::string message =
        ": the reverse move would not restore this line: it already has the new address or port, "
        "or an unusual spelling of the old address or a port";
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
    EXPECT_EQ(refusal_of(session({"m=audio 1009 RTP/AVP 0", "c=IN IP4 0.0.0.0"}),
                         {"203.0.113.5", 31000, 7000}),
              "6" + message);
}

TEST(SdpMoveRefusal, OfWhatTheReverseMoveRefuses) {
    EXPECT_EQ(refusal_of(session({"m=audio 6666 RTP/AVP 0", "m=image 6666 udptl t38"})),
              "0: the reverse move would be refused, at line 7 of the moved description: the move "
              "would give this line the address and port of line 6");
}

TEST(SdpMoveRefusal, OfSeveralAddresses) {
    EXPECT_EQ(refusal_of(session(
                  {"m=audio 32010 RTP/AVP 0", "m=video 5 RTP/AVP 31", "c=IN IP4 10.0.0.2"})),
              "8: the address differs from that of line 4; moving both to one address cannot be "
              "undone");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "m=video 5 RTP/AVP 31",
                                  "c=IN IP4 0.0.0.0", "m=audio 0 RTP/AVP 0", "c=IN IP4 10.0.0.3"})),
              "accepted");
}

TEST(SdpMoveRefusal, OfTwoLinesThatEndAtTheSameAddressAndPort) {
    const std::string message = ": the move would give this line the address and port of line 6";
    const std::string audio = "m=audio 32010 RTP/AVP 0";
    EXPECT_EQ(refusal_of(session({audio, audio})), "7" + message);
    EXPECT_EQ(refusal_of(session({audio, "m=video 40010 RTP/AVP 31"})), "7" + message);
    EXPECT_EQ(refusal_of(session({audio, "m=video 5 RTP/AVP 31", "a=rtcp:40010"})), "7" + message);
    EXPECT_EQ(refusal_of(session({audio, "m=text 40010 RTP/AVP 98", "c=IN IP4 203.0.113.5"})),
              "7" + message);
    EXPECT_EQ(refusal_of(session({"m=image 6666 TCP t38", "m=image 6666 tcptl t38"})),
              "7" + message);
    EXPECT_EQ(refusal_of(session({audio, "a=rtcp:32010"})), "accepted");
    EXPECT_EQ(refusal_of(session({"m=image 6666 TCP t38", "m=image 6666 udptl t38"})), "accepted");
    EXPECT_EQ(refusal_of(session({"m=image 9 TCP t38", "m=image 9 TCP t38"})), "accepted");
    EXPECT_EQ(refusal_of(session({audio, "c=IN IP4 0.0.0.0", audio, "c=IN IP4 0.0.0.0"})),
              "accepted");
    EXPECT_EQ(refusal_of(session({audio, "m=audio 0 RTP/AVP 0", "m=audio 0 RTP/AVP 0"})),
              "accepted");
    EXPECT_EQ(refusal_of(session({audio, "m=text 40010 RTP/AVP 98"})), "accepted");
}

TEST(SdpMoveRefusal, OfBundledLinesThatWouldPart) {
    const auto grouped = [](const std::string& group, const std::string& second) {
        return refusal_of(
            session({"a=group:" + group, "m=audio 32010 RTP/AVP 0", "a=mid:1", second, "a=mid:2"}));
    };
    const std::string message =
        "9: the move would separate this line from those that are bundled with it on one port";
    EXPECT_EQ(grouped("BUNDLE 1 2", "m=text 32010 RTP/AVP 98"), message);
    EXPECT_EQ(grouped("BUNDLE 1 2", "m=image 32010 udptl t38"), message);
    EXPECT_EQ(grouped("BUNDLE 1 2", "m=image 32010 TCP t38"), "accepted");
    EXPECT_EQ(grouped("BUNDLE 1 2", "m=text 32012 RTP/AVP 98"), "accepted");
    EXPECT_EQ(grouped("BUNDLE 1 2", "m=audio 32010 RTP/AVP 8"), "accepted");
    EXPECT_EQ(grouped("LS 1 2", "m=audio 32010 RTP/AVP 8"),
              "9: the move would give this line the address and port of line 7");
    EXPECT_EQ(grouped("BUNDLE 1", "m=audio 32010 RTP/AVP 8"),
              "9: the move would give this line the address and port of line 7");
}

TEST(SdpMoveRefusal, OfAHostName) {
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "c=IN IP4 media.example.com"})),
              "7: host names are not resolved");
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0", "a=rtcp:32011 IN IP4 host"})),
              "7: host names are not resolved");
    EXPECT_EQ(refusal_of(lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 media.example.com",
                                "m=audio 32010 RTP/AVP 0"})),
              "3: host names are not resolved");
}

TEST(SdpMoveRefusal, OfWhatTheReaderRefuses) {
    EXPECT_EQ(refusal_of(""), "0: the description is empty");
    EXPECT_EQ(refusal_of(session({"m=audio x RTP/AVP 0"})),
              "6: m=: expected a port from 0 to 65535");
}

// --- What a move leaves behind -------------------------------------------------------------------

std::string warnings_of(const std::string& text, const Plan& plan = to_public) {
    std::string result;
    for (const sdp::Diagnostic& warning : move_by(text, plan).diagnostics) {
        result += std::to_string(warning.line) + ": " + warning.message + "\n";
    }
    return result;
}

TEST(SdpMoveLeavesBehind, CandidatesAtAnAddressThatMoves) {
    const std::string text = session(
        {"m=audio 32010 RTP/AVP 0", "a=candidate:1 1 UDP 1 10.0.0.1 32010 typ host",
         "a=candidate:2 1 UDP 1 198.51.100.1 5 typ srflx raddr 10.0.0.1 rport 32010",
         "a=Candidate:3 1 UDP 1 10.0.0.1", "a=candidate:4 1 UDP 1",
         "a=remote-candidates:1 10.0.0.9 5 2 10.0.0.1 6", "a=remote-candidates:1 10.0.0.9 5"});
    EXPECT_EQ(warnings_of(text),
              "7: this line still names the old address\n"
              "9: this line still names the old address\n"
              "11: this line still names the old address\n");
}

TEST(SdpMoveLeavesBehind, PathsOfMsrp) {
    const auto of_path = [](const std::string& path) {
        return warnings_of(
            session({"m=message 32010 TCP/MSRP *", "c=IN IP6 2001:DB8::1", "a=path:" + path}),
            {"203.0.113.5", 40000, 7000});
    };
    const std::string left = "8: this line still names the old address\n";
    EXPECT_EQ(of_path("msrp://[2001:db8::1]:32010/s;tcp"), left);
    EXPECT_EQ(of_path("msrp://relay.example.com/a;tcp msrps://me@[2001:db8:0::1]/b;tcp"), left);
    EXPECT_EQ(of_path("msrp://10.0.0.1:32010/s;tcp"), "");
    EXPECT_EQ(of_path("msrp://[2001:db8::1"), left);
    EXPECT_EQ(of_path(""), "");
    EXPECT_EQ(
        warnings_of(session({"m=message 32010 TCP/MSRP *", "a=path:msrp://10.0.0.1:5/s;tcp"})),
        "7: this line still names the old address\n");
}

TEST(SdpMoveLeavesBehind, NothingOfLinesThatStay) {
    const std::string candidate = "a=candidate:1 1 UDP 1 10.0.0.1 32010 typ host";
    EXPECT_EQ(warnings_of(session({"m=audio 0 RTP/AVP 0", candidate, "m=text 5 RTP/AVP 98",
                                   candidate, "m=audio 32010 RTP/AVP 0"})),
              "");
    EXPECT_EQ(
        warnings_of(session({"m=video 32010 RTP/AVP 31", candidate}), {"10.0.0.1", 40000, 7000}),
        "");
    EXPECT_EQ(
        warnings_of(session({"m=audio 32010 RTP/AVP 0", candidate}), {"10.0.0.1", 40000, 7000}),
        "7: this line still names the old address\n");
}

TEST(SdpMoveLeavesBehind, NothingWhenStrict) {
    Plan plan = to_public;
    plan.strictness = sdp::Strictness::STRICT;
    EXPECT_EQ(refusal_of(session({"m=audio 32010 RTP/AVP 0",
                                  "a=candidate:1 1 UDP 1 10.0.0.1 32010 typ host"}),
                         plan),
              "7: this line still names the old address");
}

}  // namespace
