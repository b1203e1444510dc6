#include "cli/options.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>
#include <variant>

#include "sdp/audio.h"
#include "sdp/strings.h"

namespace {

// Where the value of an option goes. A bool takes no value, a list takes several.
using Member =
    std::variant<bool Options::*, std::string Options::*,
                 std::optional<sdp::MediaAddress> Options::*,
                 std::optional<unsigned short> Options::*, std::vector<QOVA_Codec> Options::*>;

struct Option {
    std::string_view name;
    std::string_view value;  // its name in the help text; empty: takes none
    unsigned commands;       // the commands that take the option
    Member member;
    const char* help;
};

constexpr Option option_table[] = {
    {"--answer", "", LOG | MOVE, &Options::answer,
     "read an answer, not an offer (log and move only)"},
    {"--output", "FILE", LOG | MOVE | ANSWER, &Options::output,
     "write to FILE, completely or not at all, instead of standard output"},
    {"--listen", "URI", SERVE, &Options::listen,
     "accept calls at this SIP URI (default: sip:127.0.0.1:5080;transport=tcp); port 0 picks a "
     "free port"},
    {"--address", "ADDRESS", MOVE, &Options::plan_address, "the new IPv4 or IPv6 address"},
    {"--local", "ADDRESS", ANSWER | SERVE, &Options::local,
     "the local IPv4 or IPv6 address of the media"},
    {"--codec", "NAME", ANSWER | SERVE, &Options::codecs,
     "accept this codec; may be repeated (default: PCMA, PCMU, G723, G729, G729A, G722, AMR-WB "
     "and opus)"},
    {"--fax", "", ANSWER | SERVE, &Options::fax, "accept T.38 fax (default)"},
    {"--no-fax", "", ANSWER | SERVE, &Options::no_fax, "reject T.38 fax"},
    {"--previous", "FILE", ANSWER, &Options::previous,
     "the previous answer; reports whether anything changed since, and continues its session"},
    {"--public", "ADDRESS", ANSWER | SERVE, &Options::plan_address,
     "answer with this public address; requires the next two options"},
    {"--audio-port", "N", MOVE | ANSWER | SERVE, &Options::audio_port,
     "the public port for local audio port 32000"},
    {"--fax-port", "N", MOVE | ANSWER | SERVE, &Options::fax_port,
     "the public port for local fax port 6666"},
    {"--back", "", MOVE, &Options::back, "move from the public plan to the local one"},
    {"--merge", "", MOVE, &Options::merge,
     "move lines with different addresses to the new one (cannot be undone)"},
    {"--verbose", "", MOVE, &Options::verbose, "also print the capability before the move"},
    {"--strict", "", LOG | MOVE | ANSWER | SERVE, &Options::strict, "treat warnings as errors"},
    {"--quiet", "", SERVE, &Options::quiet, "log errors only"},
    {"--help", "", LOG | MOVE | ANSWER | SERVE, &Options::help, "print this help text"},
    {"--version", "", LOG | MOVE | ANSWER | SERVE, &Options::version, "print the version"},
};

// Lists the options of a command that another one does not have, in lines of up to 80 columns.
std::string options_of(Command command, unsigned other = 0) {
    constexpr std::size_t indent = 21;
    constexpr std::size_t width = 80;
    std::string text;
    for (const Option& option : option_table) {
        if ((option.commands & command) == 0 || (option.commands & other) != 0) {
            continue;
        }
        std::string entry = option.name == "--help" ? "  -h, " : "  ";
        entry.append(option.name).append(" ").append(option.value).resize(indent, ' ');
        entry += option.help;
        for (std::size_t start = 0; entry.size() - start > width;) {
            start = entry.rfind(' ', start + width);
            entry.replace(start++, 1, "\n" + std::string(indent, ' '));
        }
        text += entry + "\n";
    }
    return text;
}

std::string quoted(const std::string& value) {
    return "'" + value + "'";
}

// Each of these checks the value of an option and stores it.

void store(const std::string&, const std::string&, bool& to) {
    to = true;
}

void store(const std::string&, const std::string& value, std::string& to) {
    to = value;
}

void store(const std::string& name, const std::string& value,
           std::optional<sdp::MediaAddress>& to) {
    to = sdp::MediaAddress::parse(value);
    misuse_if(!to, name + ": invalid address " + quoted(value) +
                       " (expected a unicast IPv4 or IPv6 address)");
}

void store(const std::string& name, const std::string& value, std::optional<unsigned short>& to) {
    const auto port = sdp::number(value, 65535);
    misuse_if(port.value_or(0) == 0, name + ": invalid port " + quoted(value) + " (1 to 65535)");
    to = static_cast<unsigned short>(*port);
}

void store(const std::string& name, const std::string& value, std::vector<QOVA_Codec>& to) {
    const auto codec = sdp::codec_named(value);
    misuse_if(!codec, name + ": unknown codec " + quoted(value));
    to.push_back(*codec);
}

// Checks a command line as a whole.
void check(const Options& options) {
    const auto files = options.files.size();
    const auto dashes = std::count(options.files.begin(), options.files.end(), "-") +
                        (options.previous == "-" ? 1 : 0);
    const int of_plan =
        (options.plan_address ? 1 : 0) + (options.audio_port ? 1 : 0) + (options.fax_port ? 1 : 0);
    misuse_if(options.command == SERVE && files > 0, "qova-answer takes options only");
    misuse_if(options.command != SERVE && files == 0, "missing FILE");
    misuse_if(options.command == ANSWER && files > 1, "answer takes only one FILE");
    misuse_if(!options.output.empty() && files > 1, "--output takes only one FILE");
    misuse_if(dashes > 1, "standard input ('-') is given twice");
    misuse_if(options.command == ANSWER && !options.local, "answer requires --local");
    misuse_if(options.command == MOVE && of_plan < 3,
              "move requires --address, --audio-port and --fax-port");
    misuse_if(of_plan == 1 || of_plan == 2,
              "--public, --audio-port and --fax-port require each other");
    misuse_if(options.fax && options.no_fax, "--fax and --no-fax exclude each other");
    check_families(options);
}

// Reads the arguments of a command: options and files in any order.
Options read(const std::string& command_name, Command command,
             const std::vector<std::string>& arguments, std::size_t next = 0) {
    Options options;
    options.command = command;
    std::set<std::string> seen;
    bool options_have_ended = false;
    while (next < arguments.size()) {
        const std::string& argument = arguments[next++];
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
        const auto* const option = std::find_if(
            std::begin(option_table), std::end(option_table), [&](const Option& candidate) {
                return candidate.name == name && (candidate.commands & command) != 0;
            });
        misuse_if(option == std::end(option_table),
                  command_name + ": unknown option " + quoted(name));
        misuse_if(!seen.insert(name).second && name != "--codec", name + " is given twice");
        const bool takes_value = !option->value.empty();
        std::string value;
        if (equals != std::string::npos) {
            value = argument.substr(equals + 1);
            misuse_if(!takes_value, name + ": unexpected value " + quoted(value));
        } else if (takes_value && next < arguments.size()) {
            value = arguments[next++];
        }
        misuse_if(takes_value && value.empty(), name + ": missing value");
        std::visit([&](auto member) { store(name, value, options.*member); }, option->member);
    }
    if (!options.help && !options.version) {
        check(options);
    }
    return options;
}

}  // namespace

