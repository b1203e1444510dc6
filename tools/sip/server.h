// Answers SIP calls with sofia-sip's user agent, each with a CallSide of its own.

#ifndef QOVA_TOOLS_SIP_SERVER_H
#define QOVA_TOOLS_SIP_SERVER_H

#include <sofia-sip/nua.h>

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "answer/call_side.h"

namespace sip {

// Returns the host of a SIP URI, without the brackets of IPv6; nullopt if the URI is invalid.
std::optional<std::string> host_of(const std::string& uri);

struct Settings {
    std::string name;  // in SIP messages and in the log
    std::string uri;   // to listen at
    sdp::Policy policy;
    std::optional<sdp::Plan> plan;  // of the public side
    sdp::Strictness strictness = sdp::Strictness::LENIENT;
    bool quiet = false;  // log errors only
};

class Server {
public:
    // Throws std::runtime_error if it cannot listen.
    explicit Server(Settings given_settings);
    ~Server();  // ends all calls
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Runs until calls are accepted. Returns the URI to call, or an empty string if SIGINT or
    // SIGTERM came first.
    std::string listen();

    // Runs until SIGINT or SIGTERM, and until all calls have ended; a second signal does not wait
    // for them. Returns false if some did not end: sofia-sip cannot be freed then, and the process
    // must end with std::_Exit.
    bool run();

private:
    struct Call {
        nua_handle_t* handle;
        std::string name;  // in the log
        sdp::CallSide side;
        bool awaits_answer = false;  // to our own offer, in the ACK
    };
    struct Free {
        void operator()(su_root_t* owned) const;
        void operator()(su_timer_t* owned) const { su_timer_destroy(owned); }
        void operator()(nua_t* owned) const { nua_destroy(owned); }  // after its shutdown
    };

    // loop.cpp
    void dispatch(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                  const tagi_t* tags);
    void take_signal();
    void stop();    // ends all calls; the second time, stops waiting for them
    void finish();  // lets run() return

    // server.cpp
    void handle_event(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                      const tagi_t* tags);
    void take_request(Call& call, const sip_t& sip);
    void take_ack(Call& call, const sip_t& sip);
    void answer(Call& call, const sip_t& sip);
    void accept(const Call& call, const sip_t& sip, const std::string& description);
    void refuse(const Call& call, const sip_t& sip, int status, const char* phrase,
                const sdp::Refusal& reason);
    void log(const Call& call, const std::string& text) const;  // unless quiet
    void log_statistics() const;
    template <class Work>
    auto timed(Work work);  // counts the processor time of a function

    const Settings settings;
    std::unordered_map<nua_handle_t*, Call> calls;
    unsigned long calls_so_far = 0;
    double time_in_descriptions = 0;  // seconds

    const int signals;  // a file descriptor
    std::unique_ptr<su_root_t, Free> root;
    std::unique_ptr<su_timer_t, Free> timer;
    std::unique_ptr<nua_t, Free> agent;
    std::string contact;
    bool is_stopping = false;
    bool has_shut_down = false;
    bool is_over = false;
};

}  // namespace sip

#endif
