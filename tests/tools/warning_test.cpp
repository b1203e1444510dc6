// What the reader warns of: values that the model cannot take. Their members keep their defaults.

#include <gtest/gtest.h>

#include "netconf/sdp.h"
#include "readings.h"

namespace {

// Of an audio line with an attribute, which is line 7.
std::string warnings_of_attribute(const std::string& attribute) {
    return warnings_of(session({"m=audio 5004 RTP/AVP 0 96 97", attribute}));
}

std::string warnings_of_fmtp(const char* map, const std::string& parameters) {
    return warnings_of(session(
        {"m=audio 5004 RTP/AVP 96", std::string("a=rtpmap:96 ") + map, "a=fmtp:96 " + parameters}));
}

TEST(SdpWarnings, AreInTheOrderOfTheLinesEachOnce) {
    EXPECT_EQ(warnings_of(lines({"v=0", "o=- 1 1 IN IP4 h", "c=IN IP4 media.example.com", "b=AS",
                                 "m=audio 5004 RTP/AVP 18", "a=fmtp:18 annexb=0", "a=rtpmap:96 x",
                                 "a=ptime:x", "m=audio 5006 RTP/AVP 0"})),
              "3: host names are not resolved\n"
              "4: the SDP parser refuses this b= line\n"
              "6: annexb: expected no or yes\n"
              "7: a=rtpmap: the clock rate is missing\n"
              "8: a=ptime: expected a number from 0 to 2147483647");
}

TEST(SdpWarnings, LeaveOutAttributesOfARejectedLineAndOfAPassedThroughOne) {
    for (const char* const media : {"m=audio 0 RTP/AVP 18", "m=text 5004 RTP/AVP 98"}) {
        const std::string text =
            session({media, "a=rtpmap:18 G729", "a=fmtp:18 annexb=0", "a=fmtp:", "a=ptime:x",
                     "a=rtcp:0", "a=crypto:1 x", "b=AS", "a=:", "a=T38MaxBitRate:x"});
        EXPECT_EQ(warnings_of(text), "") << media;
    }
    EXPECT_EQ(warnings_of(session({"m=image 0 udptl t38", "a=T38MaxBitRate:x"})), "");
    EXPECT_EQ(warnings_of(session({"m=audio 0 RTP/AVP 0", "c=IN IP4 media.example.com"})), "");
}

// --- Addresses and ports -------------------------------------------------------------------------

TEST(SdpWarnings, OfAHostNameWhoseAddressStaysUnspecifiedAndDoesNotHold) {
    for (const char* const host : {"host", "media.example.com", "10.0.0.1.example", "my_host-7"}) {
        const std::string text =
            session({"m=audio 5004 RTP/AVP 8", std::string("c=IN IP4 ") + host});
        EXPECT_EQ(warnings_of(text), "7: host names are not resolved");
        const sdp::Reading reading = reading_of(text);
        EXPECT_EQ(reading.lines[0].media->address->ToString(), "0.0.0.0");
        EXPECT_EQ(reading.lines[0].media->rcvPort, 5004);
        EXPECT_EQ(codecs(*reading.lines[0].media), std::vector<int>{CODEC_G711_ALAW});
        EXPECT_FALSE(reading.capability->hold);
    }
    EXPECT_TRUE(
        OneLine({"m=audio 5004 RTP/AVP 8", "c=IN IP4 host", "a=sendonly"}).capability().hold);
}

TEST(SdpWarnings, OfAHostNameOnlyWhereItCounts) {
    const std::string head = lines({"v=0", "o=- 1 1 IN IP4 host", "c=IN IP4 host"});
    EXPECT_EQ(warnings_of(head + lines({"m=audio 5004 RTP/AVP 8", "c=IN IP4 10.0.0.2"})), "");
    EXPECT_EQ(warnings_of(head + lines({"m=text 5004 RTP/AVP 98"})), "");
}

TEST(SdpWarnings, OfRtcpLinesWithoutAPort) {
    for (const char* const port : {"0", "65536", "x", "0 IN IP4 10.0.0.1"}) {
        const std::string rtcp = std::string("a=rtcp:") + port;
        EXPECT_EQ(warnings_of_attribute(rtcp), "7: a=rtcp: expected a port from 1 to 65535");
        EXPECT_EQ(OneLine({"m=audio 5004 RTP/AVP 0", rtcp}).media().rcvPort2, 5005);
    }
    EXPECT_EQ(warnings_of_attribute("a=rtcp:"), "7: a=rtcp needs a port");
}

TEST(SdpWarnings, OfRtcpAddressesThatLeaveThePort) {
    const auto warned = [](const std::string& rtcp) {
        EXPECT_EQ(OneLine({"m=audio 5004 RTP/AVP 0", rtcp}).media().rcvPort2, 53020);
        return warnings_of_attribute(rtcp);
    };
    EXPECT_EQ(warned("a=rtcp:53020 IN IP4"), "7: a=rtcp needs a port, or a port and an address");
    EXPECT_EQ(warned("a=rtcp:53020 IN IP4 host"), "7: host names are not resolved");
    EXPECT_EQ(warned("a=rtcp:53020 ATM NSAP 47.0091"),
              "7: expected an address of type IN IP4 or IN IP6");
}

// --- Payloads ------------------------------------------------------------------------------------

TEST(SdpWarnings, OfFractionsOfAMillisecond) {
    const auto framing = [](const std::string& value) {
        const OneLine line = {"m=audio 5004 RTP/AVP 0", "a=ptime:" + value, "a=maxptime:" + value};
        EXPECT_EQ(line.audio().framing, line.audio().mxFraming);
        return line.audio().framing;
    };
    EXPECT_EQ(framing("0.125"), 0);
    EXPECT_EQ(framing("20.5"), 20);
    EXPECT_EQ(framing("20.0"), 20);
    EXPECT_EQ(framing("2147483647.99999999999999999999"), 2147483647);
    EXPECT_EQ(warnings_of_attribute("a=ptime:0.125"),
              "7: a=ptime: only whole milliseconds are used");
    EXPECT_EQ(warnings_of_attribute("a=maxptime:20.5"),
              "7: a=maxptime: only whole milliseconds are used");
    EXPECT_EQ(warnings_of_attribute("a=ptime:20.0"), "");
    for (const char* const value :
         {"x", "", "20.", ".5", "20.x", "2147483648", "2147483648.0", "-1", "1.2.3", "20ms"}) {
        EXPECT_EQ(framing(value), 0) << value;
        EXPECT_EQ(warnings_of_attribute(std::string("a=maxptime:") + value),
                  "7: a=maxptime: expected a number from 0 to 2147483647")
            << value;
    }
}

TEST(SdpWarnings, OfRtpmapLinesNameTheCause) {
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:96 iLBC"), "7: a=rtpmap: the clock rate is missing");
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:96 iLBC/"), "7: a=rtpmap: the clock rate is missing");
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:96 iLBC/x"),
              "7: a=rtpmap clock rate: expected a number from 0 to 4294967295");
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:96 iLBC/-1"),
              "7: a=rtpmap clock rate: expected a number from 0 to 4294967295");
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:96"), "7: a=rtpmap: the encoding name is missing");
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:128 x/8000"),
              "7: a=rtpmap: expected a payload type from 0 to 127");
    EXPECT_EQ(warnings_of_attribute("a=rtpmap:"),
              "7: a=rtpmap: expected a payload type from 0 to 127");
    EXPECT_EQ(warnings_of(session({"m=message 5004 TCP/MSRP *", "a=rtpmap:x"})), "");
    for (const char* const accepted : {"96 x/8000", "96  x /8000", "96 x/8000/2", "96 x/8000 y"}) {
        EXPECT_EQ(warnings_of_attribute(std::string("a=rtpmap:") + accepted), "") << accepted;
    }
}

