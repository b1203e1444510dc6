#include "sip/server.h"

#include <malloc.h>
#include <sofia-sip/nta_tag.h>
#include <sofia-sip/sip_status.h>
#include <sofia-sip/su_log.h>
#include <sofia-sip/su_tag_io.h>
#include <sofia-sip/url.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/files.h"
#include "sdp/diagnostics.h"
#include "sdp/plan.h"
#include "sdp/strings.h"

namespace {

constexpr char program[] = "qova-answer";
constexpr char sdp_type[] = "application/sdp";
constexpr char methods[] = "INVITE, ACK, BYE, CANCEL, OPTIONS, UPDATE";
constexpr su_duration_t patience = 5000;  // milliseconds for calls to end when the program stops

double seconds(clockid_t clock) {
    timespec time = {};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// The address of a SIP URI's host, where it is one that media can be sent to.
std::optional<sdp::MediaAddress> address_in(const std::string& uri) {
    struct Free {
        void operator()(url_t* url) const { su_free(nullptr, url); }
    };
    const std::unique_ptr<url_t, Free> url(url_make(nullptr, uri.c_str()));
    if (url == nullptr || url->url_type != url_sip || url->url_host == nullptr ||
        (url->url_port != nullptr && !sdp::number(url->url_port, 65535))) {
        throw Misuse("--listen: " + uri + " is no URI such as sip:127.0.0.1:5080;transport=tcp");
    }
    std::string host = url->url_host;
    if (host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    return sdp::MediaAddress::parse(host);
}

// Whether the body of a message is a description.
bool has_description(const sip_t& sip) {
    return sip.sip_payload != nullptr && sip.sip_content_encoding == nullptr &&
           sip.sip_content_type != nullptr && sdp::same(sip.sip_content_type->c_type, sdp_type);
}

std::string description_of(const sip_t& sip) {
    return {sip.sip_payload->pl_data, sip.sip_payload->pl_len};
}

std::string method_of(const sip_t& sip) {
    return sip.sip_request->rq_method_name;
}

}  // namespace

SipServer::Signals::Signals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGUSR1}) {
        sigaddset(&set, signal);
    }
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    file = ::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (file < 0) {
        throw std::system_error(errno, std::generic_category(), "signals");
    }
}

SipServer::Signals::~Signals() {
    ::close(file);
}

int SipServer::Signals::next() const {
    signalfd_siginfo info = {};
    return ::read(file, &info, sizeof info) == sizeof info ? static_cast<int>(info.ssi_signo) : 0;
}

// Counts the time of what is done with descriptions.
template <class Work>
auto SipServer::timed(Work work) {
    struct Watch {
        explicit Watch(double& to) : total(to) {}
        ~Watch() { total += seconds(CLOCK_THREAD_CPUTIME_ID) - start; }
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        double& total;
        double start = seconds(CLOCK_THREAD_CPUTIME_ID);
    };
    const Watch watch(time_in_descriptions);
    return work();
}

SipServer::SipServer(Options given_options) : options(std::move(given_options)) {
    const std::optional<sdp::MediaAddress> address = address_in(options.listen);
    if (!options.local) {
        if (!address) {
            throw Misuse("--listen: " + options.listen + " has no unicast address: say --local");
        }
        options.local = address;
    }
    policy = policy_of(options);
    public_plan = public_plan_of(options);
    root.reset(su_root_create(this));
    if (root == nullptr) {
        throw std::bad_alloc();
    }
    su_root_threading(root.get(), 0);
    timer.reset(su_timer_create(su_root_task(root.get()), patience));
    su_log_set_level(nullptr, 0);
    errno = 0;
    // Every request is answered at once, or by sofia-sip, without any extension.
    agent.reset(nua_create(root.get(), on_event, this, NUTAG_URL(options.listen.c_str()),
                           NUTAG_USER_AGENT(program), NUTAG_MEDIA_ENABLE(0),
                           NUTAG_APPL_METHOD("UPDATE"), NUTAG_AUTO100(0), NUTAG_SHUTDOWN_EVENTS(1),
                           SIPTAG_ALLOW_STR(methods), SIPTAG_SUPPORTED_STR(""), TAG_END()));
    if (agent == nullptr) {
        throw std::runtime_error(
            "cannot listen on " + options.listen + ": " +
            (errno == 0 ? "sofia-sip does not say why" : std::generic_category().message(errno)));
    }
}

