#include "cli/options.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <iterator>
#include <set>
#include <utility>

#include "cli/files.h"
#include "qova/export.h"
#include "sdp/audio.h"
#include "sdp/strings.h"

const char usage[] =
    "usage: qova-sdp log [OPTION]... FILE...\n"
    "       qova-sdp move --address ADDRESS --audio-port N --fax-port N [OPTION]... FILE...\n"
    "       qova-sdp answer --local ADDRESS [OPTION]... OFFER\n"
    "       qova-sdp --help | --version\n"
    "\n"
    "Reads a session description (SDP) from each FILE, or from standard input for \"-\". It may\n"
    "stand in a SIP message or in a multipart body.\n"
    "\n"
    "log     prints the media capability that it describes.\n"
    "move    moves it from the local address and port plan to a public one, and prints the moved\n"
    "        description; on standard error its capability, and the command that moves it back.\n"
    "answer  prints an answer to it; on standard error the capabilities of both, which lines are\n"
    "        rejected, and why.\n"
    "\n"
    "  --answer           it is an answer, not an offer (log and move)\n"
    "  --strict           refuse what is only warned of otherwise\n"
    "  --output FILE      write to FILE, whole or not at all, instead of standard output\n"
    "  -h, --help         print this text\n"
    "  --version          print the version\n"
    "\n"
    "For move:\n"
    "  --address ADDRESS  the new IPv4 or IPv6 address\n"
    "  --audio-port N     the public port that stands for local audio port 32000\n"
    "  --fax-port N       the public port that stands for local fax port 6666\n"
    "  --back             the reverse: from the public plan to the local one\n"
    "  --merge            let lines of several addresses become lines of one, for good\n"
    "  --verbose          print the capability before the move too\n"
    "\n"
    "For answer:\n"
    "  --local ADDRESS    the local IPv4 or IPv6 address\n"
    "  --codec NAME       accept this codec; may be repeated; without it all are accepted: PCMA,\n"
    "                     PCMU, G723, G729, G729A, G722, AMR-WB, opus\n"
    "  --fax, --no-fax    accept T.38 fax, or reject it; it is accepted unless told otherwise\n"
    "  --previous FILE    the answer of before: says whether anything changed since, and keeps "
    "the\n"
    "                     session\n"
    "  --public ADDRESS   answer in the public plan that has this address, with\n"
    "  --audio-port N     the public port that stands for local audio port 32000, and\n"
    "  --fax-port N       the public port that stands for local fax port 6666\n"
    "\n"
    "Exit status: 0 done, 1 a description was refused or could not be read or written, 2 the\n"
    "command line is wrong.\n";

const char server_usage[] =
    "usage: qova-answer [OPTION]...\n"
    "\n"
    "Answers SIP calls, until it is told to stop by SIGINT or SIGTERM: then it ends its calls.\n"
    "It prints \"listening on URI\" when it can be called; on standard error it logs what is\n"
    "offered and answered, each line with the number of its call. It sends and plays no media.\n"
    "\n"
    "  --listen URI       where it is called; sip:127.0.0.1:5080;transport=tcp unless told\n"
    "                     otherwise; port 0 is any that is free\n"
    "  --local ADDRESS    the local IPv4 or IPv6 address of its media; unless told otherwise the\n"
    "                     one that it listens on\n"
    "  --codec NAME       accept this codec; may be repeated; without it all are accepted: PCMA,\n"
    "                     PCMU, G723, G729, G729A, G722, AMR-WB, opus\n"
    "  --fax, --no-fax    accept T.38 fax, or reject it; it is accepted unless told otherwise\n"
    "  --public ADDRESS   answer in the public plan that has this address, with\n"
    "  --audio-port N     the public port that stands for local audio port 32000, and\n"
    "  --fax-port N       the public port that stands for local fax port 6666\n"
    "  --strict           refuse what is only warned of otherwise\n"
    "  --quiet            log errors only\n"
    "  -h, --help         print this text\n"
    "  --version          print the version\n"
    "\n"
    "On SIGUSR1 it logs how many calls it has had, the heap in use, the processor time, and how\n"
    "much of that it took to read, answer, write and compare descriptions.\n"
    "\n"
    "Exit status: 0 stopped, 1 it cannot listen or some calls did not end, 2 the command line is\n"
    "wrong.\n";

