// What the reader refuses, in both modes: what is no session description.

#include <gtest/gtest.h>

#include "readings.h"

namespace {

TEST(SdpRefusal, OfWhatIsNoDescription) {
    EXPECT_EQ(refusal_of(""), "0: the description is empty");
    EXPECT_EQ(refusal_of("\r\n \n"), "0: the description is empty");
    EXPECT_EQ(refusal_of("hello"), "1: not a session description: the first line is not v=0");
    EXPECT_EQ(refusal_of("\nv=1\n"), "2: not a session description: the first line is not v=0");
    EXPECT_EQ(refusal_of("\xef\xbb\xbfv=0\n"), "1: unexpected byte-order mark before v=");
    EXPECT_EQ(refusal_of("v=0\n"), "1: the o= line is missing");
}

TEST(SdpRefusal, OfLinesThatTheParserWouldPassOverOrMerge) {
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "nonsense", "a=ptime:20"})),
              "7: expected a line of the form x=value");
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "y=1"})), "7: unknown type of line");
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "v=0"})),
              "7: a second description starts here");
    EXPECT_EQ(refusal_of(session({"o=- 1 1 IN IP4 10.0.0.1"})),
              "6: o= is allowed once, before the media lines");
    EXPECT_EQ(refusal_of(lines({"v=0", "m=audio 0 RTP/AVP 0", "o=- 1 1 IN IP4 10.0.0.1"})),
              "3: o= is allowed once, before the media lines");
    EXPECT_EQ(refusal_of(session({"c=IN IP4 10.0.0.2"})), "6: the session has a second c= line");
    EXPECT_EQ(refusal_of(session({std::string("a=x:\0y", 6)})), "6: the line contains a NUL byte");
}

TEST(SdpRefusal, OfPorts) {
    const auto of_port = [](const std::string& port) {
        return refusal_of(session({"m=audio " + port + " RTP/AVP 0"}));
    };
    for (const char* const port : {"65536", "-1", "abc", "", "99999999999999999999", "+5", "5x"}) {
        EXPECT_EQ(of_port(port).substr(0, 3), "6: ") << port;
    }
    EXPECT_EQ(of_port("65536"), "6: m=: expected a port from 0 to 65535");
    EXPECT_EQ(of_port("5004/0"), "6: m=: expected a number of ports from 1 to 65535");
    EXPECT_EQ(of_port("5004/"), "6: m=: expected a number of ports from 1 to 65535");
    EXPECT_EQ(of_port("5004/65536"), "6: m=: expected a number of ports from 1 to 65535");
    EXPECT_EQ(of_port("65532/2"), "accepted");
    EXPECT_EQ(of_port("65533/2"), "6: the ports exceed 65535");
    EXPECT_EQ(refusal_of(session({"m=image 65534/2 udptl t38"})), "accepted");
    EXPECT_EQ(refusal_of(session({"m=image 65535/2 udptl t38"})), "6: the ports exceed 65535");
}

TEST(SdpRefusal, OfAddresses) {
    const auto of_address = [](const std::string& address) {
        return refusal_of(session({"m=audio 5004 RTP/AVP 0", "c=" + address}));
    };
    for (const char* const address :
         {"10.0.0.256", "10.0.0", "2001:db8::x", "a..b", "-", "h\xc3\xb6st"}) {
        EXPECT_EQ(of_address(std::string("IN IP4 ") + address),
                  "7: expected an IP address or a host name")
            << address;
    }
    EXPECT_EQ(of_address("IN IP4 2001:db8::1"),
              "7: the address does not match its type, IP4 or IP6");
    EXPECT_EQ(of_address("IN IP6 10.0.0.1"), "7: the address does not match its type, IP4 or IP6");
    EXPECT_EQ(of_address("ATM NSAP 47.0091"), "7: expected an address of type IN IP4 or IN IP6");
    for (const char* const value : {"", "IN IP4", "IN IP4 10.0.0.1 x"}) {
        EXPECT_EQ(of_address(value), "7: c= needs a network type, an address type and an address");
    }
}

TEST(SdpRefusal, OfAnOriginNamesTheNumberOfItsFields) {
    const auto of_origin = [](const std::string& origin) {
        return refusal_of(lines({"v=0", "o=" + origin, "s=-"}));
    };
    EXPECT_EQ(of_origin("broken"), "2: o= needs six fields and has 1");
    EXPECT_EQ(of_origin("1 1 IN IP4 10.0.0.1"), "2: o= needs six fields and has 5");
    EXPECT_EQ(of_origin("two words 1 1 IN IP4 10.0.0.1"), "2: o= needs six fields and has 7");
    EXPECT_EQ(of_origin("- x 1 IN IP4 10.0.0.1"), "2: the SDP parser refuses this o= line");
}

TEST(SdpRefusal, OfPayloadTypesOfTheMediaLine) {
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP 0", "m=audio 5004 RTP/SAVPF 128"})),
              "7: m=: expected payload types from 0 to 127");
    EXPECT_EQ(refusal_of(session({"m=audio 5004 RTP/AVP x"})),
              "6: the SDP parser refuses this m= line");
    EXPECT_EQ(refusal_of(session({"m=message 5004 TCP/MSRP 128"})), "accepted");
}

TEST(SdpRefusal, OfFormatsAtWhichTheParserWouldNotEnd) {
    for (const char* const line :
         {"m=x 5 y /z", "m=x\xcf 5 y z", "m=x 5 y a:b", "m=x 5 y a (b", "m=x 5 y \xe9",
          "m=x 5 y=z a", "m=x 5 y\x01 a", "m=x 5 y \x7f", "m=audio 5004 RTP/AVP ,"}) {
        EXPECT_EQ(refusal_of(session({line})),
                  "6: invalid character in the media type, the transport or a format");
    }
    EXPECT_EQ(refusal_of(session({"m=x 5 y/z webrtc-datachannel * {~"})), "accepted");
}

TEST(SdpRefusal, OfMoreFormatsThanRtpHas) {
    const auto with_formats = [](int count) {
        std::string line = "m=audio 5004 RTP/AVP";
        while (count-- != 0) {
            line += " 0";
        }
        return refusal_of(session({line}));
    };
    EXPECT_EQ(with_formats(128), "accepted");
    EXPECT_EQ(with_formats(129), "6: m= has more than 128 formats");
}

}  // namespace
