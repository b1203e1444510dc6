// Answers SIP calls, each with a CallSide of its own.

#ifndef QOVA_TOOLS_SIP_SERVER_H
#define QOVA_TOOLS_SIP_SERVER_H

#include <optional>
#include <string>
#include <unordered_map>

#include "answer/call_side.h"
#include "sip/user_agent.h"

namespace sip {

struct Settings {
    std::string name;  // in SIP messages and in the log
    std::string uri;   // to listen at
    sdp::Policy policy;
    std::optional<sdp::Plan> plan;  // of the public side
    sdp::Strictness strictness = sdp::Strictness::LENIENT;
    bool quiet = false;  // log errors only
};

class Server : public UserAgent {
public:
    // Throws std::runtime_error if it cannot listen.
    explicit Server(Settings given_settings);

    std::size_t open_calls() const { return calls.size(); }

private:
    struct Call {
        std::string name;  // in the log
        sdp::CallSide side;
        bool awaits_answer = false;  // in the ACK, to an offer of ours
    };

    void handle_event(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                      const tagi_t* tags) override;
    void log_error(const std::string& message) const override;
    void log_statistics() const override;

    void take_request(nua_handle_t* handle, const sip_t& sip);
    void take_ack(Call& call, nua_handle_t* handle, const sip_t& sip);
    void answer(Call& call, nua_handle_t* handle, const sip_t& sip);
    void offer(Call& call, nua_handle_t* handle, const sip_t& sip);
    void accept(const Call& call, nua_handle_t* handle, const sip_t& sip,
                const std::string& description);
    void refuse(const Call& call, nua_handle_t* handle, const sip_t& sip, int status,
                const char* phrase, const sdp::Refusal& reason);
    void log(const Call& call, const std::string& text) const;  // unless quiet

    // Calls a function and counts its processor time.
    template <class Work>
    auto timed(Work work);

    const Settings settings;
    std::unordered_map<nua_handle_t*, Call> calls;
    unsigned long calls_so_far = 0;
    double time_in_descriptions = 0;  // seconds
};

}  // namespace sip

#endif
