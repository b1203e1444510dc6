#include "sdp/message.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "descriptions.h"

namespace {

const std::string description = session({"m=audio 32010 RTP/AVP 0"});

// The head of an INVITE, which is five lines long, with others and the empty line.
std::string head(std::initializer_list<std::string> others) {
    return lines({"INVITE sip:bob@example.com SIP/2.0", "Via: SIP/2.0/UDP 10.0.0.1;branch=z9hG4bK1",
                  "From: <sip:alice@example.com>;tag=1", "To: <sip:bob@example.com>",
                  "CSeq: 1 INVITE"}) +
           lines(others) + "\r\n";
}

const std::string multipart =
    lines({"--b", "Content-Type: text/plain", "", "v=0", "--b", "Content-Disposition: session",
           "Content-Type: Application/SDP; charset=utf-8", ""}) +
    description + lines({"", "--b--"});

// "LINES BEFORE: what is found", where that is the description; else what there is.
std::string found(const std::string& text) {
    const std::string problem = refusal([&] { sdp::find_description(text); });
    if (problem != "accepted") {
        return problem;
    }
    const sdp::Found result = sdp::find_description(text);
    return std::to_string(result.lines_before) + (result.is_part ? " in" : " alone") + ": " +
           (result.text == description ? "it" : result.text);
}

std::string without_cr(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

TEST(SdpMessage, IsTakenAsADescriptionWhereItIsNone) {
    EXPECT_EQ(found(description), "0 alone: it");
    EXPECT_EQ(found(""), "0 alone: ");
    EXPECT_EQ(found("hello"), "0 alone: hello");
    EXPECT_EQ(found("SIP/2.0"), "1: cannot parse the SIP message");
}

TEST(SdpMessage, HoldsADescriptionAsItsBody) {
    const std::string type = "Content-Type: application/sdp";
    EXPECT_EQ(found(head({type}) + description), "7 in: it");
    EXPECT_EQ(found(head({"c : Application/SDP ;a=b"}) + description), "7 in: it");
    EXPECT_EQ(found(lines({"SIP/2.0 200 OK", type, ""}) + description), "3 in: it");
    EXPECT_EQ(found(lines({"ACK sip:a@b sip/2.0", type, ""}) + description), "3 in: it");
    EXPECT_EQ(found(without_cr(head({type}) + description)), "7 in: " + without_cr(description));
}

TEST(SdpMessage, EndsWhereItsLengthSaysUnlessThatCannotBe) {
    const std::string type = "Content-Type: application/sdp";
    const auto with_length = [&](std::size_t length) {
        return head({type, "Content-Length: " + std::to_string(length)}) + description;
    };
    EXPECT_EQ(found(with_length(description.size()) + "BYE sip:a@b SIP/2.0\r\n"), "8 in: it");
    EXPECT_EQ(found(with_length(description.size() + 100)), "8 in: it");
    EXPECT_EQ(found(with_length(description.size() - 5)), "8 in: it");
    EXPECT_EQ(found(with_length(0)), "8 in: ");
}

TEST(SdpMessage, HoldsADescriptionInAPart) {
    const std::string type = "Content-Type: multipart/mixed;boundary=";
    EXPECT_EQ(found(head({type + "b"}) + multipart), "15 in: it");
    EXPECT_EQ(found(head({type + "\"b\""}) + multipart), "15 in: it");
    EXPECT_EQ(found(head({type + "b"}) + "preamble\r\n" + multipart), "16 in: it");
    EXPECT_EQ(found(head({type + "outer"}) +
                    lines({"--outer", "Content-Type: multipart/alternative;boundary=b", ""}) +
                    multipart + lines({"", "--outer--"})),
              "18 in: it");
}

TEST(SdpMessage, MayBeABodyWithoutItsHead) {
    EXPECT_EQ(found(multipart), "8 in: it");
    EXPECT_EQ(found(without_cr(multipart)), "8 in: " + without_cr(description));
    // Its end may be missing.
    EXPECT_EQ(found(multipart.substr(0, multipart.size() - 9)), "8 in: it");
}

TEST(SdpMessage, IsRefusedWithoutADescription) {
    const std::string message = "0: no body of type application/sdp";
    EXPECT_EQ(found(head({})), message);
    EXPECT_EQ(found(head({}) + description), message);
    EXPECT_EQ(found(head({"Content-Type: application/sdpx"}) + description), message);
    EXPECT_EQ(found(head({"Content-Type: multipart/mixed;boundary=x"}) + multipart), message);
    EXPECT_EQ(found(head({"Content-Type: multipart/mixed"}) + multipart), message);
    EXPECT_EQ(found(lines({"--b", "Content Type: application/sdp", "", "v=0", "--b--"})), message);
    EXPECT_EQ(found(head({"Content-Type: multipart/mixed;boundary=b"}) +
                    lines({"--b--", "--b", "Content-Type: application/sdp", "", "v=0"})),
              message);
    EXPECT_EQ(found(lines({"--b", "Content-Type: text/plain", "", "v=0", "--b--"})), message);
    EXPECT_EQ(found("--"), message);
    EXPECT_EQ(found("--b"), message);
    EXPECT_EQ(found("--\"\r\n"), message);
}

TEST(SdpMessage, IsNotSearchedWithoutEnd) {
    const auto nested = [](int depth) {
        std::string text = multipart;
        std::string boundary = "b";
        for (; depth != 0; --depth) {
            const std::string outer = "o" + std::to_string(depth);
            text = lines({"--" + outer, "Content-Type: multipart/mixed;boundary=" + boundary, ""}) +
                   text + lines({"", "--" + outer + "--"});
            boundary = outer;
        }
        return found(text);
    };
    EXPECT_EQ(nested(7), "29 in: it");
    EXPECT_EQ(nested(8), "0: no body of type application/sdp");
}

}  // namespace
