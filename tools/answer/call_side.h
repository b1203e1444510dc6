/// @file
/// One side of a call: what it sends and receives, from its first offer or answer to the end.

#ifndef QOVA_TOOLS_ANSWER_CALL_SIDE_H
#define QOVA_TOOLS_ANSWER_CALL_SIDE_H

#include <memory>
#include <optional>
#include <string>

#include "answer/answerer.h"
#include "qova/capability.h"
#include "sdp/diagnostics.h"
#include "sdp/plan.h"
#include "sdp/reader.h"
#include "sdp/text.h"

namespace sdp {

/// What a side sends.
struct Reply {
    std::string text;             ///< The description to send.
    bool has_common = true;       ///< False if the answer rejects every line that was offered.
    std::optional<bool> changed;  ///< The description differs from the last one that was sent.
    Diagnostics diagnostics;      ///< Warnings about the offer, then the lines that are rejected.
    std::string log;              ///< The capabilities, and whether they changed; without keys.
};

/// One side of a call. It remembers the last offer and the last description that it sent, so that a
/// session keeps its number and its version rises when the description changes (RFC 3264, section
/// 8).
class CallSide {
public:
    /// Starts a call with a random session number. The plan has the public address and ports that
    /// it sends, if they are not the local ones; the address has the family of Policy::address.
    /// Throws what Policy::random throws.
    explicit CallSide(Policy given_policy, std::optional<Plan> given_plan = std::nullopt);

    /// Continues a call after the description that was sent last. Throws Refusal and changes
    /// nothing if it cannot be read.
    void resume(const std::string& sent);

    /// Answers an offer. An offer with the same bytes as the last one gets the same answer, key
    /// included. An offer with nothing in common changes nothing: the call continues as before.
    ///
    /// Throws Refusal if the offer is refused, std::range_error if a public port would exceed
    /// 65535, and what Policy::random throws. Then nothing changes.
    Reply answer(const std::string& offer, Strictness strictness);

    /// Makes an offer: the description that was sent last, or everything that the policy accepts
    /// except fax and crypto. Throws as answer() does.
    Reply offer();

    /// Reads the answer to offer(), and returns its log text. Throws Refusal.
    std::string take_answer(const std::string& answer);

private:
    // What would be sent in reply to a description.
    struct Draft {
        Answer answer;
        std::unique_ptr<QOVA_Capability> sent;  // the answer at the public address and ports
        std::string text;
        Origin origin;
    };
    Draft draft(const Description& description, const Reading& reading) const;
    void remember(Draft& new_draft);

    Policy policy;
    std::optional<Plan> plan;
    Origin origin;
    std::string last_offer;  // the other side's; empty after one of our own
    std::unique_ptr<QOVA_Capability> last_offered;
    std::string last_sent;
    std::unique_ptr<QOVA_Capability> last_sent_capability;
};

}  // namespace sdp

#endif
