// libFuzzer's entry to the reader, mover and answerer: every refusal and warning has a
// message that names a line of the description, a strict reading refuses for the first warning,
// what is accepted can be moved and read again, and the way back restores it. An answer reads as
// what was answered, line by line, and a side that goes on from it gives the same once more.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "answer/call_side.h"
#include "move/mover.h"
#include "qova/media.h"
#include "sdp/reader.h"

namespace {

unsigned long long read_count = 0;
unsigned long long strict_count = 0;
unsigned long long moved_count = 0;
unsigned long long restored_count = 0;
unsigned long long answered_count = 0;
unsigned long long accepted_count = 0;

void print_counts() {
    std::fprintf(stderr,
                 "sdp_fuzzer: %llu descriptions read, %llu of them strictly, %llu moves, %llu of "
                 "them undone, %llu answers, %llu of them with something in common\n",
                 read_count, strict_count, moved_count, restored_count, answered_count,
                 accepted_count);
}

[[noreturn]] void fail(const std::string& what, const std::string& text) {
    std::fprintf(stderr, "sdp_fuzzer: %s\n%s\n", what.c_str(), text.c_str());
    std::abort();
}

void check(std::size_t line, const std::string& message, const std::string& text) {
    const auto is_end = [](char byte) { return byte == '\n' || byte == '\r'; };
    const auto line_ends = std::count_if(text.begin(), text.end(), is_end);
    if (message.empty()) {
        fail("nothing is said", text);
    }
    if (line > static_cast<std::size_t>(line_ends) + 1) {
        fail("line " + std::to_string(line) + " is named", text);
    }
    if (std::any_of(message.begin(), message.end(),
                    [](char byte) { return byte < ' ' || byte > '~'; })) {
        fail("a message that cannot be printed: " + message, text);
    }
}

// What a call gives for a text; nothing when it refuses the text, which it has to say as it should.
template <class Call>
auto unless_refused(const std::string& text, Call call) -> std::optional<decltype(call())> {
    try {
        return call();
    } catch (const sdp::Refusal& refusal) {
        check(refusal.line, refusal.what(), text);
        return std::nullopt;
    }
}

std::optional<sdp::Reading> read(const std::string& text, sdp::Role role,
                                 sdp::Strictness strictness) {
    return unless_refused(text,
                          [&] { return sdp::read(sdp::Description(text), role, strictness); });
}

void check_strict(const sdp::Reading& lenient, const std::string& text, sdp::Role role) {
    try {
        const sdp::Reading strict =
            sdp::read(sdp::Description(text), role, sdp::Strictness::STRICT);
        if (!lenient.diagnostics.empty() || !strict.diagnostics.empty()) {
            fail("a strict reading passes over a warning", text);
        }
        if (std::string(*strict.capability) != std::string(*lenient.capability)) {
            fail("a strict reading is another one", text);
        }
    } catch (const sdp::Refusal& refusal) {
        if (lenient.diagnostics.empty() || refusal.line != lenient.diagnostics[0].line ||
            refusal.what() != lenient.diagnostics[0].message) {
            fail(std::string("a strict reading is refused for another reason: ") + refusal.what(),
                 text);
        }
    }
}

std::optional<sdp::Reading> checked_read(const std::string& text, sdp::Role role) {
    auto reading = read(text, role, sdp::Strictness::LENIENT);
    if (!reading) {
        if (read(text, role, sdp::Strictness::STRICT)) {
            fail("a strict reading accepts what a lenient one refuses", text);
        }
        return reading;
    }
    std::size_t last = 0;
    for (const sdp::Diagnostic& warning : reading->diagnostics) {
        check(warning.line, warning.message, text);
        if (warning.line < last) {
            fail("the warnings are not in the order of the lines", text);
        }
        last = warning.line;
    }
    check_strict(*reading, text, role);
    return reading;
}

std::optional<sdp::Move> checked_move(const std::string& text, const sdp::Plan& plan,
                                      const sdp::MoveOptions& options) {
    return unless_refused(text, [&] { return sdp::move(text, plan, options); });
}

void check_way_back(const std::string& text, const sdp::Plan& plan, const sdp::MoveOptions& options,
                    const sdp::Move& there) {
    if (!there.old_address) {
        return;  // there is none: it merged addresses, or went back to another plan
    }
    const sdp::Plan back = {*there.old_address, plan.audio_port, plan.fax_port};
    const auto restored = checked_move(there.text, back, {!options.back});
    if (!restored) {
        fail("the way back is refused", text);
    }
    if (restored->text != text) {
        fail("not restored, but:\n" + restored->text + "from", text);
    }
    ++restored_count;
}

void check_move(const std::string& text, const std::string& log, const sdp::Plan& plan,
                const sdp::MoveOptions& options = {}) {
    const auto moved = checked_move(text, plan, options);
    if (!moved) {
        return;
    }
    ++moved_count;
    if (moved->log_before != log) {
        fail("the log before the move is\n" + moved->log_before + "and not\n" + log, text);
    }
    const auto after = checked_read(moved->text, sdp::Role::OFFER);
    if (!after) {
        fail("the moved description is refused:\n" + moved->text + "from", text);
    }
    if (moved->log_after != std::string(*after->capability)) {
        fail("the log after the move is\n" + moved->log_after + "of\n" + moved->text, text);
    }
    check_way_back(text, plan, options, *moved);
}

sdp::MediaAddress address_of(const char* text) {
    return sdp::MediaAddress::parse(text).value();
}

// A side of a call whose random bytes are the same in every run.
sdp::CallSide side_at(const char* address, bool has_plan) {
    sdp::Policy policy{address_of(address)};
    policy.random = [next = 0U](unsigned char* to, std::size_t size) mutable {
        std::generate_n(to, size, [&next] { return static_cast<unsigned char>(next += 7); });
    };
    std::optional<sdp::Plan> plan;
    if (has_plan) {
        plan = sdp::Plan{address_of("203.0.113.9"), 40000, 7000};
    }
    return sdp::CallSide(policy, plan);
}

void check_answer_lines(const sdp::Reading& offer, const std::string& answer,
                        const std::string& text) {
    const auto strictness =
        offer.diagnostics.empty() ? sdp::Strictness::STRICT : sdp::Strictness::LENIENT;
    const auto reading = read(answer, sdp::Role::ANSWER, strictness);
    if (!reading) {
        fail("the answer is refused:\n" + answer + "to", text);
    }
    if (!std::equal(offer.lines.begin(), offer.lines.end(), reading->lines.begin(),
                    reading->lines.end(), [](const auto& offered, const auto& answered) {
                        return offered.type == answered.type &&
                               offered.transport == answered.transport &&
                               (offered.media == nullptr) == (answered.media == nullptr) &&
                               (offered.media == nullptr ||
                                offered.media->mediaType == answered.media->mediaType);
                    })) {
        fail("the answer has other lines:\n" + answer + "to", text);
    }
}

void check_answer(const sdp::Reading& offer, const std::string& text, const char* address,
                  bool has_plan) {
    const auto lenient = sdp::Strictness::LENIENT;
    sdp::CallSide side = side_at(address, has_plan);
    const auto first = unless_refused(text, [&] { return side.answer(text, lenient); });
    if (!first) {
        fail("no answer", text);
    }
    ++answered_count;
    accepted_count += first->has_common ? 1 : 0;
    check_answer_lines(offer, first->text, text);
    sdp::CallSide later = side_at(address, has_plan);
    later.resume(first->text);
    const sdp::Reply again = later.answer(text, lenient);
    if (again.changed != false) {
        fail("the answer reads otherwise:\n" + first->text + again.log + "to", text);
    }
    if (again.text != first->text) {
        fail("the same is answered with another text:\n" + first->text + again.text + "to", text);
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return std::atexit(print_counts);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const sdp::Role role : {sdp::Role::ANSWER, sdp::Role::OFFER}) {
        const auto reading = checked_read(text, role);
        if (!reading) {
            return 0;
        }
        if (role == sdp::Role::OFFER) {
            ++read_count;
            strict_count += reading->diagnostics.empty() ? 1 : 0;
            const std::string log = *reading->capability;
            const sdp::MediaAddress to = address_of("203.0.113.9");
            check_move(text, log, {to, 40000, 7000});
            check_move(text, log, {address_of("2001:DB8::0:9"), 31999, 6667});
            check_move(text, log, {address_of("10.0.0.1"), 32000, 6666});
            check_move(text, log, {to, 32002, 6668}, {false, true});
            check_move(text, log, {to, 31990, 6000}, {true});
            check_move(text, log, {to, 40000, 7000},
                       {false, false, sdp::Role::OFFER, sdp::Strictness::STRICT});
            check_answer(*reading, text, "10.0.0.1", false);
            check_answer(*reading, text, "10.0.0.1", true);
            check_answer(*reading, text, "2001:db8::1", false);
        }
    }
    return 0;
}
