// State that a case cannot show: a side of a call over several offers, and changes of the model.

#include <gtest/gtest.h>

#include <set>

#include "adapter.h"
#include "answer/changes.h"
#include "case_file.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace {

using tools::session;
using tools::Side;

const std::string audio = session({"m=audio 5004 RTP/AVP 8 0"});
const std::string inactive = session({"m=audio 5004 RTP/AVP 8 0", "a=inactive"});
const std::string refreshed = "v=0\r\no=- 1 2" + audio.substr(audio.find(" IN IP4"));
const std::string secure =
    session({"m=audio 5004 RTP/SAVP 8", "a=crypto:1 AES_CM_128_HMAC_SHA1_80 inline:$KEY30"});
const std::string video = session({"m=video 5004 RTP/AVP 31"});

class CallSideTest : public testing::Test {
protected:
    sdp::Reply answer(const std::string& offer) {
        return side.answer(offer, sdp::Strictness::STRICT);
    }

    sdp::CallSide side{Side().policy};
};

sdp::Origin origin_of(const std::string& text) {
    return sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::STRICT).origin;
}

std::string media_of(const std::string& text) {
    return text.substr(text.find("m="));
}

std::string last_line(const std::string& log) {
    return log.substr(log.rfind('\n', log.size() - 2) + 1);
}

TEST_F(CallSideTest, FirstAnswerHasNoComparison) {
    const sdp::Reply reply = answer(audio);
    EXPECT_EQ(reply.changed, std::nullopt);
    EXPECT_TRUE(reply.has_common);
    EXPECT_EQ(origin_of(reply.text).version, 1U);
    EXPECT_EQ(reply.log.find("since"), std::string::npos);
}

TEST_F(CallSideTest, HasANumberAndKeysOfItsOwn) {
    std::set<std::uint64_t> ids;
    std::set<std::string> keys;
    for (int i = 0; i < 3; ++i) {
        const sdp::Reply reply = sdp::CallSide(Side().policy).answer(secure, {});
        ids.insert(origin_of(reply.text).id);
        keys.insert(media_of(reply.text));
    }
    EXPECT_EQ(ids.size(), 3U);
    EXPECT_EQ(keys.size(), 3U);
}

TEST_F(CallSideTest, FailsAsItsRandomSourceDoes) {
    sdp::Policy policy = Side().policy;
    policy.random = [](unsigned char*, std::size_t size) {
        if (size > 8) {
            throw std::runtime_error("no key");
        }
    };
    sdp::CallSide without_keys(policy);
    EXPECT_THROW(without_keys.answer(secure, {}), std::runtime_error);
    EXPECT_TRUE(without_keys.answer(audio, {}).has_common);
}

TEST_F(CallSideTest, RepeatsItsAnswerAndKey) {
    const sdp::Reply first = answer(secure);
    const sdp::Reply second = answer(secure);
    EXPECT_EQ(second.text, first.text);
    EXPECT_EQ(second.changed, false);
    EXPECT_TRUE(second.has_common);
    EXPECT_EQ(second.log, "since the last offer: unchanged\nsince the last answer: unchanged\n");
}

TEST_F(CallSideTest, RaisesTheVersionOnChange) {
    const sdp::Reply first = answer(audio);
    const sdp::Reply second = answer(refreshed);
    EXPECT_EQ(second.text, first.text);
    EXPECT_EQ(second.changed, false);
    const sdp::Reply held = answer(inactive);
    EXPECT_EQ(held.changed, true);
    EXPECT_EQ(origin_of(held.text).version, 2U);
    EXPECT_EQ(origin_of(held.text).id, origin_of(first.text).id);
    EXPECT_EQ(origin_of(answer(inactive).text).version, 2U);
    EXPECT_EQ(origin_of(answer(audio).text).version, 3U);
}

TEST_F(CallSideTest, LogsWhatChanged) {
    answer(audio);
    const std::string log = answer(session({"m=audio 5004 RTP/AVP 8 0 3"})).log;
    EXPECT_NE(log.find("since the last offer: changed\n"), std::string::npos) << log;
    EXPECT_EQ(last_line(log), "since the last answer: unchanged\n");
    EXPECT_EQ(last_line(answer(inactive).log), "since the last answer: changed\n");
}

