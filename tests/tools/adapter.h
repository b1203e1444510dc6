// The tools as functions from text to text: the runner of the cases, the checks of properties and
// the fuzzer know nothing else of them.

#ifndef QOVA_TESTS_TOOLS_ADAPTER_H
#define QOVA_TESTS_TOOLS_ADAPTER_H

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tools {

struct Message {
    std::size_t line;  // from 1; 0: the description as a whole
    std::string text;
};

// Either a refusal or a value.
template <class T>
struct Result {
    std::optional<Message> refusal;
    T value = {};
};

enum class Role { OFFER, ANSWER };
enum class Strictness { LENIENT, STRICT };

struct Found {
    std::string text;
    std::size_t lines_before = 0;
    bool is_part = false;
};
Result<Found> find(const std::string& file);

struct Read {
    std::string log;
    std::vector<Message> warnings;
    std::vector<std::string> cryptos;  // "LINE: TAG SUITE inline:KEY|LIFETIME|MKI:SIZE ..."
};
Result<Read> read(const std::string& text, Role role, Strictness strictness);

struct Plan {
    std::string address = "203.0.113.5";
    unsigned short audio_port = 40000;
    unsigned short fax_port = 7000;
};

struct Move {
    Plan plan;
    bool back = false;
    bool merge = false;
    Role role = Role::OFFER;
    Strictness strictness = Strictness::LENIENT;
};
struct Moved {
    std::string text;
    std::string log_before;
    std::string log_after;
    std::string old_address;  // empty: there is no way back
    std::vector<Message> warnings;
};
Result<Moved> move(const std::string& text, const Move& move);

// The description's media, each as the library moves it, and as the moved text reads. Media at an
// unspecified address keep it in the text, and are left out of both.
std::pair<std::string, std::string> model_and_text(const std::string& text, const Moved& moved,
                                                   const Plan& plan);

struct Policy {
    std::string local = "192.0.2.1";
    std::optional<Plan> public_plan;
    std::vector<std::string> codecs;  // by their SDP names; empty: all
    std::vector<std::string> suites;
    bool fax = true;
};
struct Answered {
    std::string text;
    std::string log;
    std::vector<Message> warnings;
    std::vector<Message> rejections;
    bool has_common = false;
    std::optional<bool> changed;    // since the previous answer
    std::vector<std::string> keys;  // new ones, in bytes; the same in every run
};
// The answer of a new side of a call, or of one that goes on from its previous answer.
Result<Answered> answer(const std::string& text, const Policy& policy,
                        const std::string& previous = "");

// As in a=crypto, with its padding.
std::string base64(const std::string& bytes);

// Compares two descriptions as offers. Both must be readable.
bool is_changed(const std::string& before, const std::string& now);

}  // namespace tools

#endif
