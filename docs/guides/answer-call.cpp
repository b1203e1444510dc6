// The code of answer-call.md: a call as the side that answers sees it.

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string>
#include <utility>

#include "answer/call_side.h"

namespace {

// [offer]
// What the caller offers, in a version of its o= line, and with one more attribute of its audio.
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
sdp::CallSide call_side() {
    sdp::Policy policy{sdp::MediaAddress::parse("192.0.2.7").value()};
    // For output that is the same each time. Leave it out: keys come from here.
    policy.random = [](unsigned char* to, std::size_t size) { std::fill_n(to, size, '\1'); };
    const sdp::Plan plan = {sdp::MediaAddress::parse("203.0.113.5").value(), 40000, 7000};
    return sdp::CallSide(std::move(policy), plan);
}
// [side]

// [answer]
// What is sent in return for an INVITE, the first of a call or a later one.
void answer(sdp::CallSide& side, const std::string& offer) {
    try {
        const sdp::Reply reply = side.answer(offer, sdp::Strictness::LENIENT);
        for (const sdp::Diagnostic& diagnostic : reply.diagnostics) {
            std::cout << sdp::printed(diagnostic, "INVITE") << '\n';
        }
        std::cout << reply.log
                  << (reply.has_common ? "200 OK\n\n" + reply.text : "488 Not Acceptable Here\n");
    } catch (const sdp::Refusal& refusal) {
        std::cout << "400 Bad Request: line " << refusal.line << ": " << refusal.what() << '\n';
    }
}
// [answer]

}  // namespace

int main() {
    // [call]
    const std::string invites[] = {
        offer("1"),                    // begins the call
        offer("1"),                    // of a session timer: as before to the byte
        offer("2", "a=sendonly\r\n"),  // puts it on hold
        "v=1\r\n",                     // nobody can read
    };
    sdp::CallSide side = call_side();
    for (const std::string& invite : invites) {
        answer(side, invite);
        std::cout << "--\n";
    }
    // [call]
}
