#include "sip/server.h"

#include <malloc.h>
#include <sofia-sip/sip_status.h>
#include <sofia-sip/su_tag_io.h>

#include <cstdio>
#include <ctime>
#include <utility>

#include "sdp/strings.h"

namespace sip {
namespace {

constexpr char sdp_type[] = "application/sdp";

double seconds(clockid_t clock) {
    timespec time = {};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

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

// Prints each line of a text with a prefix. Texts from a description must not act on a terminal.
void print_lines(const std::string& prefix, const std::string& text) {
    std::string entry;
    for (const std::string_view line : sdp::split(text, "\r\n")) {
        if (!line.empty()) {
            entry += prefix + ": " + sdp::printable(std::string(line)) + "\n";
        }
    }
    std::fputs(entry.c_str(), stderr);
}

}  // namespace

template <class Work>
auto Server::timed(Work work) {
    const double start = seconds(CLOCK_THREAD_CPUTIME_ID);
    auto result = work();
    time_in_descriptions += seconds(CLOCK_THREAD_CPUTIME_ID) - start;
    return result;
}

void Server::handle_event(nua_event_t event, int status, nua_handle_t* handle, const sip_t* sip,
                          const tagi_t* tags) {
    auto call = calls.find(handle);
    const bool is_known = call != calls.end();
    switch (event) {
        case nua_i_invite:
        case nua_i_update:
            if (status >= 200) {  // refused by sofia-sip
                break;
            }
            if (!is_known) {
                const std::string name = "call " + std::to_string(++calls_so_far);
                sdp::CallSide side(settings.policy, settings.plan);
                call = calls.emplace(handle, Call{handle, name, std::move(side)}).first;
            }
            take_request(call->second, *sip);
            break;
        case nua_i_ack:
            if (is_known) {
                take_ack(call->second, *sip);
            }
            break;
        case nua_i_bye:
        case nua_i_cancel:  // sofia-sip answers both
            if (is_known) {
                log(call->second, method_of(*sip));
            }
            break;
        case nua_i_options:  // sofia-sip answers it
            if (!is_known) {
                nua_handle_destroy(handle);
            }
            break;
        case nua_i_state: {
            int state = nua_callstate_init;
            tl_gets(tags, NUTAG_CALLSTATE_REF(state), TAG_END());
            if (state != nua_callstate_terminated) {
                break;
            }
            if (is_known) {
                log(call->second, "ended");
                calls.erase(call);
            }
            nua_handle_destroy(handle);
            break;
        }
        default:
            break;
    }
}

void Server::take_request(Call& call, const sip_t& sip) {
    if (sip.sip_payload != nullptr && sip.sip_payload->pl_len > 0) {
        answer(call, sip);
    } else if (sip.sip_request->rq_method == sip_method_invite) {
        const sdp::Reply reply = timed([&] { return call.side.offer(); });
        log(call, reply.log);
        call.awaits_answer = true;
        accept(call, sip, reply.text);
    } else {
        accept(call, sip, "");
    }
}

void Server::answer(Call& call, const sip_t& sip) {
    if (!has_description(sip)) {
        refuse(call, sip, SIP_415_UNSUPPORTED_MEDIA, {0, "unsupported content type"});
        return;
    }
    if (call.awaits_answer) {
        refuse(call, sip, SIP_491_REQUEST_PENDING, {0, "our own offer has not been answered yet"});
        return;
    }
    try {
        const sdp::Reply reply =
            timed([&] { return call.side.answer(description_of(sip), settings.strictness); });
        const sdp::Diagnostic* rejection = nullptr;
        for (const sdp::Diagnostic& diagnostic : reply.diagnostics) {
            log(call, printed(diagnostic, method_of(sip)));
            if (rejection == nullptr && diagnostic.severity == sdp::Severity::REJECTION) {
                rejection = &diagnostic;
            }
        }
        log(call, reply.log);
        if (!reply.has_common && rejection != nullptr) {
            refuse(call, sip, SIP_488_NOT_ACCEPTABLE, {rejection->line, rejection->message});
        } else {
            accept(call, sip, reply.text);
        }
    } catch (const sdp::Refusal& refusal) {
        refuse(call, sip, SIP_400_BAD_REQUEST, refusal);
    }
}

void Server::take_ack(Call& call, const sip_t& sip) {
    log(call, "ACK");
    if (!std::exchange(call.awaits_answer, false)) {
        return;
    }
    try {
        sdp::refuse_if(!has_description(sip), 0, "no answer to our offer");
        log(call, timed([&] { return call.side.take_answer(description_of(sip)); }));
    } catch (const sdp::Refusal& refusal) {
        print_lines(call.name, sdp::place("ACK", refusal.line) + ": hanging up: " + refusal.what());
        nua_bye(call.handle, TAG_END());
    }
}

void Server::accept(const Call& call, const sip_t& sip, const std::string& description) {
    log(call, method_of(sip) + ": accepted");
    nua_respond(call.handle, SIP_200_OK, NUTAG_WITH_THIS(agent.get()),
                TAG_IF(!description.empty(), SIPTAG_CONTENT_TYPE_STR(sdp_type)),
                TAG_IF(!description.empty(), SIPTAG_PAYLOAD_STR(description.c_str())), TAG_END());
}

void Server::refuse(const Call& call, const sip_t& sip, int status, const char* phrase,
                    const sdp::Refusal& reason) {
    print_lines(call.name, sdp::place(method_of(sip), reason.line) + ": refused with " +
                               std::to_string(status) + ": " + reason.what());
    const std::string line = reason.line == 0 ? "" : "line " + std::to_string(reason.line) + ": ";
    const std::string warning = "399 " + settings.name + " \"" + line + reason.what() + "\"";
    nua_respond(call.handle, status, phrase, NUTAG_WITH_THIS(agent.get()),
                SIPTAG_WARNING_STR(warning.c_str()),
                TAG_IF(status == 415, SIPTAG_ACCEPT_STR(sdp_type)), TAG_END());
}

void Server::log(const Call& call, const std::string& text) const {
    if (!settings.quiet) {
        print_lines(call.name, text);
    }
}

void Server::log_statistics() const {
    std::fprintf(stderr,
                 "calls %lu, open %zu, heap in use %zu bytes, processor time %.3f s, of which "
                 "descriptions %.3f s\n",
                 calls_so_far, calls.size(), ::mallinfo2().uordblks,
                 seconds(CLOCK_PROCESS_CPUTIME_ID), time_in_descriptions);
}

}  // namespace sip
