// libFuzzer's entry to the example's reader and mover: every refusal has a message that names a
// line of the description, what is accepted can be moved and read again, and the way back restores
// it.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>

#include "sdp_mover.h"
#include "sdp_reader.h"

namespace {

unsigned long long read_count = 0;
unsigned long long moved_count = 0;
unsigned long long restored_count = 0;

void print_counts() {
    std::fprintf(stderr, "sdp_fuzzer: %llu descriptions read, %llu moves, %llu of them undone\n",
                 read_count, moved_count, restored_count);
}

[[noreturn]] void fail(const std::string& what, const std::string& text) {
    std::fprintf(stderr, "sdp_fuzzer: %s\n%s\n", what.c_str(), text.c_str());
    std::abort();
}

void check(const sdp::Error& error, const std::string& text) {
    const auto is_end = [](char byte) { return byte == '\n' || byte == '\r'; };
    const auto line_ends = std::count_if(text.begin(), text.end(), is_end);
    if (error.message.empty()) {
        fail("a refusal without a message", text);
    }
    if (error.line > static_cast<std::size_t>(line_ends) + 1) {
        fail("a refusal that names line " + std::to_string(error.line), text);
    }
    if (std::any_of(error.message.begin(), error.message.end(),
                    [](char byte) { return byte < ' ' || byte > '~'; })) {
        fail("a message that cannot be printed: " + error.message, text);
    }
}

void check_way_back(const std::string& text, const sdp::Plan& plan, const sdp::Move& move) {
    if (move.old_address.empty()) {
        return;  // the media do not share one address
    }
    const sdp::Plan back = {move.old_address, plan.audio_port, plan.fax_port, !plan.back};
    const auto restored = sdp::move(move.text, back);
    if (const auto* const error = std::get_if<sdp::Error>(&restored)) {
        fail("the way back is refused: " + error->message, text);
    }
    if (std::get<sdp::Move>(restored).text != text) {
        fail("not restored, but:\n" + std::get<sdp::Move>(restored).text + "from", text);
    }
    ++restored_count;
}

void check_move(const std::string& text, const std::string& log, const sdp::Plan& plan) {
    const auto result = sdp::move(text, plan);
    if (const auto* const error = std::get_if<sdp::Error>(&result)) {
        check(*error, text);
        return;
    }
    ++moved_count;
    const sdp::Move& move = std::get<sdp::Move>(result);
    if (move.log_before != log) {
        fail("the log before the move is\n" + move.log_before + "and not\n" + log, text);
    }
    if (!std::holds_alternative<sdp::Reading>(sdp::read(move.text, sdp::Role::OFFER))) {
        fail("the moved description is refused:\n" + move.text + "from", text);
    }
    if (!plan.back) {
        check_way_back(text, plan, move);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return std::atexit(print_counts);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const sdp::Role role : {sdp::Role::ANSWER, sdp::Role::OFFER}) {
        const auto result = sdp::read(text, role);
        if (const auto* const error = std::get_if<sdp::Error>(&result)) {
            check(*error, text);
            return 0;
        }
        if (role == sdp::Role::OFFER) {
            ++read_count;
            const std::string log = *std::get<sdp::Reading>(result).capability;
            for (const sdp::Plan& plan :
                 {sdp::Plan{"203.0.113.9", 40000, 7000}, sdp::Plan{"2001:DB8::0:9", 31999, 6667},
                  sdp::Plan{"10.0.0.1", 32000, 6666}, sdp::Plan{"0.0.0.0", 32002, 6668},
                  sdp::Plan{"203.0.113.9", 31990, 6000, true}}) {
                check_move(text, log, plan);
            }
        }
    }
    return 0;
}
