// Answers SIP calls, each with a CallSide of its own, through sofia-sip's user agent.

#ifndef QOVA_TOOLS_SIP_SERVER_H
#define QOVA_TOOLS_SIP_SERVER_H

#include <sofia-sip/nua.h>

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "answer/call_side.h"
#include "cli/options.h"

class SipServer {
public:
    // Throws Misuse, and std::runtime_error when it cannot listen.
    explicit SipServer(Options given_options);
    SipServer(const SipServer&) = delete;
    SipServer& operator=(const SipServer&) = delete;

    // Until it is told to stop by SIGINT or SIGTERM, and all calls have ended.
    // Throws std::system_error when it cannot say where it listens.
    void run();

private:
    // The signals that the program takes, as a file that can be waited for.
    class Signals {
    public:
        Signals();
        ~Signals();
        Signals(const Signals&) = delete;
        Signals& operator=(const Signals&) = delete;

        int next() const;  // that came, or 0

        int file;
    };

    struct Call {
        unsigned long number;
        sdp::CallSide side;
        bool awaits_answer = false;  // in the ACK, to an offer of our own
    };

    static void on_event(nua_event_t event, int status, char const* phrase, nua_t* agent,
                         nua_magic_t* magic, nua_handle_t* handle, nua_hmagic_t* of_handle,
                         sip_t const* sip, tagi_t tags[]);
    static int on_signal(su_root_magic_t* magic, su_wait_t* wait, su_wakeup_arg_t* arg);
    static void on_timer(su_root_magic_t* magic, su_timer_t* timer, su_timer_arg_t* arg);

    void take(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
              const tagi_t* tags);
    void take(int signal);
    void take_request(nua_handle_t* handle, const sip_t& sip);
    void take_ack(nua_handle_t* handle, const sip_t& sip);
    void answer(Call& call, nua_handle_t* handle, const sip_t& sip);
    void offer(Call& call, nua_handle_t* handle, const sip_t& sip);
    void accept(const Call& call, nua_handle_t* handle, const sip_t& sip,
                const std::string& description);
    void refuse(const Call& call, nua_handle_t* handle, const sip_t& sip, int status,
                const char* phrase, const sdp::Refusal& reason);
    void end(nua_handle_t* handle);
    void stop();
    void serve();   // until it is over
    void finish();  // now

    void log(const Call& call, const std::string& text) const;
    void log_error(const Call& call, const std::string& text) const;
    void log_statistics() const;

    template <class Work>
    auto timed(Work work);

    struct SofiaSip {
        SofiaSip() { su_init(); }
        ~SofiaSip() { su_deinit(); }
        SofiaSip(const SofiaSip&) = delete;
        SofiaSip& operator=(const SofiaSip&) = delete;
    };
    struct DestroyRoot {
        void operator()(su_root_t* of) const { su_root_destroy(of); }
    };
    struct DestroyAgent {
        void operator()(nua_t* of) const { nua_destroy(of); }  // which has shut down
    };
    struct DestroyTimer {
        void operator()(su_timer_t* of) const { su_timer_destroy(of); }
    };

    Options options;
    Signals signals;
    SofiaSip sofia_sip;
    std::unique_ptr<su_root_t, DestroyRoot> root;
    std::unique_ptr<su_timer_t, DestroyTimer> timer;
    std::unique_ptr<nua_t, DestroyAgent> agent;
    std::optional<sdp::Policy> policy;
    std::optional<sdp::Plan> public_plan;
    std::unordered_map<nua_handle_t*, Call> calls;
    unsigned long calls_so_far = 0;
    std::string contact;
    double time_in_descriptions = 0;
    bool is_stopping = false;
    bool has_shut_down = false;
    bool is_over = false;
};

#endif
