// The command lines of qova-sdp and qova-answer.

#ifndef QOVA_TOOLS_CLI_OPTIONS_H
#define QOVA_TOOLS_CLI_OPTIONS_H

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "answer/answerer.h"
#include "qova/enumerations.h"
#include "sdp/plan.h"
#include "sdp/reader.h"

struct Options {
    std::string command;  // log, move or answer; of qova-answer none
    bool help = false;    // then nothing else counts; nor with version
    bool version = false;
    bool answer = false;
    bool strict = false;
    bool back = false;
    bool merge = false;
    bool verbose = false;
    bool quiet = false;
    bool fax = true;
    std::string listen = "sip:127.0.0.1:5080;transport=tcp";
    std::optional<std::string> output;
    std::optional<sdp::MediaAddress> address;
    std::optional<sdp::MediaAddress> local;
    std::optional<sdp::MediaAddress> public_address;
    std::optional<std::string> previous;
    std::vector<QOVA_Codec> codecs;  // empty: all
    std::optional<unsigned short> audio_port;
    std::optional<unsigned short> fax_port;
    std::vector<std::string> files;  // "-" is standard input
};

class Misuse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum Status { DONE = 0, FAILED = 1, MISUSED = 2 };

// Says on standard error what went wrong.
Status report(const std::string& program, Status status, const std::string& message);

// The exit status of a program; of what it throws, too.
Status run_program(const std::string& program, const std::function<Status()>& run);

// Reads what follows qova-sdp on its command line. Throws Misuse.
Options read_options(const std::vector<std::string>& arguments);

// The same of qova-answer.
Options read_server_options(const std::vector<std::string>& arguments);

extern const char usage[];
extern const char server_usage[];

// "PROGRAM 1.0.0\n"
std::string version_of(const std::string& program);

// What a side of a call is made of that answers, where --local is given. Throws Misuse.
sdp::Policy policy_of(const Options& options);
std::optional<sdp::Plan> public_plan_of(const Options& options);
sdp::Strictness strictness_of(const Options& options);

#endif
