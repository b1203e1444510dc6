// One side of a call over several offers: what it remembers, and what it does not.

#include "answer/call_side.h"

#include <string>

#include "answer/changes.h"
#include "answers.h"

namespace {

const std::string audio = session({"m=audio 5004 RTP/AVP 8 0"});
const std::string inactive = session({"m=audio 5004 RTP/AVP 8 0", "a=inactive"});
const std::string other_origin = "v=0\r\no=- 1 2" + audio.substr(audio.find(" IN IP4"));
const std::string secure = session({"m=audio 5004 RTP/SAVP 8", "a=crypto:1 " + aes_80});
const std::string video = session({"m=video 5004 RTP/AVP 31"});

sdp::Reply answer(sdp::CallSide& side, const std::string& offer) {
    return side.answer(offer, sdp::Strictness::STRICT);
}

std::string version_of(const std::string& text) {
    return std::to_string(reading_of(text).origin.version);
}

std::string last_line(const std::string& log) {
    return log.substr(log.rfind('\n', log.size() - 2) + 1);
}

TEST(CallSide, HasNothingToCompareItsFirstAnswerWith) {
    sdp::CallSide side(policy_at());
    const sdp::Reply reply = answer(side, audio);
    EXPECT_EQ(reply.changed, std::nullopt);
    EXPECT_TRUE(reply.has_common);
    EXPECT_EQ(version_of(reply.text), "1");
    EXPECT_EQ(reply.log.find("since"), std::string::npos);
}

TEST(CallSide, HasASessionOfItsOwn) {
    const sdp::Policy policy{sdp::MediaAddress::parse("192.0.2.1").value()};
    sdp::CallSide first(policy);
    sdp::CallSide second(policy);
    EXPECT_NE(reading_of(answer(first, audio).text).origin.id,
              reading_of(answer(second, audio).text).origin.id);
}

TEST(CallSide, AnswersTheSameOfferAgainWithTheSameKey) {
    sdp::CallSide side(policy_at());
    const sdp::Reply first = answer(side, secure);
    const sdp::Reply second = answer(side, secure);
    EXPECT_EQ(second.text, first.text);
    EXPECT_EQ(second.changed, false);
    EXPECT_TRUE(second.has_common);
    EXPECT_EQ(second.log, "since the last offer: unchanged\nsince the last answer: unchanged\n");
}

TEST(CallSide, RaisesTheVersionOnlyWhenItsTextChanges) {
    sdp::CallSide side(policy_at());
    const sdp::Reply first = answer(side, audio);
    const sdp::Reply refreshed = answer(side, other_origin);
    EXPECT_EQ(refreshed.text, first.text);
    EXPECT_EQ(refreshed.changed, false);
    const sdp::Reply held = answer(side, inactive);
    EXPECT_EQ(version_of(held.text), "2");
    EXPECT_EQ(held.changed, true);
    EXPECT_EQ(reading_of(held.text).origin.id, reading_of(first.text).origin.id);
    EXPECT_EQ(version_of(answer(side, inactive).text), "2");
    EXPECT_EQ(version_of(answer(side, audio).text), "3");
}

TEST(CallSide, SaysWhatChangedSinceTheLastOfferAndAnswer) {
    sdp::CallSide side(policy_at());
    answer(side, audio);
    const std::string fewer = session({"m=audio 5004 RTP/AVP 8 0 3"});
    const std::string log = answer(side, fewer).log;
    EXPECT_NE(log.find("since the last offer: changed\n"), std::string::npos) << log;
    EXPECT_EQ(last_line(log), "since the last answer: unchanged\n");
    EXPECT_EQ(last_line(answer(side, inactive).log), "since the last answer: changed\n");
}

TEST(CallSide, ForgetsAnOfferWithNothingInCommon) {
    sdp::CallSide side(policy_at());
    const sdp::Reply first = answer(side, audio);
    const sdp::Reply none = answer(side, video);
    EXPECT_FALSE(none.has_common);
    EXPECT_EQ(none.diagnostics.size(), 1U);
    EXPECT_EQ(none.text.substr(none.text.find("m=")), "m=video 0 RTP/AVP 31\r\n");
    const sdp::Reply again = answer(side, audio);
    EXPECT_EQ(again.text, first.text);
    EXPECT_EQ(again.changed, false);
}

TEST(CallSide, HasSomethingInCommonWithAnOfferThatAsksForNothing) {
    sdp::CallSide side(policy_at());
    EXPECT_TRUE(answer(side, session({})).has_common);
    EXPECT_TRUE(answer(side, session({"m=audio 0 RTP/AVP 8"})).has_common);
}

TEST(CallSide, IsAsItWasAfterARefusal) {
    sdp::CallSide side(policy_at());
    const sdp::Reply first = answer(side, secure);
    EXPECT_EQ(refusal([&] { answer(side, audio + "broken"); }),
              "7: expected a line of the form x=value");
    EXPECT_EQ(refusal([&] { answer(side, audio + "a=ptime:soon"); }),
              "7: a=ptime: expected a number from 0 to 2147483647");
    EXPECT_EQ(refusal([&] { side.resume("broken"); }),
              "1: not a session description: the first line is not v=0");
    EXPECT_EQ(answer(side, secure).text, first.text);
}

TEST(CallSide, PassesWarningsOn) {
    sdp::CallSide side(policy_at());
    const sdp::Reply reply = side.answer(audio + "a=ptime:soon\r\n", sdp::Strictness::LENIENT);
    ASSERT_EQ(reply.diagnostics.size(), 1U);
    EXPECT_EQ(reply.diagnostics.front().line, 7U);
}

// --- The public plan -----------------------------------------------------------------------------

TEST(CallSide, AnswersInThePublicPlan) {
    sdp::CallSide side(policy_at(), public_plan());
    const sdp::Reply reply = answer(
        side,
        session({"m=audio 5004 RTP/AVP 8", "m=image 5006 udptl t38", "m=video 5008 RTP/AVP 31",
                 "m=audio 0 RTP/AVP 8", "m=audio 5010 RTP/AVP 0"}));
    EXPECT_EQ(reply.text.find("192.0.2.1"), std::string::npos) << reply.text;
    EXPECT_EQ(reply.text.substr(reply.text.find("s=")),
              lines({"s=-", "c=IN IP4 203.0.113.5", "t=0 0", "m=audio 40000 RTP/AVP 8",
                     "m=image 7000 udptl t38", "m=video 0 RTP/AVP 31", "m=audio 0 RTP/AVP 8",
                     "m=audio 40004 RTP/AVP 0"}));
    EXPECT_NE(reply.log.find("\nanswer: Capability(answer"), std::string::npos);
    EXPECT_NE(reply.log.find("@192.0.2.1/snd=32000"), std::string::npos);
    EXPECT_NE(reply.log.find("\npublic: Capability(answer"), std::string::npos);
    EXPECT_NE(reply.log.find("@203.0.113.5/snd=40000"), std::string::npos);
}

TEST(CallSide, RefusesPublicPortsBeyondTheLast) {
    const std::string message = "the public ports of the answer exceed 65535";
    const auto refusal_at = [](unsigned short audio_port, unsigned short fax_port,
                               const std::string& offer) -> std::string {
        sdp::Plan plan = public_plan();
        plan.audio_port = audio_port;
        plan.fax_port = fax_port;
        sdp::CallSide side(policy_at(), plan);
        try {
            answer(side, offer);
            return "accepted";
        } catch (const std::range_error& error) {
            return error.what();
        }
    };
    const std::string two = session({"m=audio 5004 RTP/AVP 8", "m=audio 5006 RTP/AVP 8"});
    const std::string fax = session({"m=image 5004 udptl t38"});
    EXPECT_EQ(refusal_at(65532, 7000, two), "accepted");
    EXPECT_EQ(refusal_at(65533, 7000, two), message);
    EXPECT_EQ(refusal_at(65534, 7000, two), message);
    EXPECT_EQ(refusal_at(65535, 7000, audio), message);
    EXPECT_EQ(refusal_at(65535, 7000, fax), "accepted");
    EXPECT_EQ(refusal_at(40000, 65534, fax), "accepted");
    EXPECT_EQ(refusal_at(40000, 65535, fax), message);
    EXPECT_EQ(refusal_at(40000, 65535, audio), "accepted");
}

// --- Going on with a call ------------------------------------------------------------------------

TEST(CallSide, GoesOnFromWhatWasSent) {
    sdp::CallSide before(policy_at(), public_plan());
    const std::string sent = answer(before, audio).text;
    sdp::CallSide side(policy_at(), public_plan());
    side.resume(sent);
    const sdp::Reply same = answer(side, audio);
    EXPECT_EQ(same.text, sent);
    EXPECT_EQ(same.changed, false);
    EXPECT_EQ(last_line(same.log), "since the last answer: unchanged\n");
    const sdp::Reply other = answer(side, inactive);
    EXPECT_EQ(other.changed, true);
    EXPECT_EQ(version_of(other.text), "2");
    EXPECT_EQ(reading_of(other.text).origin.id, reading_of(sent).origin.id);
}

TEST(CallSide, GoesOnFromAnyVersion) {
    sdp::CallSide side(policy_at());
    side.resume(lines({"v=0", "o=- 99 41 IN IP4 192.0.2.1", "s=-", "c=IN IP4 192.0.2.1", "t=0 0",
                       "m=audio 32000 RTP/AVP 8"}));
    const std::string text = answer(side, audio).text;
    EXPECT_EQ(text.substr(5, text.find("\r\n", 5) - 5), "o=- 99 42 IN IP4 192.0.2.1");
}

TEST(CallSide, ForgetsTheLastOfferWhenItGoesOnFromSomethingElse) {
    sdp::CallSide side(policy_at());
    answer(side, audio);
    side.resume(lines({"v=0", "o=- 99 41 IN IP4 192.0.2.1", "s=-", "c=IN IP4 192.0.2.1", "t=0 0",
                       "m=audio 0 RTP/AVP 8"}));
    EXPECT_EQ(answer(side, audio).changed, true);
}

// --- Its own offers ------------------------------------------------------------------------------

TEST(CallSide, OffersAllThatItsPolicyHas) {
    sdp::CallSide all(policy_at());
    const sdp::Reply reply = all.offer();
    const sdp::Reading reading =
        sdp::read(sdp::Description(reply.text), sdp::Role::OFFER, sdp::Strictness::STRICT);
    const QOVA_Media& media = *reading.capability->filteredMedia.front();
    for (const QOVA_Codec codec : {CODEC_G711_ALAW, CODEC_G711_ULAW, CODEC_G722, CODEC_G723,
                                   CODEC_G729, CODEC_G722_2, CODEC_OPUS}) {
        ASSERT_NE(media.find(codec), nullptr) << codec;
    }
    for (const QOVA_Codec codec : {CODEC_G711_ALAW, CODEC_G722_2, CODEC_OPUS}) {
        EXPECT_NE(media.find(codec)->mf, CODEC_NIL) << codec;
    }
    EXPECT_TRUE(media.bsnd && media.brcv);
    EXPECT_EQ(reply.log.substr(0, 24), "offer: Capability(offer,");
}

TEST(CallSide, OffersOnlyItsCodecsInThePublicPlan) {
    sdp::Policy policy = policy_at();
    policy.codecs = {CODEC_G711_ALAW};
    sdp::CallSide side(policy, public_plan());
    const std::string text = side.offer().text;
    EXPECT_EQ(text.substr(text.find("s=")),
              lines({"s=-", "c=IN IP4 203.0.113.5", "t=0 0", "m=audio 40000 RTP/AVP 8 101",
                     "a=rtpmap:101 telephone-event/8000", "a=ptime:20"}));
}

TEST(CallSide, OffersWhatItSentLast) {
    sdp::CallSide side(policy_at());
    const std::string sent = answer(side, secure).text;
    EXPECT_EQ(side.offer().text, sent);
    sdp::CallSide caller(policy_at());
    const std::string offered = caller.offer().text;
    EXPECT_EQ(caller.offer().text, offered);
}

TEST(CallSide, AnswersAfterAnOfferOfItsOwn) {
    sdp::CallSide side(policy_at());
    const std::string offered = side.offer().text;
    const std::string log = side.take_answer(audio);
    EXPECT_EQ(log.substr(0, 26), "answer: Capability(answer,");
    const sdp::Reply reply = answer(side, inactive);
    EXPECT_EQ(reply.changed, true);
    EXPECT_EQ(version_of(reply.text), "2");
    EXPECT_EQ(version_of(offered), "1");
}

TEST(CallSide, RefusesAnAnswerWithOtherLines) {
    sdp::CallSide side(policy_at());
    side.offer();
    const std::string message = "0: the answer and the offer have different numbers of media lines";
    EXPECT_EQ(refusal([&] { side.take_answer(session({})); }), message);
    EXPECT_EQ(refusal([&] { side.take_answer(audio + "m=video 5 RTP/AVP 31\r\n"); }), message);
    EXPECT_EQ(refusal([&] { side.take_answer("v=0\r\n"); }), "1: the o= line is missing");
    EXPECT_EQ(refusal([&] { side.take_answer(audio); }), "accepted");
}

// --- Keys ----------------------------------------------------------------------------------------

TEST(CallSide, LogsNoKeys) {
    sdp::CallSide side(policy_at(), public_plan());
    const sdp::Reply reply = answer(side, secure);
    const std::size_t key = reply.text.find("inline:") + 7;
    EXPECT_EQ(reply.text.find(offered_key.substr(0, 8)), std::string::npos);
    EXPECT_EQ(reply.log.find(offered_key.substr(0, 8)), std::string::npos);
    EXPECT_EQ(reply.log.find(reply.text.substr(key, 8)), std::string::npos);
    EXPECT_EQ(reply.log.find("inline"), std::string::npos);
}

}  // namespace
