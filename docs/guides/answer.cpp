// The code of answer.md: a call as the side that answers sees it.

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string>
#include <utility>

#include "answer/call_side.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "sdp/reader.h"

namespace {

// [offer]
// The caller's offer. Its version and one attribute of its audio line change during the call.
std::string offer(const std::string& version, const std::string& attribute = "") {
    return "v=0\r\n"
           "o=- 20518 " +
           version +
           " IN IP4 198.51.100.9\r\n"
           "s=-\r\n"
           "c=IN IP4 198.51.100.9\r\n"
           "t=0 0\r\n"
           "m=audio 49170 RTP/AVP 97 9 8 101\r\n"
           "a=rtpmap:97 iLBC/8000\r\n"
           "a=rtpmap:101 telephone-event/8000\r\n" +
           attribute +
           "m=video 49172 RTP/AVP 99\r\n"
           "a=rtpmap:99 H264/90000\r\n";
}
// [offer]

// [side]
sdp::CallSide make_side() {
    sdp::Policy policy{sdp::MediaAddress::parse("192.0.2.7").value()};
    // Only to make the output repeatable. Real keys must be random: omit this line.
    policy.random = [](unsigned char* to, std::size_t size) { std::fill_n(to, size, '\1'); };
    const sdp::Plan plan = {sdp::MediaAddress::parse("203.0.113.5").value(), 40000, 7000};
    return sdp::CallSide(std::move(policy), plan);
}
// [side]

// [answer]
// Answers an INVITE, the first of a call or a later one. Returns the log text.
std::string answer(sdp::CallSide& side, const std::string& invite) {
    try {
        const sdp::Reply reply = side.answer(invite, sdp::Strictness::LENIENT);
        for (const sdp::Diagnostic& diagnostic : reply.diagnostics) {
            std::cout << sdp::printed(diagnostic, "INVITE") << '\n';
        }
        std::cout << (reply.has_common ? "200 OK\n\n" + reply.text : "488 Not Acceptable Here\n");
        return reply.log;
    } catch (const sdp::Refusal& refusal) {
        std::cout << "400 Bad Request: line " << refusal.line << ": " << refusal.what() << '\n';
        return "";
    }
}
// [answer]

}  // namespace

int main() {
    // [call]
    sdp::CallSide side = make_side();
    const std::string log = answer(side, offer("1"));  // the call starts
    std::cout << "--\n" << log << "--\n";
    answer(side, offer("1"));  // a session timer: the same bytes
    std::cout << "--\n";
    answer(side, offer("2", "a=sendonly\r\n"));  // the caller puts the call on hold
    std::cout << "--\n";
    answer(side, "v=1\r\n");  // not a description
    // [call]
    std::cout << "--\n";

    // [ask]
    const std::string text = offer("1");
    const sdp::Reading reading =
        sdp::read(sdp::Description(text), sdp::Role::OFFER, sdp::Strictness::LENIENT);
    const QOVA_Capability& capability = *reading.capability;
    const QOVA_Media* const voice = capability.find(CODEC_G711_ALAW);  // a media line
    const QOVA_AudioAttribute* const tones =
        capability.find_mf(static_cast<QOVA_Codec>(101));  // an attribute
    std::cout << "A-law at port " << (voice != nullptr ? voice->rcvPort : 0) << '\n'
              << "tones with " << (tones != nullptr ? ToString(tones->codec) : "nothing") << '\n'
              << capability.find(QOVA_Media::MT_VIDEO, QOVA_Media::MS_ACCEPTED).size()
              << " video line\n"
              << "mute: " << (capability.isMute() ? "yes" : "no") << '\n';
    // [ask]
}
