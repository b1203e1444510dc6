#include "options.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "sdp_mover.h"
#include "sdp_text.h"

const char usage[] =
    "usage: qova-sdp log [OPTION]... FILE...\n"
    "       qova-sdp move --address ADDRESS --audio-port N --fax-port N [OPTION]... FILE...\n"
    "       qova-sdp --help | --version\n"
    "\n"
    "Reads a session description (SDP) from each FILE, or from standard input for \"-\". It may\n"
    "stand in a SIP message or in a multipart body.\n"
    "\n"
    "log   prints the media capability that it describes.\n"
    "move  moves it from the local address and port plan to a public one, and prints the moved\n"
    "      description; on standard error its capability, and the command that moves it back.\n"
    "\n"
    "  --answer           it is an answer, not an offer\n"
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
    "Exit status: 0 done, 1 a description was refused or could not be read or written, 2 the\n"
    "command line is wrong.\n";

namespace {

unsigned short port_of(const std::string& option, const std::string& value) {
    const auto port = sdp::number(value, 65535);
    if (!port || *port == 0) {
        throw Misuse(option + ": " + value + " is no port from 1 to 65535");
    }
    return static_cast<unsigned short>(*port);
}

std::string address_of(const std::string& value) {
    if (!sdp::is_address(value)) {
        throw Misuse("--address: " + value + " is no unicast IPv4 or IPv6 address");
    }
    return value;
}

struct Option {
    const char* name;
    bool is_of_log;  // else of move alone
    bool takes_value;
    void (*set)(Options& options, const std::string& value);
};

constexpr Option all_options[] = {
    {"--help", true, false, [](Options& to, const std::string&) { to.help = true; }},
    {"--version", true, false, [](Options& to, const std::string&) { to.version = true; }},
    {"--answer", true, false, [](Options& to, const std::string&) { to.answer = true; }},
    {"--strict", true, false, [](Options& to, const std::string&) { to.strict = true; }},
    {"--output", true, true, [](Options& to, const std::string& value) { to.output = value; }},
    {"--back", false, false, [](Options& to, const std::string&) { to.back = true; }},
    {"--merge", false, false, [](Options& to, const std::string&) { to.merge = true; }},
    {"--verbose", false, false, [](Options& to, const std::string&) { to.verbose = true; }},
    {"--address", false, true,
     [](Options& to, const std::string& value) { to.address = address_of(value); }},
    {"--audio-port", false, true,
     [](Options& to, const std::string& value) { to.audio_port = port_of("--audio-port", value); }},
    {"--fax-port", false, true,
     [](Options& to, const std::string& value) { to.fax_port = port_of("--fax-port", value); }},
};

const Option& option_of(const std::string& command, const std::string& name) {
    const auto* const found =
        std::find_if(std::begin(all_options), std::end(all_options), [&](const Option& option) {
            return option.name == name && (option.is_of_log || command == "move");
        });
    if (found == std::end(all_options)) {
        throw Misuse(std::string(command).append(" has no option ").append(name));
    }
    return *found;
}

void check(const Options& options) {
    if (options.files.empty()) {
        throw Misuse("no FILE is given");
    }
    if (std::count(options.files.begin(), options.files.end(), "-") > 1) {
        throw Misuse("standard input is given twice");
    }
    if (options.output && options.files.size() > 1) {
        throw Misuse("--output takes the output of one FILE only");
    }
    for (const auto& [name, is_given] : {std::pair("--address", options.address.has_value()),
                                         std::pair("--audio-port", options.audio_port.has_value()),
                                         std::pair("--fax-port", options.fax_port.has_value())}) {
        if (options.command == "move" && !is_given) {
            throw Misuse(std::string("move needs ") + name);
        }
    }
}

}  // namespace

Options read_options(const std::vector<std::string>& arguments) {
    Options options;
    std::set<std::string> seen;
    bool options_have_ended = false;
    auto next = arguments.begin();
    if (next == arguments.end()) {
        throw Misuse("no command is given");
    }
    if (*next == "log" || *next == "move") {
        options.command = *next++;
    } else if (*next != "-h" && *next != "--help" && *next != "--version") {
        throw Misuse("there is no command " + *next);
    }
    while (next != arguments.end()) {
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
        const Option& option = option_of(options.command, name);
        if (!seen.insert(name).second) {
            throw Misuse(name + " is given twice");
        }
        std::string value;
        if (equals != std::string::npos) {
            if (!option.takes_value) {
                throw Misuse(name + " takes no value");
            }
            value = argument.substr(equals + 1);
        } else if (option.takes_value) {
            if (next == arguments.end()) {
                throw Misuse(name + " needs a value");
            }
            value = *next++;
        }
        option.set(options, value);
    }
    if (!options.help && !options.version) {
        check(options);
    }
    return options;
}
