// What counts as a change of a call side, and what does not.

#include "answer/changes.h"

#include <string>

#include "building_blocks.h"
#include "netconf/sdp.h"
#include "readings.h"
#include "rows.h"

namespace {

// A capability with a line of each kind, a rejected one and one that is passed through.
QOVA_Capability full() {
    const std::string key = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwd";
    return *reading_of(session({"m=audio 5004 RTP/SAVP 96 97 8 101", "a=rtpmap:96 AMR-WB/16000",
                                "a=fmtp:96 octet-align=1", "a=rtpmap:97 opus/48000/2",
                                "a=fmtp:97 stereo=1", "a=rtpmap:101 telephone-event/8000",
                                "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key +
                                    ";inline:" + key + "|2^20|1:4",
                                "m=video 5006 RTP/AVP 31", "m=image 5008 udptl t38",
                                "a=T38MaxBitRate:14400", "m=message 5010 TCP/MSRP *",
                                "m=audio 0 RTP/AVP 8", "m=text 5012 RTP/AVP 98"}))
                .capability;
}

QOVA_Media& media_at(QOVA_Capability& capability, std::size_t index) {
    return **std::next(capability.filteredMedia.begin(), static_cast<std::ptrdiff_t>(index));
}

template <class T>
T& attribute_at(QOVA_Media& media, std::size_t index = 0) {
    return const_cast<T&>(attribute<T>(media, index));
}

void drop_last_attribute(QOVA_Media& media) {
    delete media.attributes.back();
    media.attributes.pop_back();
}

constexpr int audio = 0;
constexpr int fax = 2;
constexpr int data = 3;
constexpr int rejected = 4;

class Changes : public testing::TestWithParam<Change<QOVA_Capability>> {};

TEST_P(Changes, ShowEitherWay) {
    QOVA_Capability before = full();
    QOVA_Capability now = full();
    ASSERT_FALSE(sdp::changed(before, now));
    GetParam().apply(now);
    EXPECT_TRUE(sdp::changed(before, now));
    EXPECT_TRUE(sdp::changed(now, before));
}

using C = QOVA_Capability;

INSTANTIATE_TEST_SUITE_P(
    Table, Changes,
    testing::Values(
        Change<C>{"Hold", [](C& c) { c.hold = true; }},
        Change<C>{"SilenceSuppression", [](C& c) { c.silenceSuppSdp = true; }},
        Change<C>{"PassThrough", [](C& c) { c.passThrough += "m=x 1 y z\r\n"; }},
        Change<C>{"NoPassThrough", [](C& c) { c.passThrough.clear(); }},
        Change<C>{"OneLineLess",
                  [](C& c) {
                      delete c.filteredMedia.back();
                      c.filteredMedia.pop_back();
                  }},
        Change<C>{"OneLineMore", [](C& c) { c.filteredMedia.push_back(new QOVA_Media); }},
        Change<C>{"OrderOfLines", [](C& c) { c.filteredMedia.reverse(); }},
        Change<C>{"Status", [](C& c) { media_at(c, audio).mediaStatus = QOVA_Media::MS_REJECTED; }},
        Change<C>{"NoLongerRejected",
                  [](C& c) { media_at(c, rejected).mediaStatus = QOVA_Media::MS_ACCEPTED; }},
        Change<C>{"KindOfARejectedLine",
                  [](C& c) { media_at(c, rejected).mediaType = QOVA_Media::MT_VIDEO; }},
        Change<C>{"Address", [](C& c) { set_address(media_at(c, audio), "10.0.0.2"); }},
        Change<C>{"SendPort", [](C& c) { ++media_at(c, audio).sndPort; }},
        Change<C>{"ReceivePort", [](C& c) { ++media_at(c, fax).rcvPort; }},
        Change<C>{"SecondSendPort", [](C& c) { ++media_at(c, audio).sndPort2; }},
        Change<C>{"SecondReceivePort", [](C& c) { ++media_at(c, audio).rcvPort2; }},
        Change<C>{"SendDirection", [](C& c) { media_at(c, audio).bsnd = false; }},
        Change<C>{"ReceiveDirection", [](C& c) { media_at(c, audio).brcv = false; }},
        Change<C>{
            "Codec",
            [](C& c) { attribute_at<QOVA_AudioAttribute>(media_at(c, audio)).codec = CODEC_G722; }},
        Change<C>{
            "Framing",
            [](C& c) { attribute_at<QOVA_AudioAttribute>(media_at(c, audio), 2).framing = 30; }},
        Change<C>{
            "ToneEvents",
            [](C& c) { attribute_at<QOVA_AudioAttribute>(media_at(c, audio), 2).mf = CODEC_NIL; }},
        Change<C>{"LastCodecDropped", [](C& c) { drop_last_attribute(media_at(c, audio)); }},
        Change<C>{"AllCodecsDropped",
                  [](C& c) {
                      while (!media_at(c, audio).attributes.empty()) {
                          drop_last_attribute(media_at(c, audio));
                      }
                  }},
        Change<C>{"FaxRate",
                  [](C& c) { attribute_at<QOVA_FaxAttribute>(media_at(c, fax)).mxRate = 9600; }},
        Change<C>{"DataType",
                  [](C& c) { attribute_at<QOVA_DataAttribute>(media_at(c, data)).type = 9; }},
        Change<C>{"AmrwbParameter", [](C& c) { media_at(c, audio).amrwbParam->crc = 1; }},
        Change<C>{"AmrwbPayloadType",
                  [](C& c) { media_at(c, audio).amrwbParam->payloadType = 100; }},
        Change<C>{"OpusParameter", [](C& c) { media_at(c, audio).opusParam->stereo = false; }},
        Change<C>{"CryptoCount", [](C& c) { media_at(c, audio).cryptoCount = 0; }},
        Change<C>{"CryptoDropped",
                  [](C& c) {
                      delete media_at(c, audio).cryptos.back();
                      media_at(c, audio).cryptos.pop_back();
                  }},
        Change<C>{"Tag", [](C& c) { media_at(c, audio).cryptos.front()->tag = 2; }},
        Change<C>{
            "Suite",
            [](C& c) { media_at(c, audio).cryptos.front()->algo = CS_AES_CM_128_HMAC_SHA1_32; }},
        Change<C>{"KeyDropped", [](C& c) { media_at(c, audio).cryptos.front()->keys.pop_back(); }},
        Change<C>{"LastByteOfTheLastKey",
                  [](C& c) { ++media_at(c, audio).cryptos.front()->keys.back().key[45]; }},
        Change<C>{"Lifetime",
                  [](C& c) { ++media_at(c, audio).cryptos.front()->keys.back().lifetime; }},
        Change<C>{"Mki", [](C& c) { ++media_at(c, audio).cryptos.front()->keys.back().mki[3]; }}),
    name_of_row);

class NoChanges : public testing::TestWithParam<Change<QOVA_Capability>> {};

TEST_P(NoChanges, Show) {
    QOVA_Capability before = full();
    QOVA_Capability now = before;
    GetParam().apply(now);
    EXPECT_FALSE(sdp::changed(before, now));
    EXPECT_FALSE(sdp::changed(now, before));
}

INSTANTIATE_TEST_SUITE_P(
    Table, NoChanges,
    testing::Values(
        Change<C>{"None", [](C&) {}}, Change<C>{"Role", [](C& c) { c.offer = !c.offer; }},
        Change<C>{"Mark", [](C& c) { c.marked = true; }},
        Change<C>{"SpareMembers", [](C& c) { c.spare1 = c.spare2 = c.spare3 = 1; }},
        Change<C>{"PortsOfARejectedLine", [](C& c) { media_at(c, rejected).rcvPort = 7; }},
        Change<C>{"PayloadsOfARejectedLine",
                  [](C& c) { drop_last_attribute(media_at(c, rejected)); }},
        Change<C>{
            "StatusOfAPayload",
            [](C& c) { media_at(c, audio).attributes.front()->status = QOVA_Media::MS_REJECTED; }},
        Change<C>{"TypeOfAPayload",
                  [](C& c) {
                      media_at(c, audio).attributes.front()->attributeType = QOVA_Media::AT_DATA;
                  }}),
    name_of_row);

TEST(Changes, LeaveBothSidesAsTheyWere) {
    QOVA_Capability before = full();
    QOVA_Capability now = full();
    const std::string text = static_cast<const std::string&>(before);
    const Sdp::Sdp_Opus_Param* const opus = media_at(now, audio).opusParam;
    sdp::changed(before, now);
    EXPECT_EQ(media_at(now, audio).opusParam, opus);
    EXPECT_EQ(static_cast<const std::string&>(before), text);
    EXPECT_EQ(static_cast<const std::string&>(now), text);
    EXPECT_FALSE(sdp::changed(now, now));
}

TEST(Changes, OfEmptySidesAreNone) {
    QOVA_Capability before;
    QOVA_Capability now;
    EXPECT_FALSE(sdp::changed(before, now));
}

}  // namespace
