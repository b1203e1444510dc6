// One side of a call: what it answers to each offer of the other, and what it remembers of that.

#ifndef QOVA_TOOLS_ANSWER_CALL_SIDE_H
#define QOVA_TOOLS_ANSWER_CALL_SIDE_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "answer/answerer.h"
#include "qova/capability.h"
#include "sdp/reader.h"
#include "sdp/text.h"
#include "sdp/writer.h"
#include "socket/address.h"

namespace sdp {

// Where the local plan is reached from outside.
struct PublicPlan {
    IPAddress address;
    unsigned short audio_port;  // stands for QOVA_Capability::AUDIO_PORT_BASE
    unsigned short fax_port;    // stands for QOVA_Capability::FAX_PORT_BASE
};

struct Reply {
    std::string text;                 // the description to send
    bool has_common = true;           // else every line that was offered is rejected
    std::optional<bool> changed;      // since what was sent before, if anything was
    std::vector<Warning> warnings;    // about the other side's description
    std::vector<Warning> rejections;  // why lines of it are rejected
    std::string log;                  // the capabilities, and whether they changed
};

class CallSide {
public:
    explicit CallSide(Policy policy, std::optional<PublicPlan> plan = std::nullopt);

    // Takes up a call from the description that was sent last.
    // Throws Refusal.
    void resume(const std::string& sent);

    // Answers an offer. One that is the same to the byte as the last gets the same answer, key
    // included; else the version in o= rises by one if anything in the text has changed.
    // Without anything in common it is not remembered: the call goes on as it was.
    // Throws Refusal, or std::range_error where the public plan has no port for a line, and nothing
    // has changed.
    Reply answer(const std::string& offer, Strictness strictness);

    // Makes an offer: what was sent last, else all that the policy has.
    Reply offer();

    // Reads the other side's answer to it. The result is the log.
    // Throws Refusal.
    std::string take_answer(const std::string& answer);

private:
    // What would be sent in return for a description, and the capability as it is sent then.
    struct Draft {
        Answer answer;
        std::unique_ptr<QOVA_Capability> sent;
        std::string text;
        Origin origin;
    };
    Draft draft(const Description& description, const Reading& reading) const;
    void remember(Draft& draft);

    Policy policy;
    std::optional<PublicPlan> plan;
    Origin origin;
    std::string last_offer;  // the other side's; empty after one of our own
    std::unique_ptr<QOVA_Capability> last_offered;
    std::string last_sent;
    std::unique_ptr<QOVA_Capability> last_sent_capability;
};

}  // namespace sdp

#endif
