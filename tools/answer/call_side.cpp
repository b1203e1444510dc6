#include "answer/call_side.h"

#include <iterator>
#include <stdexcept>
#include <utility>

#include "answer/changes.h"
#include "sdp/strings.h"
#include "sdp/writer.h"

namespace sdp {
namespace {

// The template of our own offer. The policy filters it as it filters a received offer.
std::string everything(const IPAddress& address) {
    const std::string at = (address.Size() == 4 ? "IN IP4 " : "IN IP6 ") + address.ToString();
    return "v=0\r\no=- 0 0 " + at + "\r\ns=-\r\nc=" + at +
           "\r\nt=0 0\r\n"
           "m=audio 9 RTP/AVP 8 0 9 18 4 96 97 101 102 103\r\n"
           "a=rtpmap:18 G729/8000\r\n"
           "a=fmtp:18 annexb=no\r\n"
           "a=fmtp:4 annexa=no\r\n"
           "a=rtpmap:96 AMR-WB/16000\r\n"
           "a=fmtp:96 octet-align=1\r\n"
           "a=rtpmap:97 opus/48000/2\r\n"
           "a=rtpmap:101 telephone-event/8000\r\n"
           "a=rtpmap:102 telephone-event/16000\r\n"
           "a=rtpmap:103 telephone-event/48000\r\n"
           "a=ptime:20\r\n";
}

std::string entry(const char* name, const QOVA_Capability& capability) {
    return with_newline(name + (": " + static_cast<const std::string&>(capability)));
}

std::string change_entry(const char* since, bool changed) {
    return std::string("since the last ") + since + (changed ? ": changed\n" : ": unchanged\n");
}

// The library moves ports modulo 65536.
void check_ports(const QOVA_Capability& local, const Plan& plan) {
    for (const QOVA_Media* const media : local.filteredMedia) {
        if (media->mediaStatus != QOVA_Media::MS_REJECTED &&
            !is_port(media->rcvPort2 + port_shift(plan, media->mediaType))) {
            throw std::range_error("the public ports of the answer exceed 65535");
        }
    }
}

}  // namespace

CallSide::CallSide(Policy given_policy, std::optional<Plan> given_plan)
    : policy(std::move(given_policy)), plan(std::move(given_plan)), origin{0, 1} {
    unsigned char id[7];
    policy.random(id, sizeof id);
    for (const unsigned char byte : id) {
        origin.id = origin.id << 8U | byte;
    }
}

void CallSide::resume(const std::string& sent) {
    const Description description(sent);
    Reading reading = read(description, Role::ANSWER, Strictness::LENIENT);
    origin = reading.origin;
    last_sent = sent;
    last_sent_capability = std::move(reading.capability);
    last_offer.clear();
    last_offered.reset();
}

CallSide::Draft CallSide::draft(const Description& description, const Reading& reading) const {
    Draft result = {sdp::answer(reading, policy), nullptr, "", origin};
    result.sent = std::make_unique<QOVA_Capability>(*result.answer.capability);
    if (plan) {
        check_ports(*result.sent, *plan);
        result.sent->setPublicAddrPort(UDPAddr(plan->address.ip(), 0), plan->audio_port,
                                       plan->fax_port);
    }
    const auto text = [&] {
        return write(description, reading, *result.sent, result.answer.payloads,
                     (plan ? plan->address : policy.address).ip(), result.origin);
    };
    result.text = text();
    if (!last_sent.empty() && result.text != last_sent) {
        ++result.origin.version;
        result.text = text();
    }
    return result;
}

void CallSide::remember(Draft& new_draft) {
    origin = new_draft.origin;
    last_sent = new_draft.text;
    last_sent_capability = std::move(new_draft.sent);
}

Reply CallSide::answer(const std::string& offer, Strictness strictness) {
    Reply reply;
    if (!last_offer.empty() && offer == last_offer) {
        reply.text = last_sent;
        reply.changed = false;
        reply.log = change_entry("offer", false) + change_entry("answer", false);
        return reply;
    }
    const Description description(offer);
    Reading reading = read(description, Role::OFFER, strictness);
    Draft new_answer = draft(description, reading);
    Diagnostics& rejections = new_answer.answer.diagnostics;
    reply.has_common = new_answer.answer.accepts || rejections.empty();
    reply.text = new_answer.text;
    reply.diagnostics = std::move(reading.diagnostics);
    std::move(rejections.begin(), rejections.end(), std::back_inserter(reply.diagnostics));
    reply.log =
        entry("offer", *reading.capability) + entry("answer", *new_answer.answer.capability);
    if (plan) {
        reply.log += entry("public", *new_answer.sent);
    }
    if (last_offered != nullptr) {
        reply.log += change_entry("offer", sdp::changed(*last_offered, *reading.capability));
    }
    if (last_sent_capability != nullptr) {
        reply.changed = sdp::changed(*last_sent_capability, *new_answer.sent);
        reply.log += change_entry("answer", *reply.changed);
    }
    if (reply.has_common) {
        remember(new_answer);
        last_offer = offer;
        last_offered = std::move(reading.capability);
    }
    return reply;
}

Reply CallSide::offer() {
    Reply reply;
    if (last_sent.empty()) {
        const std::string text = everything(policy.address.ip());
        const Description description(text);
        const Reading reading = read(description, Role::OFFER, Strictness::STRICT);
        Draft new_offer = draft(description, reading);
        new_offer.sent->offer = true;
        remember(new_offer);
    } else {
        last_sent_capability->offer = true;
    }
    last_offer.clear();
    reply.text = last_sent;
    reply.log = entry("offer", *last_sent_capability);
    return reply;
}

std::string CallSide::take_answer(const std::string& answer) {
    const Description description(answer);
    const Reading reading = read(description, Role::ANSWER, Strictness::LENIENT);
    refuse_if(description.sections.size() != Description(last_sent).sections.size(), 0,
              "the answer and the offer have different numbers of media lines");
    return entry("answer", *reading.capability);
}

}  // namespace sdp
