// Reads an offer, moves it to a public address, and answers it.

#include <cstdio>
#include <string>

#include "answer/call_side.h"
#include "move/mover.h"
#include "sdp/plan.h"
#include "sdp/reader.h"

int main() {
    const std::string offer =
        "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nc=IN IP4 192.0.2.1\r\nt=0 0\r\n"
        "m=audio 32000 RTP/AVP 8 3\r\n";
    const sdp::Reading reading =
        sdp::read(sdp::Description(offer), sdp::Role::OFFER, sdp::Strictness::STRICT);
    std::fputs(static_cast<const std::string&>(*reading.capability).c_str(), stdout);

    const sdp::Plan plan = {*sdp::MediaAddress::parse("203.0.113.5"), 40000, 7000};
    std::fputs(sdp::move(offer, plan).text.c_str(), stdout);

    sdp::CallSide side(sdp::Policy{*sdp::MediaAddress::parse("192.0.2.7")});
    std::fputs(side.answer(offer, sdp::Strictness::STRICT).text.c_str(), stdout);
}