TEST(SdpWarnings, OfRtpmapLinesLeaveThePayloadAsWithoutThem) {
    const OneLine line = {"m=audio 5004 RTP/AVP 0 96", "a=rtpmap:0 PCMA", "a=rtpmap:96 opus/",
                          "a=fmtp:96 stereo=1"};
    EXPECT_EQ(codecs(line.media()), (std::vector<int>{CODEC_G711_ULAW, 96}));
    EXPECT_FALSE(line.media().opusParam->stereo);
}

TEST(SdpWarnings, OfFmtpLinesNameTheCause) {
    for (const char* const value : {"", "abc", "x x=1", "-1 x=1", "annexb=no"}) {
        EXPECT_EQ(warnings_of_attribute(std::string("a=fmtp:") + value),
                  "7: a=fmtp: expected a payload type from 0 to 127")
            << value;
    }
    EXPECT_EQ(warnings_of_attribute("a=fmtp:128 x=1"),
              "7: a=fmtp: expected a payload type from 0 to 127");
    EXPECT_EQ(warnings_of_attribute("a=fmtp:97"), "7: a=fmtp: the parameters are missing");
    EXPECT_EQ(warnings_of(session({"m=video 5004 RTP/AVP 96", "a=fmtp:x"})),
              "7: a=fmtp: expected a payload type from 0 to 127");
}

