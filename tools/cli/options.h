// The command lines of qova-sdp and qova-answer.

#ifndef QOVA_TOOLS_CLI_OPTIONS_H
#define QOVA_TOOLS_CLI_OPTIONS_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "answer/answerer.h"
#include "qova/enumerations.h"
#include "sdp/plan.h"
#include "sdp/reader.h"

// The commands of qova-sdp, and qova-answer as a whole. A sum of them is a set.
enum Command : unsigned { LOG = 1, MOVE = 2, ANSWER = 4, SERVE = 8 };

// The parsed options. Options of other commands keep their defaults.
struct Options {
    Command command = SERVE;
    bool help = false;  // with it or version, a command line is not checked as a whole
    bool version = false;
    bool answer = false;
    bool strict = false;
    bool back = false;
    bool merge = false;
    bool verbose = false;
    bool quiet = false;
    bool fax = false;
    bool no_fax = false;
    std::string listen = "sip:127.0.0.1:5080;transport=tcp";
    std::string output;  // this and the next: empty if not given
    std::string previous;
    std::optional<sdp::MediaAddress> local;
    std::optional<sdp::MediaAddress> plan_address;  // --address or --public
    std::optional<unsigned short> audio_port;
    std::optional<unsigned short> fax_port;
    std::vector<QOVA_Codec> codecs;  // empty: all
    std::vector<std::string> files;  // "-" is standard input

    sdp::Role role() const;
    sdp::Strictness strictness() const;
    std::optional<sdp::Plan> plan() const;
    sdp::Policy policy() const;  // `local` must be set
};

// A wrong command line. The message names the option and its value.
struct Misuse : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Throws Misuse if `is_wrong` is true.
inline void misuse_if(bool is_wrong, const std::string& message) {
    if (is_wrong) {
        throw Misuse(message);
    }
}

// Reads the arguments of qova-sdp. Throws Misuse.
Options read_options(const std::vector<std::string>& arguments);

// Reads the arguments of qova-answer. Throws Misuse.
Options read_server_options(const std::vector<std::string>& arguments);

// Throws Misuse if the public address and `local` belong to different address families.
void check_families(const Options& options);

// The help texts of qova-sdp and qova-answer.
std::string usage();
std::string server_usage();

#endif
