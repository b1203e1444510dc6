// The life of a server: it listens, delivers events, and stops.

#include <sofia-sip/nta_tag.h>
#include <sofia-sip/sip_status.h>
#include <sofia-sip/su_log.h>
#include <sofia-sip/su_tag_io.h>
#include <sofia-sip/url.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "sdp/strings.h"
#include "sip/server.h"

namespace sip {
namespace {

constexpr char methods[] = "INVITE, ACK, BYE, CANCEL, OPTIONS, UPDATE";
constexpr su_duration_t patience = 5000;  // milliseconds that stop() gives the calls to end

// Opens a file descriptor that delivers the signals instead of their handlers.
int open_signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1}) {
        sigaddset(&set, signal);
    }
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    const int descriptor = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    return descriptor;
}

su_root_t* create_root(Server* server) {
    su_init();
    su_log_set_level(nullptr, 0);
    su_root_t* const root = su_root_create(server);
    if (root == nullptr) {
        throw std::bad_alloc();
    }
    su_root_threading(root, 0);
    return root;
}

}  // namespace

std::optional<std::string> host_of(const std::string& uri) {
    struct Free {
        void operator()(url_t* url) const { su_free(nullptr, url); }
    };
    const std::unique_ptr<url_t, Free> url(url_make(nullptr, uri.c_str()));
    if (url == nullptr || url->url_type != url_sip || url->url_host == nullptr ||
        *url->url_host == '\0' ||
        (url->url_port != nullptr && !sdp::number(url->url_port, 65535))) {
        return std::nullopt;
    }
    const std::string host = url->url_host;
    return host.front() == '[' && host.back() == ']' ? host.substr(1, host.size() - 2) : host;
}

void Server::Free::operator()(su_root_t* owned) const {
    su_root_destroy(owned);
    su_deinit();
}

Server::Server(Settings given_settings)
    : settings(std::move(given_settings)),
      signals(open_signals()),
      root(create_root(this)),
      timer(su_timer_create(su_root_task(root.get()), patience)) {
    const auto on_event = [](nua_event_t event, int status, char const*, nua_t*, nua_magic_t* magic,
                             nua_handle_t* handle, nua_hmagic_t*, sip_t const* sip, tagi_t* tags) {
        static_cast<Server*>(magic)->dispatch(event, status, handle, sip, tags);
    };
    errno = 0;
    // Every request is answered at once and without extensions.
    agent.reset(nua_create(root.get(), on_event, this, NUTAG_URL(settings.uri.c_str()),
                           NUTAG_USER_AGENT(settings.name.c_str()), NUTAG_MEDIA_ENABLE(0),
                           NUTAG_APPL_METHOD("UPDATE"), NUTAG_AUTO100(0), NUTAG_SHUTDOWN_EVENTS(1),
                           SIPTAG_ALLOW_STR(methods), SIPTAG_SUPPORTED_STR(""), TAG_END()));
    if (agent == nullptr) {
        throw std::runtime_error(
            "cannot listen on " + settings.uri + ": " +
            (errno == 0 ? "sofia-sip gives no reason" : std::generic_category().message(errno)));
    }
}

Server::~Server() {
    if (agent != nullptr && !has_shut_down) {
        stop();
        run();
    }
    ::close(signals);
}

std::string Server::listen() {
    const auto on_signal = [](su_root_magic_t* magic, su_wait_t*, su_wakeup_arg_t*) {
        static_cast<Server*>(magic)->take_signal();
        return 0;
    };
    su_wait_t wait = SU_WAIT_INIT;
    su_wait_create(&wait, signals, SU_WAIT_IN);
    su_root_register(root.get(), &wait, on_signal, nullptr, 0);
    nua_get_params(agent.get(), TAG_ANY(), TAG_END());
    while (contact.empty() && !is_over) {
        su_root_step(root.get(), 1000);
    }
    return is_stopping ? "" : contact;
}

bool Server::run() {
    if (!is_over) {
        su_root_run(root.get());
    }
    return has_shut_down;
}

void Server::stop() {
    if (is_stopping) {
        finish();
        return;
    }
    is_stopping = true;
    const auto on_timer = [](su_root_magic_t* magic, su_timer_t*, su_timer_arg_t*) {
        static_cast<Server*>(magic)->finish();
    };
    su_timer_set(timer.get(), on_timer, nullptr);
    nua_shutdown(agent.get());
}

void Server::finish() {
    is_over = true;
    su_root_break(root.get());
}

void Server::dispatch(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                      const tagi_t* tags) {
    if (event == nua_r_get_params) {
        sip_contact_t const* found = nullptr;
        tl_gets(tags, NTATAG_CONTACT_REF(found), TAG_END());
        if (found != nullptr) {
            char text[512] = "";
            url_e(text, sizeof text, found->m_url);
            contact = text;
        }
        return;
    }
    if (event == nua_r_shutdown) {
        if (status >= 200) {
            has_shut_down = true;
            finish();
        }
        return;
    }
    try {
        handle_event(event, status, handle, sip, tags);
    } catch (const std::exception& exception) {  // must not reach sofia-sip, which is C
        std::fprintf(stderr, "%s: %s\n", settings.name.c_str(),
                     sdp::printable(exception.what()).c_str());
        if (nua_event_is_incoming_request(event) != 0) {
            nua_respond(handle, SIP_500_INTERNAL_SERVER_ERROR, NUTAG_WITH_THIS(agent.get()),
                        TAG_END());
        }
    }
}

void Server::take_signal() {
    signalfd_siginfo info = {};
    if (::read(signals, &info, sizeof info) != sizeof info) {
        return;
    }
    if (info.ssi_signo == SIGUSR1) {
        log_statistics();
    } else {
        stop();
    }
}

}  // namespace sip