void SipServer::run() {
    su_wait_t wait = SU_WAIT_INIT;
    su_wait_create(&wait, signals.file, SU_WAIT_IN);
    su_root_register(root.get(), &wait, on_signal, nullptr, 0);
    nua_get_params(agent.get(), TAG_ANY(), TAG_END());
    while (contact.empty() && !is_over) {
        su_root_step(root.get(), 1000);
    }
    try {
        write_output(is_stopping ? "" : "listening on " + contact + "\n");
    } catch (...) {
        stop();
        serve();
        throw;
    }
    serve();
    if (!has_shut_down) {
        // sofia-sip cannot be torn down then.
        std::_Exit(report(program, FAILED, std::to_string(calls.size()) + " calls have not ended"));
    }
}

void SipServer::serve() {
    if (!is_over) {
        su_root_run(root.get());
    }
}

void SipServer::finish() {
    is_over = true;
    su_root_break(root.get());
}

void SipServer::on_event(nua_event_t event, int status, char const*, nua_t*, nua_magic_t* magic,
                         nua_handle_t* handle, nua_hmagic_t*, sip_t const* sip, tagi_t tags[]) {
    // sofia-sip is C.
    try {
        static_cast<SipServer*>(magic)->take(event, status, handle, sip, tags);
    } catch (const std::exception& exception) {
        report(program, FAILED, exception.what());
        if (nua_event_is_incoming_request(event) != 0) {
            nua_respond(handle, SIP_500_INTERNAL_SERVER_ERROR,
                        NUTAG_WITH_THIS(static_cast<SipServer*>(magic)->agent.get()), TAG_END());
        }
    }
}

int SipServer::on_signal(su_root_magic_t* magic, su_wait_t*, su_wakeup_arg_t*) {
    auto& server = *static_cast<SipServer*>(magic);
    server.take(server.signals.next());
    return 0;
}

void SipServer::on_timer(su_root_magic_t* magic, su_timer_t*, su_timer_arg_t*) {
    static_cast<SipServer*>(magic)->finish();
}

void SipServer::take(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                     const tagi_t* tags) {
    switch (event) {
        case nua_i_invite:
        case nua_i_update:
            if (status < 200) {  // else sofia-sip has refused it
                take_request(handle, *sip);
            }
            break;
        case nua_i_ack:
            take_ack(handle, *sip);
            break;
        case nua_i_bye:
        case nua_i_cancel:  // both answered by sofia-sip
            if (const auto found = calls.find(handle); found != calls.end()) {
                log(found->second, method_of(*sip));
            }
            break;
        case nua_i_options:
            // Answered by sofia-sip.
            if (calls.count(handle) == 0) {
                nua_handle_destroy(handle);
            }
            break;
        case nua_i_state: {
            int state = nua_callstate_init;
            tl_gets(tags, NUTAG_CALLSTATE_REF(state), TAG_END());
            if (state == nua_callstate_terminated) {
                end(handle);
            }
            break;
        }
        case nua_r_get_params: {
            sip_contact_t const* found = nullptr;
            tl_gets(tags, NTATAG_CONTACT_REF(found), TAG_END());
            if (found != nullptr) {
                char text[512] = "";
                url_e(text, sizeof text, found->m_url);
                contact = text;
            }
            break;
        }
        case nua_r_shutdown:
            if (status >= 200) {
                has_shut_down = true;
                finish();
            }
            break;
        default:
            break;
    }
}

void SipServer::take(int signal) {
    if (signal == SIGUSR1) {
        log_statistics();
    } else if (signal != 0) {
        stop();
    }
}

void SipServer::take_request(nua_handle_t* handle, const sip_t& sip) {
    auto place = calls.find(handle);
    if (place == calls.end()) {
        place =
            calls.emplace(handle, Call{++calls_so_far, sdp::CallSide(*policy, public_plan)}).first;
    }
    Call& call = place->second;
    if (sip.sip_payload != nullptr && sip.sip_payload->pl_len > 0) {
        answer(call, handle, sip);
    } else if (sip.sip_request->rq_method == sip_method_invite) {
        offer(call, handle, sip);
    } else {
        accept(call, handle, sip, "");
    }
}

