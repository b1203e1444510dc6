// How an answer is written: what of the offer stays, what goes, and what is the answer's own.

#include "sdp/writer.h"

#include <string>
#include <vector>

#include "answers.h"
#include "rows.h"

namespace {

using Media = std::vector<std::string>;

// --- Lines and formats ---------------------------------------------------------------------------

class WriterMedia : public testing::TestWithParam<Row<Media>> {};

TEST_P(WriterMedia, IsWhatTheAnswerSaysOfIt) {
    EXPECT_EQ(answered_media(GetParam().value), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WriterMedia,
    testing::Values(
        Row<Media>{"Codecs", {"m=audio 5004 RTP/AVP 0 3 8"}, "m=audio 32000 RTP/AVP 0 8\r\n"},
        Row<Media>{"OneFormatOfARejectedLine",
                   {"m=audio 5004 RTP/AVP 3 97", "a=rtpmap:97 iLBC/8000"},
                   "m=audio 0 RTP/AVP 3\r\n"},
        Row<Media>{"LinesInTheirOrder",
                   {"m=text 5002 RTP/AVP 98 99", "m=audio 5004 RTP/AVP 8", "m=foo 5006 TCP a b",
                    "m=video 5008/2 RTP/AVP 31", "m=image 5010 udptl t38", "m=audio 0 RTP/AVP 8"},
                   "m=text 0 RTP/AVP 98\r\nm=audio 32000 RTP/AVP 8\r\nm=foo 0 TCP a\r\n"
                   "m=video 0 RTP/AVP 31\r\nm=image 6666 udptl t38\r\nm=audio 0 RTP/AVP 8\r\n"},
        Row<Media>{"TransportsAsOffered",
                   {"m=audio 5004 rtp/avpf 8", "m=audio 5006 UDP/TLS/RTP/SAVPF 8",
                    "m=image 5008 UDPTL T38", "m=application 5010 UDP/DTLS/SCTP webrtc-datachannel",
                    "m=message 5012 TCP/TLS/MSRP *"},
                   "m=audio 32000 rtp/avpf 8\r\nm=audio 0 UDP/TLS/RTP/SAVPF 8\r\n"
                   "m=image 6666 UDPTL T38\r\n"
                   "m=application 0 UDP/DTLS/SCTP webrtc-datachannel\r\n"
                   "m=message 0 TCP/TLS/MSRP *\r\n"},
        Row<Media>{"ANumberOfPorts", {"m=audio 5004/2 RTP/AVP 8"}, "m=audio 32000 RTP/AVP 8\r\n"},
        Row<Media>{"APayloadTypeThatIsRepeated",
                   {"m=audio 5004 RTP/AVP 8 0 8 0"},
                   "m=audio 32000 RTP/AVP 8 0\r\n"},
        Row<Media>{
            "NamesAndParametersOfPayloads",
            {"m=audio 5004 RTP/AVP 96 97 98 18 101", "a=rtpmap:96 AMR-WB/16000/1",
             "a=fmtp:96 octet-align=1; mode-set=0,2", "a=rtpmap:97 opus/48000/2",
             "a=fmtp:97 stereo=1;useinbandfec=1", "a=rtpmap:98 iLBC/8000", "a=fmtp:98 mode=20",
             "a=fmtp:18 annexb=no", "a=rtpmap:101 telephone-event/8000", "a=fmtp:101 0-15"},
            "m=audio 32000 RTP/AVP 96 97 18 101\r\n"
            "a=rtpmap:96 AMR-WB/16000/1\r\na=fmtp:96 octet-align=1; mode-set=0,2\r\n"
            "a=rtpmap:97 opus/48000/2\r\na=fmtp:97 stereo=1;useinbandfec=1\r\n"
            "a=fmtp:18 annexb=no\r\n"
            "a=rtpmap:101 telephone-event/8000\r\na=fmtp:101 0-15\r\n"},
        Row<Media>{
            "ADynamicTypeForAStaticCodec",
            {"m=audio 5004 RTP/AVP 110 9", "a=rtpmap:110 pcma/8000", "a=rtpmap:9 G722/16000"},
            "m=audio 32000 RTP/AVP 110 9\r\na=rtpmap:110 pcma/8000\r\n"
            "a=rtpmap:9 G722/16000\r\n"},
        Row<Media>{"ParametersOfSeveralLines",
                   {"m=audio 5004 RTP/AVP 97", "a=fmtp:97 stereo=1", "a=rtpmap:97 opus/48000/2",
                    "a=fmtp:8 x=1", "a=fmtp:97 usedtx=1"},
                   "m=audio 32000 RTP/AVP 97\r\na=rtpmap:97 opus/48000/2\r\n"
                   "a=fmtp:97 stereo=1;usedtx=1\r\n"},
        Row<Media>{"Framing",
                   {"m=audio 5004 RTP/AVP 8", "a=ptime:20", "a=maxptime:40"},
                   "m=audio 32000 RTP/AVP 8\r\na=ptime:20\r\na=maxptime:40\r\n"},
        Row<Media>{"SilenceSuppression",
                   {"m=audio 5004 RTP/AVP 8", "a=silenceSupp:on - - - -"},
                   "m=audio 32000 RTP/AVP 8\r\na=silenceSupp:on - - - -\r\n"},
        Row<Media>{"Fax",
                   {"m=image 5004 udptl t38", "a=T38FaxVersion:0", "a=T38MaxBitRate:14400",
                    "a=T38FaxFillBitRemoval", "a=T38FaxTranscodingMMR:0",
                    "a=T38FaxRateManagement:transferredTCF", "a=T38FaxMaxBuffer:260",
                    "a=T38FaxMaxDatagram:316", "a=T38FaxUdpEC:t38UDPRedundancy"},
                   "m=image 6666 udptl t38\r\na=T38FaxVersion:0\r\na=T38MaxBitRate:14400\r\n"
                   "a=T38FaxFillBitRemoval\r\na=T38FaxTranscodingMMR:0\r\n"
                   "a=T38FaxRateManagement:transferredTCF\r\na=T38FaxMaxBuffer:260\r\n"
                   "a=T38FaxMaxDatagram:316\r\na=T38FaxUdpEC:t38UDPRedundancy\r\n"},
        Row<Media>{"FaxOfSeveralFormats",
                   {"m=image 5004 udptl foo T38 bar", "m=image 5006 tcp foo t38"},
                   "m=image 6666 udptl T38\r\nm=image 0 tcp t38\r\n"},
        Row<Media>{"ToneEventsOfSeveralLines",
                   {"m=audio 5004 RTP/AVP 8 101", "a=rtpmap:101 telephone-event/8000",
                    "a=fmtp:101 0-11", "a=fmtp:101 16"},
                   "m=audio 32000 RTP/AVP 8 101\r\na=rtpmap:101 telephone-event/8000\r\n"
                   "a=fmtp:101 0-11,16\r\n"},
        Row<Media>{
            "ASuiteAsItWasCalled",
            {"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_32 + " KDR=1",
             "a=crypto:1 AES_256_CM_HMAC_SHA1_32 inline:AAAA",
             "a=crypto:2 AES_256_CM_HMAC_SHA1_80 inline:" + offered_key.substr(0, 62) + " KDR=1",
             "a=crypto:1 aes_cm_256_hmac_sha1_80 inline:" + offered_key.substr(0, 62)},
            "m=audio 32000 RTP/SAVP 8\r\na=crypto:1 aes_cm_256_hmac_sha1_80 inline:"
            "//79/Pv6+fj39vX08/Lx8O/u7ezr6uno5+bl5OPi4eDf3t3c29rZ2NfW1dTT0g==\r\n"},
        Row<Media>{"SendOnly",
                   {"m=audio 5004 RTP/AVP 8", "a=sendonly"},
                   "m=audio 32000 RTP/AVP 8\r\na=recvonly\r\n"},
        Row<Media>{"ReceiveOnly",
                   {"m=audio 5004 RTP/AVP 8", "a=recvonly"},
                   "m=audio 32000 RTP/AVP 8\r\na=sendonly\r\n"},
        Row<Media>{"Inactive",
                   {"m=audio 5004 RTP/AVP 8", "a=inactive"},
                   "m=audio 32000 RTP/AVP 8\r\na=inactive\r\n"},
        Row<Media>{"NoAddress",
                   {"m=audio 5004 RTP/AVP 8", "c=IN IP4 0.0.0.0"},
                   "m=audio 32000 RTP/AVP 8\r\na=recvonly\r\n"},
        Row<Media>{"NoDirectionOfARejectedLine",
                   {"m=video 5004 RTP/AVP 31", "a=sendonly"},
                   "m=video 0 RTP/AVP 31\r\n"},
        Row<Media>{"AFreshKey",
                   {"m=audio 5004 RTP/SAVP 8", "a=crypto:2 " + aes_80 + "|2^20|1:4"},
                   "m=audio 32000 RTP/SAVP 8\r\na=crypto:2 AES_CM_128_HMAC_SHA1_80 "
                   "inline://79/Pv6+fj39vX08/Lx8O/u7ezr6uno5+bl5OPi\r\n"}),
    name_of_row);

TEST(Writer, WritesADirectionOfTheSessionAtTheLine) {
    EXPECT_EQ(answered_media({"a=sendonly", "m=audio 5004 RTP/AVP 8"}),
              "m=audio 32000 RTP/AVP 8\r\na=recvonly\r\n");
}

TEST(Writer, ReadsNamesAsTheReaderDoes) {
    EXPECT_EQ(answered_media({"m=audio 5004 RTP/AVP 8", "a=silenceSupp\x12:on", "a=ptime :20"}),
              "m=audio 32000 RTP/AVP 8\r\na=ptime:20\r\n");
}

// --- What an answer does not echo ----------------------------------------------------------------

class WriterDrops : public testing::TestWithParam<std::string> {};

TEST_P(WriterDrops, WhatAnAnswerCannotPromise) {
    const std::string line = GetParam();
    const std::string audio = "m=audio 32000 RTP/AVP 8\r\n";
    const std::string fax = "m=image 6666 udptl t38\r\n";
    if (std::string("biukzr").find(line[0]) == std::string::npos || line[0] == 'a') {
        EXPECT_EQ(answered_media({line, "m=audio 5004 RTP/AVP 8"}), audio);
    }
    EXPECT_EQ(answered_media({"m=audio 5004 RTP/AVP 8", line}), audio);
    EXPECT_EQ(answered_media({"m=image 5004 udptl t38", line}), fax);
    EXPECT_EQ(answered_media({"m=video 5004 RTP/AVP 31", line}), "m=video 0 RTP/AVP 31\r\n");
    EXPECT_EQ(answered_media({"m=foo 5004 TCP a", line}), "m=foo 0 TCP a\r\n");
}

INSTANTIATE_TEST_SUITE_P(
    Table, WriterDrops,
    testing::Values(
        "a=group:BUNDLE 1", "a=group:LS 1 2", "a=msid-semantic: WMS *", "a=ice-lite",
        "a=ice-options:trickle", "a=ice-ufrag:8hhY", "a=ice-pwd:asd88fgpdd777uzjYhagZg",
        "a=candidate:1 1 UDP 2130706431 10.0.0.1 8998 typ host", "a=end-of-candidates",
        "a=remote-candidates:1 10.0.0.1 8998", "a=rtcp:5009", "a=rtcp:5009 IN IP4 10.0.0.1",
        "a=rtcp-mux", "a=rtcp-mux-only", "a=rtcp-rsize", "a=rtcp-fb:* nack",
        "a=rtcp-xr:voip-metrics",
        "a=fingerprint:sha-1 4A:AD:B9:B1:3F:82:18:3B:54:02:12:DF:3E:5D:49:6B:19:E5:7C:AB",
        "a=setup:actpass", "a=connection:new", "a=tls-id:abc3de65cddef001be82", "a=mid:1",
        "a=msid:stream track", "a=ssrc:11111 cname:user@example.com",
        "a=ssrc-group:FID 11111 22222", "a=extmap:1 urn:ietf:params:rtp-hdrext:ssrc-audio-level",
        "a=extmap-allow-mixed", "a=key-mgmt:mikey AQAFgM0XflABAAAAAAAAAAAAAAYAyONQ",
        "a=3ge2ae:requested", "a=label:1", "a=content:main", "a=floorctrl:c-only", "a=confid:1",
        "a=curr:qos local none", "a=des:qos mandatory local sendrecv", "a=conf:qos remote sendrecv",
        "a=sqn: 0", "a=cdsc: 1 audio RTP/AVP 0 18", "a=cpar: a=ptime:20", "a=tcap:1 RTP/SAVP",
        "a=pcfg:1 t=1", "a=acfg:1 t=1", "a=csup:med-v0", "a=X-nat:0", "a=x-unknown",
        "a=direction:both", "a=alt:1 1 : a b 10.0.0.1 5004", "a=T38VendorInfo:0 0 37", "a=lang:en",
        "a=sdplang:en", "a=tool:x", "a=cat:x", "a=keywds:x", "a=charset:UTF-8", "a=type:broadcast",
        "a=framerate:15", "a=quality:5", "a=fmtp:31 x=1", "a=fmtp", "a=rtpmap:31 H261/90000",
        "a=source-filter: incl IN IP4 * 10.0.0.1",
        "a=ts-refclk:ptp=IEEE1588-2008:39-A7-94-FF-FE-07-CB-D0:37", "a=mediaclk:direct=0",
        "a=crypto:1 " + aes_80, "a=record:on", "a=hlang-send:en", "a=altc:1 IP4 10.0.0.1 5004",
        "b=AS:64", "b=TIAS:64000", "i=a title", "k=clear:secret", "k=prompt"));

TEST(Writer, DropsTheLinesOfTheSessionThatTheAnswererCannotSay) {
    const std::string text =
        lines({"v=0", "o=alice 7 8 IN IP4 10.0.0.1", "s=A talk", "i=What it is about",
               "u=http://example.com/", "e=alice@example.com", "p=+1 555 0100", "c=IN IP4 10.0.0.1",
               "b=CT:128", "t=0 0", "k=clear:secret", "a=recvonly", "m=audio 5004 RTP/AVP 8"});
    const sdp::Reply reply = sdp::CallSide(policy_at()).answer(text, sdp::Strictness::STRICT);
    EXPECT_EQ(
        reply.text.substr(reply.text.find("s=")),
        lines({"s=-", "c=IN IP4 192.0.2.1", "t=0 0", "m=audio 32000 RTP/AVP 8", "a=sendonly"}));
}

TEST(Writer, DropsFaxAttributesOfAudioAndAudioAttributesOfFax) {
    EXPECT_EQ(answered_media({"a=T38FaxVersion:0", "a=ptime:20", "m=audio 5004 RTP/AVP 8",
                              "a=T38FaxVersion:0", "m=image 5006 udptl t38", "a=ptime:20",
                              "a=rtpmap:8 PCMA/8000"}),
              "m=audio 32000 RTP/AVP 8\r\nm=image 6666 udptl t38\r\n");
}

// --- The session ---------------------------------------------------------------------------------

class WriterTimes : public testing::TestWithParam<Row<Media>> {};

TEST_P(WriterTimes, AreTheOffers) {
    std::string text = lines({"v=0", "o=- 1 1 IN IP4 10.0.0.1", "s=-", "c=IN IP4 10.0.0.1"});
    for (const std::string& line : GetParam().value) {
        text += line + "\r\n";
    }
    const sdp::Reply reply =
        sdp::CallSide(policy_at())
            .answer(text + "m=audio 5 RTP/AVP 8\r\n", sdp::Strictness::LENIENT);
    const std::size_t begin = reply.text.find("192.0.2.1\r\n", reply.text.find("c=")) + 11;
    EXPECT_EQ(reply.text.substr(begin, reply.text.find("m=") - begin), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, WriterTimes,
    testing::Values(
        Row<Media>{"Unbounded", {"t=0 0"}, "t=0 0\r\n"},
        Row<Media>{"Bounded", {"t=3034423619 3042462419"}, "t=3034423619 3042462419\r\n"},
        Row<Media>{"Several", {"t=1 2", "t=3 4"}, "t=1 2\r\nt=3 4\r\n"},
        Row<Media>{"Repeated",
                   {"t=3034423619 3042462419", "r=604800 3600 0 90000", "t=3042462419 0",
                    "r=7d 1h 0 25h", "z=2882844526 -1h 2898848070 0"},
                   "t=3034423619 3042462419\r\nr=604800 3600 0 90000\r\nt=3042462419 0\r\n"
                   "r=7d 1h 0 25h\r\nz=2882844526 -1h 2898848070 0\r\n"},
        Row<Media>{"UnboundedWhereThereIsNone", {}, "t=0 0\r\n"},
        Row<Media>{"UnboundedWhereTheyAreBroken", {"t=soon later"}, "t=0 0\r\n"}),
    name_of_row);

TEST(Writer, SaysItsSilenceSuppressionWhereTheOfferDoes) {
    EXPECT_EQ(
        answered_media({"m=audio 5 RTP/AVP 8", "a=silenceSupp:off", "a=silenceSupp:on - - - -"}),
        lines({"m=audio 32000 RTP/AVP 8", "a=silenceSupp:off", "a=silenceSupp:on - - - -"}));
    const std::string text = session({"a=silenceSupp:on - - - -", "m=image 5 udptl t38"});
    const sdp::Reply reply = sdp::CallSide(policy_at()).answer(text, sdp::Strictness::STRICT);
    EXPECT_NE(reply.text.find("t=0 0\r\na=silenceSupp:on - - - -\r\nm=image"), std::string::npos);
}

TEST(Writer, WritesAnIpv6Address) {
    const std::string text = lines({"v=0", "o=- 1 1 IN IP6 2001:db8::9", "s=-",
                                    "c=IN IP6 2001:db8::9", "t=0 0", "m=audio 5 RTP/AVP 8"});
    const sdp::Reply reply =
        sdp::CallSide(policy_at("2001:db8::1")).answer(text, sdp::Strictness::STRICT);
    EXPECT_NE(reply.text.find(" 1 IN IP6 2001:db8::1\r\ns=-\r\nc=IN IP6 2001:db8::1\r\n"),
              std::string::npos)
        << reply.text;
    EXPECT_NE(reply.text.find("m=audio 32000 RTP/AVP 8\r\n"), std::string::npos);
}

TEST(Writer, ReadsTheOriginThatItWrites) {
    const std::string text = lines({"v=0", "o=- 18446744073709551615 4294967296 IN IP4 10.0.0.1",
                                    "s=-", "c=IN IP4 10.0.0.1", "t=0 0"});
    const sdp::Origin origin = reading_of(text).origin;
    EXPECT_EQ(origin.id, 18446744073709551615ULL);
    EXPECT_EQ(origin.version, 4294967296ULL);
}

}  // namespace