TEST_F(CallSideTest, ForgetsAnUnacceptableOffer) {
    const sdp::Reply first = answer(audio);
    const sdp::Reply none = answer(video);
    EXPECT_FALSE(none.has_common);
    EXPECT_EQ(media_of(none.text), "m=video 0 RTP/AVP 31\r\n");
    const sdp::Reply again = answer(audio);
    EXPECT_EQ(again.text, first.text);
    EXPECT_EQ(again.changed, false);
    EXPECT_TRUE(answer("v=0\r\no=- 1 1 IN IP4 10.0.0.1\r\n").has_common);
    EXPECT_TRUE(answer(session({"m=audio 0 RTP/AVP 8"})).has_common);
}

TEST_F(CallSideTest, IsUnchangedByARefusal) {
    const sdp::Reply first = answer(secure);
    EXPECT_THROW(answer(audio + "broken"), sdp::Refusal);
    EXPECT_THROW(answer(audio + "a=ptime:soon"), sdp::Refusal);
    EXPECT_THROW(side.resume("broken"), sdp::Refusal);
    EXPECT_EQ(answer(secure).text, first.text);
}

TEST_F(CallSideTest, ResumesFromAnyDescription) {
    answer(audio);
    side.resume(session({"v=0", "o=- 99 41 IN IP4 192.0.2.1", "c=IN IP4 192.0.2.1", "t=0 0",
                         "m=audio 0 RTP/AVP 8"}));
    const sdp::Reply reply = answer(audio);
    EXPECT_EQ(reply.changed, true);
    EXPECT_EQ(origin_of(reply.text).id, 99U);
    EXPECT_EQ(origin_of(reply.text).version, 42U);
    EXPECT_EQ(last_line(reply.log), "since the last answer: changed\n");
    EXPECT_EQ(reply.log.find("since the last offer"), std::string::npos);
}

TEST_F(CallSideTest, OffersAllThatItsPolicyHas) {
    const sdp::Reply reply = side.offer();
    EXPECT_EQ(reply.log.substr(0, 24), "offer: Capability(offer,");
    EXPECT_EQ(media_of(reply.text),
              tools::unescaped(
                  {"m=audio 32000 RTP/AVP 8 0 9 18 4 96 97 101 102 103", "a=rtpmap:18 G729/8000",
                   "a=fmtp:18 annexb=no", "a=fmtp:4 annexa=no", "a=rtpmap:96 AMR-WB/16000",
                   "a=fmtp:96 octet-align=1", "a=rtpmap:97 opus/48000/2",
                   "a=rtpmap:101 telephone-event/8000", "a=rtpmap:102 telephone-event/16000",
                   "a=rtpmap:103 telephone-event/48000", "a=ptime:20"}));
}

TEST_F(CallSideTest, OffersItsCodecsInThePublicPlan) {
    tools::Options narrow;
    narrow.add("codecs PCMA");
    const std::string text = sdp::CallSide(narrow.side.policy, tools::Journey().plan).offer().text;
    EXPECT_EQ(tools::without_head(text, "203.0.113.5"),
              tools::unescaped({"m=audio 40000 RTP/AVP 8 101", "a=rtpmap:101 telephone-event/8000",
                                "a=ptime:20"}));
}

TEST_F(CallSideTest, OffersAnIpv6Address) {
    const std::string text = sdp::CallSide({tools::address("2001:db8::1")}).offer().text;
    EXPECT_EQ(tools::without_head(text, "2001:db8::1").substr(0, 15), "m=audio 32000 R") << text;
}

TEST_F(CallSideTest, RejectsLinesWithoutAPort) {
    std::string offer = session({"m=audio 5004 RTP/AVP 0"});
    for (unsigned port = 32002; port < 65536; port += 2) {
        offer += "m=audio 5004 RTP/AVP 0\r\n";
    }
    EXPECT_TRUE(answer(offer).diagnostics.empty());
    const sdp::Diagnostics rejections = answer(offer + "m=audio 5004 RTP/AVP 0\r\n").diagnostics;
    ASSERT_EQ(rejections.size(), 1U);
    EXPECT_EQ(rejections.front().message, "no port left");
}