TEST(SdpWarnings, OfFmtpParametersThatBlanksSeparate) {
    const std::string message = "8: a=fmtp: expected a semicolon between two parameters";
    EXPECT_EQ(warnings_of_fmtp("AMR-WB/16000", "octet-align=1 crc=1"), message);
    EXPECT_EQ(warnings_of_fmtp("G723/8000", "bitrate=5.3 annexa = no"), message);
    EXPECT_EQ(warnings_of_fmtp("opus/48000/2", "stereo=1; x=1\tcbr=1"), message);
    EXPECT_EQ(warnings_of_fmtp("H264/90000", "x=1 y=2"), "");
    const OneLine line = {"m=audio 5004 RTP/AVP 96", "a=rtpmap:96 AMR-WB/16000",
                          "a=fmtp:96 octet-align=1 crc=1; robust-sorting=1"};
    EXPECT_EQ(std::string(*line.media().amrwbParam), " AMR-WB(payload-type=96; robust-sorting=1)");
}

TEST(SdpWarnings, OfParametersLeaveTheOthers) {
    const auto amrwb = [](const std::string& parameters) {
        return std::string(*OneLine({"m=audio 5004 RTP/AVP 96", "a=rtpmap:96 AMR-WB/16000",
                                     "a=fmtp:96 " + parameters})
                                .media()
                                .amrwbParam);
    };
    const auto opus = [](const std::string& parameters) {
        return std::string(*OneLine({"m=audio 5004 RTP/AVP 96", "a=rtpmap:96 opus/48000/2",
                                     "a=fmtp:96 " + parameters})
                                .media()
                                .opusParam);
    };
    for (const char* const parameter :
         {"octet-align=2", "octet-align", "octet-align=", "octet-align=x",
          "mode-set=", "mode-set=9", "mode-set=1,,2", "mode-set=1,", "mode-set=\"0,1,2\"",
          "mode-change-period=3", "crc=-1", "robust-sorting=2", "mode-change-neighbor=2",
          "mode-change-capability=3", "channels=7", "interleaving=65536", "max-red=65536"}) {
        EXPECT_EQ(warnings_of_fmtp("AMR-WB/16000", parameter).substr(0, 3), "8: ") << parameter;
        EXPECT_EQ(amrwb(std::string("max-red=1;") + parameter + "; crc=1"),
                  std::string(" AMR-WB(payload-type=96; crc=1; max-red=1)"))
            << parameter;
        EXPECT_EQ(warnings_of_fmtp("iLBC/8000", parameter), "") << parameter;
    }
    for (const char* const parameter :
         {"stereo=2", "cbr=x", "useinbandfec=", "usedtx", "sprop-stereo=2",
          "maxplaybackrate=2147483648", "maxaveragebitrate=x", "sprop-maxcapturerate=65536",
          "maxptime=65536"}) {
        EXPECT_EQ(warnings_of_fmtp("opus/48000/2", parameter).substr(0, 3), "8: ") << parameter;
        EXPECT_EQ(opus(std::string(parameter) + ";stereo=1"), " opus(stereo=1)");
    }
    EXPECT_EQ(warnings_of_fmtp("opus/48000/2", "x=1; stereo=2"),
              "8: stereo: expected a number from 0 to 1");
}