sdp::Role Options::role() const {
    return answer ? sdp::Role::ANSWER : sdp::Role::OFFER;
}

sdp::Strictness Options::strictness() const {
    return strict ? sdp::Strictness::STRICT : sdp::Strictness::LENIENT;
}

std::optional<sdp::Plan> Options::plan() const {
    return plan_address ? std::optional(sdp::Plan{*plan_address, *audio_port, *fax_port})
                        : std::nullopt;
}

sdp::Policy Options::policy() const {
    sdp::Policy policy{*local};
    policy.fax = !no_fax;
    if (!codecs.empty()) {
        policy.codecs = codecs;
    }
    return policy;
}

Options read_options(const std::vector<std::string>& arguments) {
    misuse_if(arguments.empty(), "missing command");
    const std::string& first = arguments.front();
    if (first == "-h" || first == "--help" || first == "--version") {
        return read("qova-sdp", LOG, arguments);
    }
    for (const auto& [name, command] :
         {std::pair("log", LOG), std::pair("move", MOVE), std::pair("answer", ANSWER)}) {
        if (first == name) {
            return read(name, command, arguments, 1);
        }
    }
    throw Misuse("unknown command " + quoted(first));
}

Options read_server_options(const std::vector<std::string>& arguments) {
    return read("qova-answer", SERVE, arguments);
}

void check_families(const Options& options) {
    if (options.local && options.plan_address &&
        options.local->ip().Family() != options.plan_address->ip().Family()) {
        throw Misuse("--public: " + options.plan_address->text() + " and the local address " +
                     options.local->text() + " belong to different address families");
    }
}

std::string usage() {
    return "usage: qova-sdp log [OPTION]... FILE...\n"
           "       qova-sdp move --address ADDRESS --audio-port N --fax-port N [OPTION]...\n"
           "                FILE...\n"
           "       qova-sdp answer --local ADDRESS [OPTION]... FILE\n"
           "       qova-sdp --help | --version\n"
           "\n"
           "Reads a session description (SDP) from each FILE, or from standard input if FILE\n"
           "is '-'. A FILE can also be a SIP message or a multipart body.\n"
           "\n"
           "log     prints the media capability of the description\n"
           "move    moves the description from the local addresses and ports to public ones;\n"
           "        on standard error, prints the capability and the command that moves it\n"
           "        back\n"
           "answer  prints an answer to the description; on standard error, prints why lines\n"
           "        are rejected, both capabilities, and whether they changed (--previous)\n"
           "\n" +
           options_of(LOG) + "\nOptions of move:\n" + options_of(MOVE, LOG) +
           "\nOptions of answer:\n" + options_of(ANSWER, LOG) +
           "\n"
           "Exit status: 0 success, 1 a description was refused or a file could not be read\n"
           "or written, 2 wrong command line\n";
}

std::string server_usage() {
    return "usage: qova-answer [OPTION]...\n"
           "\n"
           "Answers SIP calls until it receives SIGINT or SIGTERM; then it ends its calls.\n"
           "Prints \"listening on URI\" when it is ready. Logs each offer and answer on\n"
           "standard error, and statistics when it receives SIGUSR1. Sends no media.\n"
           "The host of --listen is the default of --local.\n"
           "\n" +
           options_of(SERVE) +
           "\n"
           "Exit status: 0 stopped by a signal, 1 it could not listen or some calls did not\n"
           "end, 2 wrong command line\n";
}
