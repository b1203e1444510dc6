// The tools as functions from text to text. The runner of the cases, the properties and the fuzzer
// use nothing else of them.

#ifndef QOVA_TESTS_TOOLS_ADAPTER_H
#define QOVA_TESTS_TOOLS_ADAPTER_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "answer/call_side.h"
#include "move/mover.h"
#include "sdp/diagnostics.h"
#include "sdp/message.h"
#include "sdp/plan.h"
#include "sdp/reader.h"

namespace tools {

using sdp::Diagnostics;
using sdp::Role;
using sdp::Strictness;

// Returns "LINE: MESSAGE" for each.
std::vector<std::string> shown(const Diagnostics& diagnostics, std::size_t lines_before = 0);

// A value or a refusal.
template <class T>
struct Result {
    Diagnostics refusal;  // one, or none
    T value = {};

    bool is_refused() const { return !refusal.empty(); }
};

Result<sdp::Found> find(const std::string& file);

struct Read {
    std::string log;
    Diagnostics warnings;
    std::vector<std::string> kinds;  // the type and the transport of each media line
    std::string crypto;              // lines "LINE: TAG SUITE inline:KEY|LIFETIME|MKI:SIZE ..."
};
Result<Read> read(const std::string& text, Role role, Strictness strictness);

// Throws std::invalid_argument.
sdp::MediaAddress address(const std::string& text);

struct Journey {
    sdp::Plan plan = {address("203.0.113.5"), 40000, 7000};
    sdp::MoveOptions options;
};
Result<sdp::Move> move(const std::string& text, const Journey& journey);

struct Side {
    sdp::Policy policy = {address("192.0.2.1")};
    std::optional<sdp::Plan> plan;
};

// How a description moves and is answered, as cases/README.md describes it.
struct Options {
    Journey journey;
    Side side;

    void add(const std::string& line);  // throws std::exception
};

struct Answered : sdp::Reply {
    std::vector<std::string> keys;  // new ones, in bytes; the same in every run
    Diagnostics warnings;
    Diagnostics rejections;
};
// Answers as a new side of a call, or as one that resumes from its previous answer.
Result<Answered> answer(const std::string& text, const Side& side,
                        const std::string& previous = "");

// Compares two descriptions as offers. Both must be readable.
bool is_changed(const std::string& before, const std::string& now);

std::string hexadecimal(const std::string& bytes);

constexpr std::string_view base64_digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// As in a=crypto, with its padding.
std::string base64(const std::string& bytes);

}  // namespace tools

#endif