namespace {

unsigned short port_of(const std::string& option, const std::string& value) {
    const auto port = sdp::number(value, 65535);
    if (!port || *port == 0) {
        throw Misuse(option + ": " + value + " is no port from 1 to 65535");
    }
    return static_cast<unsigned short>(*port);
}

sdp::MediaAddress address_of(const std::string& option, const std::string& value) {
    const auto address = sdp::MediaAddress::parse(value);
    if (!address) {
        throw Misuse(option + ": " + value + " is no unicast IPv4 or IPv6 address");
    }
    return *address;
}

QOVA_Codec codec_of(const std::string& name) {
    const auto codec = sdp::codec_named(name);
    if (!codec) {
        throw Misuse("--codec: there is no codec " + name);
    }
    return *codec;
}

enum Commands : unsigned {
    LOG = 1,
    MOVE = 2,
    ANSWER = 4,
    SERVE = 8,  // all of qova-answer
    ALL = LOG | MOVE | ANSWER | SERVE
};

unsigned command_of(const std::string& name) {
    return name == "log" ? LOG : name == "move" ? MOVE : name == "answer" ? ANSWER : 0U;
}

struct Option {
    const char* name;
    unsigned commands;  // that have it
    bool takes_value;
    void (*set)(Options& options, const std::string& value);
};

constexpr Option all_options[] = {
    {"--help", ALL, false, [](Options& to, const std::string&) { to.help = true; }},
    {"--version", ALL, false, [](Options& to, const std::string&) { to.version = true; }},
    {"--answer", LOG | MOVE, false, [](Options& to, const std::string&) { to.answer = true; }},
    {"--strict", ALL, false, [](Options& to, const std::string&) { to.strict = true; }},
    {"--output", LOG | MOVE | ANSWER, true,
     [](Options& to, const std::string& value) { to.output = value; }},
    {"--back", MOVE, false, [](Options& to, const std::string&) { to.back = true; }},
    {"--merge", MOVE, false, [](Options& to, const std::string&) { to.merge = true; }},
    {"--verbose", MOVE, false, [](Options& to, const std::string&) { to.verbose = true; }},
    {"--address", MOVE, true,
     [](Options& to, const std::string& value) { to.address = address_of("--address", value); }},
    {"--local", ANSWER | SERVE, true,
     [](Options& to, const std::string& value) { to.local = address_of("--local", value); }},
    {"--public", ANSWER | SERVE, true,
     [](Options& to, const std::string& value) {
         to.public_address = address_of("--public", value);
     }},
    {"--audio-port", MOVE | ANSWER | SERVE, true,
     [](Options& to, const std::string& value) { to.audio_port = port_of("--audio-port", value); }},
    {"--fax-port", MOVE | ANSWER | SERVE, true,
     [](Options& to, const std::string& value) { to.fax_port = port_of("--fax-port", value); }},
    {"--codec", ANSWER | SERVE, true,
     [](Options& to, const std::string& value) { to.codecs.push_back(codec_of(value)); }},
    {"--fax", ANSWER | SERVE, false, [](Options& to, const std::string&) { to.fax = true; }},
    {"--no-fax", ANSWER | SERVE, false, [](Options& to, const std::string&) { to.fax = false; }},
    {"--previous", ANSWER, true,
     [](Options& to, const std::string& value) { to.previous = value; }},
    {"--listen", SERVE, true, [](Options& to, const std::string& value) { to.listen = value; }},
    {"--quiet", SERVE, false, [](Options& to, const std::string&) { to.quiet = true; }},
};

const Option& option_of(unsigned command, const std::string& who, const std::string& name) {
    const auto* const found =
        std::find_if(std::begin(all_options), std::end(all_options), [&](const Option& option) {
            return option.name == name && (option.commands & command) != 0;
        });
    if (found == std::end(all_options)) {
        throw Misuse(std::string(who).append(" has no option ").append(name));
    }
    return *found;
}

// A plan has all of its options, or none of them.
void check_plan(const Options& options) {
    const bool moves = options.command == "move";
    const std::pair<const char*, bool> of_plan[] = {
        {moves ? "--address" : "--public", options.address || options.public_address},
        {"--audio-port", options.audio_port.has_value()},
        {"--fax-port", options.fax_port.has_value()},
    };
    const auto is_given = [](const auto& option) { return option.second; };
    if (!moves && std::none_of(std::begin(of_plan), std::end(of_plan), is_given)) {
        return;
    }
    for (const auto& option : of_plan) {
        if (!is_given(option)) {
            throw Misuse(std::string(moves ? "move needs " : "a public plan needs ") +
                         option.first);
        }
    }
}

void check(const Options& options) {
    if (options.files.empty()) {
        throw Misuse("no FILE is given");
    }
    if (std::count(options.files.begin(), options.files.end(), "-") +
            (options.previous == "-" ? 1 : 0) >
        1) {
        throw Misuse("standard input is given twice");
    }
    if (options.output && options.files.size() > 1) {
        throw Misuse("--output takes the output of one FILE only");
    }
    check_plan(options);
    if (options.command == "answer") {
        if (!options.local) {
            throw Misuse("answer needs --local");
        }
        if (options.files.size() > 1) {
            throw Misuse("answer takes one OFFER");
        }
        public_plan_of(options);
    }
}

// Reads the options of a command, and puts what is none of them among the files.
void read(unsigned command, const std::string& who, std::vector<std::string>::const_iterator next,
          std::vector<std::string>::const_iterator end, Options& options) {
    std::set<std::string> seen;
    bool options_have_ended = false;
    while (next != end) {
        const std::string argument = *next++;
        if (options_have_ended || argument == "-" || argument.substr(0, 1) != "-") {
            options.files.push_back(argument);
            continue;
        }
        if (argument == "--") {
            options_have_ended = true;
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string name = argument == "-h" ? "--help" : argument.substr(0, equals);
        const Option& option = option_of(command, who, name);
        if (!seen.insert(name).second && name != "--codec") {
            throw Misuse(name + " is given twice");
        }
        if (seen.count("--fax") != 0 && seen.count("--no-fax") != 0) {
            throw Misuse("--fax and --no-fax exclude each other");
        }
        std::string value;
        if (equals != std::string::npos) {
            if (!option.takes_value) {
                throw Misuse(name + " takes no value");
            }
            value = argument.substr(equals + 1);
        } else if (option.takes_value) {
            if (next == end) {
                throw Misuse(name + " needs a value");
            }
            value = *next++;
        }
        option.set(options, value);
    }
}

}  // namespace

Options read_options(const std::vector<std::string>& arguments) {
    Options options;
    auto next = arguments.begin();
    if (next == arguments.end()) {
        throw Misuse("no command is given");
    }
    if (command_of(*next) != 0) {
        options.command = *next++;
    } else if (*next != "-h" && *next != "--help" && *next != "--version") {
        throw Misuse("there is no command " + *next);
    }
    read(options.command.empty() ? LOG : command_of(options.command), options.command, next,
         arguments.end(), options);
    if (!options.help && !options.version) {
        check(options);
    }
    return options;
}

Options read_server_options(const std::vector<std::string>& arguments) {
    Options options;
    read(SERVE, "qova-answer", arguments.begin(), arguments.end(), options);
    if (!options.help && !options.version) {
        if (!options.files.empty()) {
            throw Misuse("qova-answer takes options only, and no " + options.files.front());
        }
        check_plan(options);
    }
    return options;
}

Status report(const std::string& program, Status status, const std::string& message) {
    std::fputs((program + ": " + shown(message) + "\n").c_str(), stderr);
    return status;
}

Status run_program(const std::string& program, const std::function<Status()>& run) {
    try {
        return run();
    } catch (const Misuse& misuse) {
        return report(program, MISUSED,
                      std::string(misuse.what()) + " (see " + program + " --help)");
    } catch (const std::exception& exception) {
        return report(program, FAILED, exception.what());
    }
}

std::string version_of(const std::string& program) {
    return program + " " + std::to_string(QOVA_VERSION_MAJOR) + "." +
           std::to_string(QOVA_VERSION_MINOR) + "." + std::to_string(QOVA_VERSION_PATCH) + "\n";
}

sdp::Policy policy_of(const Options& options) {
    sdp::Policy policy{*options.local};
    policy.fax = options.fax;
    if (!options.codecs.empty()) {
        policy.codecs = options.codecs;
    }
    return policy;
}

std::optional<sdp::Plan> public_plan_of(const Options& options) {
    if (!options.public_address) {
        return std::nullopt;
    }
    if (options.public_address->ip().Family() != options.local->ip().Family()) {
        throw Misuse("--public: " + options.public_address->text() + " is of another family than " +
                     options.local->text());
    }
    return sdp::Plan{*options.public_address, *options.audio_port, *options.fax_port};
}

sdp::Strictness strictness_of(const Options& options) {
    return options.strict ? sdp::Strictness::STRICT : sdp::Strictness::LENIENT;
}
