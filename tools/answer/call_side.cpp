#include "answer/call_side.h"

#include <stdexcept>
#include <utility>

#include "answer/changes.h"
#include "qova/media.h"

namespace sdp {

namespace {

// What an offer of our own may ask for: it is answered by the policy to become the offer.
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
    std::string text = std::string(name).append(": ");
    text += static_cast<const std::string&>(capability);
    return text.back() == '\n' ? text : text + '\n';
}

std::string change_entry(const char* since, bool changed) {
    return std::string("since the last ") + since + (changed ? ": changed\n" : ": unchanged\n");
}

// The library moves ports modulo 65536.
void check_ports(const QOVA_Capability& moved, const PublicPlan& plan) {
    for (const QOVA_Media* const media : moved.filteredMedia) {
        const unsigned short base =
            media->mediaType == QOVA_Media::MT_FAX ? plan.fax_port : plan.audio_port;
        if (media->mediaStatus != QOVA_Media::MS_REJECTED && media->rcvPort2 <= base) {
            throw std::range_error("the public ports of the answer run beyond 65535");
        }
    }
}

}  // namespace

CallSide::CallSide(Policy policy_of, std::optional<PublicPlan> plan_of)
    : policy(std::move(policy_of)), plan(std::move(plan_of)), origin{0, 1} {
    unsigned char id[7];
    policy.random(id, sizeof id);
    for (const unsigned char byte : id) {
        origin.id = origin.id << 8U | byte;
    }
}

void CallSide::resume(const std::string& sent) {
    const Description description(sent);
    Reading reading = read(description, Role::ANSWER, Strictness::LENIENT);
    origin = origin_of(reading);
    last_sent = sent;
    last_sent_capability = std::move(reading.capability);
    last_offer.clear();
    last_offered.reset();
}

CallSide::Draft CallSide::draft(const Description& description, const Reading& reading) const {
    Draft draft = {sdp::answer(reading, policy), nullptr, "", origin};
    draft.sent = std::make_unique<QOVA_Capability>(*draft.answer.capability);
    if (plan) {
        draft.sent->setPublicAddrPort(UDPAddr(plan->address, 0), plan->audio_port, plan->fax_port);
        check_ports(*draft.sent, *plan);
    }
    const auto text = [&] {
        return write(description, reading, *draft.sent, draft.answer.payloads,
                     plan ? plan->address : policy.address, draft.origin);
    };
    draft.text = text();
    if (!last_sent.empty() && draft.text != last_sent) {
        ++draft.origin.version;
        draft.text = text();
    }
    return draft;
}

void CallSide::remember(Draft& draft) {
    origin = draft.origin;
    last_sent = draft.text;
    last_sent_capability = std::move(draft.sent);
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
    Draft draft = this->draft(description, reading);
    reply.has_common = draft.answer.accepts || draft.answer.rejections.empty();
    reply.text = draft.text;
    reply.warnings = std::move(reading.warnings);
    reply.rejections = std::move(draft.answer.rejections);
    reply.log = entry("offer", *reading.capability) + entry("answer", *draft.answer.capability);
    if (plan) {
        reply.log += entry("public", *draft.sent);
    }
    if (last_offered != nullptr) {
        reply.log += change_entry("offer", sdp::changed(*last_offered, *reading.capability));
    }
    if (last_sent_capability != nullptr) {
        reply.changed = sdp::changed(*last_sent_capability, *draft.sent);
        reply.log += change_entry("answer", *reply.changed);
    }
    if (reply.has_common) {
        remember(draft);
        last_offer = offer;
        last_offered = std::move(reading.capability);
    }
    return reply;
}

Reply CallSide::offer() {
    Reply reply;
    if (last_sent.empty()) {
        const std::string text = everything(policy.address);
        const Description description(text);
        const Reading reading = read(description, Role::OFFER, Strictness::STRICT);
        Draft draft = this->draft(description, reading);
        draft.sent->offer = true;
        remember(draft);
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
    if (description.sections.size() != Description(last_sent).sections.size()) {
        throw Refusal(0, "the answer has not as many lines as the offer");
    }
    return entry("answer", *reading.capability);
}

}  // namespace sdp