TEST_F(CallSideTest, OffersWhatItSentLast) {
    const std::string offered = side.offer().text;
    EXPECT_EQ(side.offer().text, offered);
    const std::string sent = answer(secure).text;
    EXPECT_EQ(side.offer().text, sent);
    EXPECT_EQ(side.offer().log.substr(0, 24), "offer: Capability(offer,");
}

TEST_F(CallSideTest, AnswersAfterAnOfferOfItsOwn) {
    const std::string offered = side.offer().text;
    EXPECT_EQ(origin_of(offered).version, 1U);
    EXPECT_EQ(side.take_answer(audio).substr(0, 26), "answer: Capability(answer,");
    const sdp::Reply reply = answer(inactive);
    EXPECT_EQ(reply.changed, true);
    EXPECT_EQ(origin_of(reply.text).version, 2U);
}

TEST_F(CallSideTest, RefusesAnAnswerWithOtherLines) {
    side.offer();
    const std::string no_media = audio.substr(0, audio.find("m="));
    EXPECT_THROW(side.take_answer("v=0\r\n"), sdp::Refusal);
    for (const std::string& other : {no_media, audio + media_of(video)}) {
        try {
            side.take_answer(other);
            ADD_FAILURE() << other;
        } catch (const sdp::Refusal& refusal) {
            EXPECT_STREQ(refusal.what(),
                         "the answer and the offer have different numbers of media lines");
        }
    }
    EXPECT_NO_THROW(side.take_answer(audio));
}

// --- Changes -------------------------------------------------------------------------------------

// A capability with an accepted line that has keys, and a rejected one.
QOVA_Capability full() {
    const std::string text = secure + "a=rtpmap:97 opus/48000/2\r\nm=audio 0 RTP/AVP 8\r\n";
    return *sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::STRICT).capability;
}

QOVA_Media& accepted(QOVA_Capability& capability) {
    return *capability.filteredMedia.front();
}

QOVA_Media& rejected(QOVA_Capability& capability) {
    return *capability.filteredMedia.back();
}

using C = QOVA_Capability;

TEST(Changes, AreFoundInBothDirections) {
    const std::pair<const char*, void (*)(C&)> changes[] = {
        {"hold", [](C& c) { c.hold = true; }},
        {"silence suppression", [](C& c) { c.silenceSuppSdp = true; }},
        {"send port", [](C& c) { ++accepted(c).sndPort; }},
        {"receive port", [](C& c) { ++accepted(c).rcvPort; }},
        {"second send port", [](C& c) { ++accepted(c).sndPort2; }},
        {"second receive port", [](C& c) { ++accepted(c).rcvPort2; }},
        {"crypto count", [](C& c) { accepted(c).cryptoCount = 0; }},
        {"last byte of a key", [](C& c) { ++accepted(c).cryptos.back()->keys.back().key[45]; }},
        {"order of lines", [](C& c) { c.filteredMedia.reverse(); }}};
    for (const auto& [name, change] : changes) {
        C before = full();
        C now = full();
        EXPECT_FALSE(sdp::changed(before, now));
        change(now);
        EXPECT_TRUE(sdp::changed(before, now)) << name;
        EXPECT_TRUE(sdp::changed(now, before)) << name;
    }
}

TEST(Changes, IgnoreUnnegotiatedFields) {
    C before = full();
    C now = full();
    now.offer = !now.offer;
    now.marked = true;
    now.spare1 = now.spare2 = now.spare3 = 1;
    rejected(now).rcvPort = 7;
    accepted(now).attributes.front()->status = QOVA_Media::MS_REJECTED;
    accepted(now).attributes.front()->attributeType = QOVA_Media::AT_DATA;
    EXPECT_FALSE(sdp::changed(before, now));
    EXPECT_FALSE(sdp::changed(now, before));
}

TEST(Changes, LeaveBothSidesAsTheyWere) {
    C before = full();
    C now = full();
    const std::string text = before;
    const Sdp::Sdp_Opus_Param* const opus = accepted(now).opusParam;
    sdp::changed(before, now);
    EXPECT_EQ(accepted(now).opusParam, opus);
    EXPECT_EQ(std::string(before), text);
    EXPECT_EQ(std::string(now), text);
    EXPECT_FALSE(sdp::changed(now, now));
}

}  // namespace