TEST(SdpWarnings, OfAnAnnexLeaveItsDefault) {
    EXPECT_EQ(warnings_of_fmtp("G729/8000", "annexb=maybe"), "8: annexb: expected no or yes");
    EXPECT_EQ(warnings_of_fmtp("G729/8000", "annexb=0"), "8: annexb: expected no or yes");
    EXPECT_EQ(warnings_of_fmtp("G723/8000", "annexa"), "8: annexa: expected no or yes");
    EXPECT_TRUE(OneLine({"m=audio 5004 RTP/AVP 18", "a=fmtp:18 annexb=0"}).audio().vad);
}

TEST(SdpWarnings, OfT38ValuesLeaveTheirDefaults) {
    const auto warned = [](const std::string& attribute) {
        const OneLine line = {"m=image 6666 udptl t38", attribute};
        QOVA_FaxAttribute plain;
        plain.transport = FT_T38_UDPTL;
        EXPECT_TRUE(line.fax() == plain) << attribute;
        return warnings_of(session({"m=image 6666 udptl t38", attribute}));
    };
    EXPECT_EQ(warned("a=T38MaxBitRate:fast"),
              "7: T38MaxBitRate: expected a number from 0 to 4294967295");
    EXPECT_EQ(warned("a=T38FaxMaxBuffer:4294967296"),
              "7: T38FaxMaxBuffer: expected a number from 0 to 4294967295");
    EXPECT_EQ(warned("a=T38FaxMaxDatagram"),
              "7: T38FaxMaxDatagram: expected a number from 0 to 4294967295");
    EXPECT_EQ(warned("a=T38FaxTranscodingMMR:2"),
              "7: T38FaxTranscodingMMR: expected a number from 0 to 1");
    EXPECT_EQ(warned("a=T38FaxRateManagement:x"),
              "7: T38FaxRateManagement: expected transferredTCF or localTCF");
    EXPECT_EQ(warned("a=T38FaxUdpEC:x"),
              "7: T38FaxUdpEC: expected t38UDPNoEC or t38UDPRedundancy or t38UDPFEC");
}

// --- Lines that the parser refuses ---------------------------------------------------------------

TEST(SdpWarnings, OfLinesThatTheParserRefusesLeaveTheOthers) {
    for (const std::string line : {"b=AS", "b=AS:x", "b=", "a=", "a=:x", "a=\xe9:1", "k="}) {
        const std::string text = session({"m=audio 5004 RTP/AVP 0", line, "a=ptime:20", "b=AS:64"});
        EXPECT_EQ(warnings_of(text),
                  std::string("7: the SDP parser refuses this ") + line[0] + "= line");
        EXPECT_EQ(attribute<QOVA_AudioAttribute>(*reading_of(text).lines[0].media).framing, 20);
    }
    for (const std::string line : {"t=x", "r=1", "z=0", "b=AS", "k=", "a=:"}) {
        EXPECT_EQ(warnings_of(session({line, "m=audio 5004 RTP/AVP 0", "a=ptime:20"})),
                  std::string("6: the SDP parser refuses this ") + line[0] + "= line");
    }
}

TEST(SdpWarnings, OfManyLinesTakeTimeInProportion) {
    std::string text = session({"m=audio 5004 RTP/AVP 0"});
    for (int i = 0; i < 5000; ++i) {
        text += "b=AS\r\n";
    }
    EXPECT_EQ(reading_of(text).diagnostics.size(), 5000U);
}

}  // namespace
