// sofia-sip's user agent: listens at a URI, delivers events, and stops on SIGINT and SIGTERM.

#ifndef QOVA_TOOLS_SIP_USER_AGENT_H
#define QOVA_TOOLS_SIP_USER_AGENT_H

#include <sofia-sip/nua.h>

#include <memory>
#include <optional>
#include <string>

namespace sip {

// Returns the host of a SIP URI, without the brackets of IPv6; nullopt if the URI is invalid.
std::optional<std::string> host_of(const std::string& uri);

class UserAgent {
public:
    UserAgent(const UserAgent&) = delete;
    UserAgent& operator=(const UserAgent&) = delete;

    // Runs until the agent listens. Returns its URI, or an empty string if a signal came first.
    std::string listen();

    // Runs until the agent is stopped and all calls have ended. Returns false if some have not:
    // sofia-sip cannot be freed then, and the process has to end with std::_Exit.
    bool run();

    // Ends all calls. The second time, stops waiting for them.
    void stop();

protected:
    // Throws std::runtime_error if it cannot listen at the URI.
    UserAgent(const std::string& uri, const std::string& name);
    virtual ~UserAgent();

    // Handles an event of a call. An exception is logged, and a request then gets status 500.
    virtual void handle_event(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                              const tagi_t* tags) = 0;
    virtual void log_error(const std::string& message) const = 0;
    virtual void log_statistics() const = 0;  // on SIGUSR1

    nua_t* agent() const { return nua.get(); }

private:
    struct Free {
        void operator()(su_root_t* root) const;
        void operator()(su_timer_t* timer) const { su_timer_destroy(timer); }
        void operator()(nua_t* agent) const { nua_destroy(agent); }  // after its shutdown
    };

    void dispatch(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                  const tagi_t* tags);
    void take_signal();
    void finish();

    const int signals;  // a file descriptor
    std::unique_ptr<su_root_t, Free> root;
    std::unique_ptr<su_timer_t, Free> timer;
    std::unique_ptr<nua_t, Free> nua;
    std::string contact;
    bool is_stopping = false;
    bool has_shut_down = false;
    bool is_over = false;
};

}  // namespace sip

#endif