void SipServer::answer(Call& call, nua_handle_t* handle, const sip_t& sip) {
    if (!has_description(sip)) {
        refuse(call, handle, sip, SIP_415_UNSUPPORTED_MEDIA, {0, "its body is no application/sdp"});
        return;
    }
    if (call.awaits_answer) {
        refuse(call, handle, sip, SIP_491_REQUEST_PENDING, {0, "an offer of our own is open"});
        return;
    }
    try {
        const sdp::Reply reply =
            timed([&] { return call.side.answer(description_of(sip), strictness_of(options)); });
        for (const sdp::Diagnostic& diagnostic : reply.diagnostics) {
            log(call, sdp::printed(diagnostic, method_of(sip)));
        }
        log(call, reply.log);
        if (reply.has_common) {
            accept(call, handle, sip, reply.text);
        } else {
            const auto rejection = std::find_if(
                reply.diagnostics.begin(), reply.diagnostics.end(), [](const auto& diagnostic) {
                    return diagnostic.severity == sdp::Severity::REJECTION;
                });
            refuse(call, handle, sip, SIP_488_NOT_ACCEPTABLE,
                   {rejection->line, rejection->message});
        }
    } catch (const sdp::Refusal& refusal) {
        refuse(call, handle, sip, SIP_400_BAD_REQUEST, refusal);
    }
}

void SipServer::offer(Call& call, nua_handle_t* handle, const sip_t& sip) {
    const sdp::Reply reply = timed([&] { return call.side.offer(); });
    log(call, reply.log);
    call.awaits_answer = true;
    accept(call, handle, sip, reply.text);
}

void SipServer::take_ack(nua_handle_t* handle, const sip_t& sip) {
    const auto found = calls.find(handle);
    if (found == calls.end()) {
        return;
    }
    Call& call = found->second;
    log(call, "ACK");
    if (!std::exchange(call.awaits_answer, false)) {
        return;
    }
    try {
        if (!has_description(sip)) {
            throw sdp::Refusal(0, "no answer to the offer of our own");
        }
        log(call, timed([&] { return call.side.take_answer(description_of(sip)); }));
    } catch (const sdp::Refusal& refusal) {
        log_error(call,
                  sdp::place(method_of(sip), refusal.line) + ": the call ends: " + refusal.what());
        nua_bye(handle, TAG_END());
    }
}

void SipServer::accept(const Call& call, nua_handle_t* handle, const sip_t& sip,
                       const std::string& description) {
    log(call, method_of(sip) + ": accepted");
    nua_respond(handle, SIP_200_OK, NUTAG_WITH_THIS(agent.get()),
                TAG_IF(!description.empty(), SIPTAG_CONTENT_TYPE_STR(sdp_type)),
                TAG_IF(!description.empty(), SIPTAG_PAYLOAD_STR(description.c_str())), TAG_END());
}

void SipServer::refuse(const Call& call, nua_handle_t* handle, const sip_t& sip, int status,
                       const char* phrase, const sdp::Refusal& reason) {
    log_error(call, sdp::place(method_of(sip), reason.line) + ": refused with " +
                        std::to_string(status) + ": " + reason.what());
    const std::string warning =
        "399 qova-answer \"" +
        (reason.line == 0 ? "" : "line " + std::to_string(reason.line) + ": ") + reason.what() +
        "\"";
    nua_respond(handle, status, phrase, NUTAG_WITH_THIS(agent.get()),
                SIPTAG_WARNING_STR(warning.c_str()),
                TAG_IF(status == 415, SIPTAG_ACCEPT_STR(sdp_type)), TAG_END());
}

void SipServer::end(nua_handle_t* handle) {
    const auto found = calls.find(handle);
    if (found != calls.end()) {
        log(found->second, "ended");
        calls.erase(found);
    }
    nua_handle_destroy(handle);
}

// A second time it does not wait for calls to end.
void SipServer::stop() {
    if (is_stopping) {
        finish();
        return;
    }
    is_stopping = true;
    su_timer_set(timer.get(), on_timer, nullptr);
    nua_shutdown(agent.get());
}

// Each line has the number of its call. What a description says may not act on a terminal.
void SipServer::log_error(const Call& call, const std::string& text) const {
    std::string entry;
    for (const std::string_view line : sdp::split(text, "\r\n")) {
        if (!line.empty()) {
            entry += "call " + std::to_string(call.number) + ":";
            char before = ' ';
            for (const std::string_view piece : sdp::split(line, "\t")) {
                entry += before + shown(std::string(piece));
                before = '\t';
            }
            entry += '\n';
        }
    }
    std::fputs(entry.c_str(), stderr);
}

void SipServer::log(const Call& call, const std::string& text) const {
    if (!options.quiet) {
        log_error(call, text);
    }
}

void SipServer::log_statistics() const {
    std::fprintf(stderr,
                 "calls %lu, open %zu, heap in use %zu bytes, processor time %.3f s, of that in "
                 "descriptions %.3f s\n",
                 calls_so_far, calls.size(), ::mallinfo2().uordblks,
                 seconds(CLOCK_PROCESS_CPUTIME_ID), time_in_descriptions);
}
