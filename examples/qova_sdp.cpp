// qova-sdp: what a call-control application does with libqova, on real session descriptions.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "sdp_mover.h"
#include "sdp_reader.h"

namespace {

constexpr char usage[] =
    "usage: qova-sdp log [--answer] FILE|-\n"
    "       qova-sdp move --address ADDRESS --audio-port N --fax-port N [--back] FILE|-\n"
    "       qova-sdp --help\n"
    "\n"
    "Reads a session description (SDP) from FILE, or from standard input for \"-\".\n"
    "\n"
    "log   prints the media capability that it describes.\n"
    "  --answer          it is an answer, not an offer\n"
    "\n"
    "move  moves it from the local address and port plan to a public one, and writes the moved\n"
    "      description to standard output, the capability before and after to standard error.\n"
    "  --address ADDRESS the new IPv4 or IPv6 address\n"
    "  --audio-port N    the public port that stands for local audio port 32000\n"
    "  --fax-port N      the public port that stands for local fax port 6666\n"
    "  --back            the reverse: from the public plan to the local one\n"
    "\n"
    "Exit status: 0 done, 1 the description was refused or could not be read or written, 2 the\n"
    "command line is wrong.\n";

enum Status { DONE = 0, FAILED = 1, MISUSED = 2 };

struct Failure {
    Status status;
    std::string message;
};

[[noreturn]] void misuse(const std::string& message) {
    throw Failure{MISUSED, message + " (see qova-sdp --help)"};
}

[[noreturn]] void fail(const std::string& message) {
    throw Failure{FAILED, message};
}

std::string reason_of(int error) {
    return std::generic_category().message(error);
}

std::string display_name(const std::string& file) {
    return file == "-" ? "standard input" : file;
}

std::string read_file(const std::string& file) {
    struct Close {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };
    std::unique_ptr<std::FILE, Close> opened;
    std::FILE* stream = stdin;
    if (file != "-") {
        opened.reset(std::fopen(file.c_str(), "rb"));
        stream = opened.get();
        if (stream == nullptr) {
            fail(file + ": " + reason_of(errno));
        }
    }
    std::string text;
    char buffer[65536];
    while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, stream)) {
        text.append(buffer, size);
    }
    if (std::ferror(stream) != 0) {
        fail(display_name(file) + ": " + reason_of(errno));
    }
    return text;
}

// All of the output at once, so that a refusal leaves none.
void write(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        fail("standard output: " + reason_of(errno));
    }
}

unsigned short port_option(const std::string& option, const std::string& value) {
    const auto port = sdp::number(value, 65535);
    if (!port || *port == 0) {
        misuse(option + ": " + value + " is no port from 1 to 65535");
    }
    return static_cast<unsigned short>(*port);
}

struct Options {
    bool help = false;
    bool answer = false;
    bool back = false;
    std::optional<std::string> address;
    std::optional<unsigned short> audio_port;
    std::optional<unsigned short> fax_port;
    std::optional<std::string> file;
};

Options read_options(const std::string& command, const std::vector<std::string>& arguments) {
    const bool is_move = command == "move";
    Options options;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        const std::string& option = *argument;
        const auto value = [&]() -> const std::string& {
            if (++argument == arguments.end()) {
                misuse(option + " needs a value");
            }
            return *argument;
        };
        if (option == "-" || option.substr(0, 1) != "-") {
            if (options.file) {
                misuse("more than one FILE is given");
            }
            options.file = option;
        } else if (option == "--help") {
            options.help = true;
        } else if (!is_move && option == "--answer") {
            options.answer = true;
        } else if (is_move && option == "--back") {
            options.back = true;
        } else if (is_move && option == "--address") {
            options.address = value();
            if (!sdp::is_address(*options.address)) {
                misuse("--address: " + *options.address + " is no unicast IPv4 or IPv6 address");
            }
        } else if (is_move && option == "--audio-port") {
            options.audio_port = port_option(option, value());
        } else if (is_move && option == "--fax-port") {
            options.fax_port = port_option(option, value());
        } else {
            misuse(std::string(command).append(" has no option ").append(option));
        }
    }
    return options;
}

void print_warnings(const std::string& file, const std::vector<sdp::Warning>& warnings) {
    for (const sdp::Warning& warning : warnings) {
        std::fprintf(stderr, "%s:%zu: warning: %s\n", display_name(file).c_str(), warning.line,
                     warning.message.c_str());
    }
}

std::string with_newline(std::string text) {
    if (text.empty() || text.back() != '\n') {
        text += '\n';
    }
    return text;
}

void run_log(const Options& options) {
    const sdp::Role role = options.answer ? sdp::Role::ANSWER : sdp::Role::OFFER;
    const std::string text = read_file(*options.file);
    const sdp::Reading reading = sdp::read(sdp::Description(text), role, sdp::Strictness::LENIENT);
    print_warnings(*options.file, reading.warnings);
    write(with_newline(*reading.capability));
}

void run_move(const Options& options) {
    for (const auto& [name, given] : {std::pair("--address", options.address.has_value()),
                                      std::pair("--audio-port", options.audio_port.has_value()),
                                      std::pair("--fax-port", options.fax_port.has_value())}) {
        if (!given) {
            misuse(std::string("move needs ") + name);
        }
    }
    const sdp::Plan plan = {*options.address, *options.audio_port, *options.fax_port, options.back};
    const sdp::Move move = sdp::move(read_file(*options.file), plan);
    print_warnings(*options.file, move.warnings);
    write(move.text);
    const std::string log =
        "before: " + with_newline(move.log_before) + "after: " + with_newline(move.log_after);
    std::fputs(log.c_str(), stderr);
}

void run(const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        misuse("no command is given");
    }
    const std::string& command = arguments[0];
    const bool is_known = command == "log" || command == "move";
    if (!is_known && command != "--help") {
        misuse("there is no command " + command);
    }
    const Options options =
        read_options(command, {arguments.begin() + (is_known ? 1 : 0), arguments.end()});
    if (options.help) {
        write(usage);
    } else if (!options.file) {
        misuse("no FILE is given");
    } else {
        try {
            command == "log" ? run_log(options) : run_move(options);
        } catch (const sdp::Refusal& refusal) {
            const std::string line = refusal.line == 0 ? "" : ":" + std::to_string(refusal.line);
            fail(display_name(*options.file) + line + ": " + refusal.what());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        run({argv + std::min(1, argc), argv + argc});
        return DONE;
    } catch (const Failure& failure) {
        std::fprintf(stderr, "qova-sdp: %s\n", failure.message.c_str());
        return failure.status;
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "qova-sdp: %s\n", exception.what());
        return FAILED;
    }
}
