// qova-sdp: what a call-control application does with libqova, on real session descriptions.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "answer/call_side.h"
#include "cli/files.h"
#include "cli/options.h"
#include "cli/program.h"
#include "move/mover.h"
#include "sdp/message.h"
#include "sdp/reader.h"
#include "sdp/strings.h"

namespace {

constexpr char program_name[] = "qova-sdp";

void print_error(const std::string& text) {
    std::fputs(text.c_str(), stderr);
}

// Quotes a file name for a shell, unless it is plain. It never looks like an option.
std::string word(const std::string& file) {
    std::string quoted = "'";
    for (const char byte : file.substr(0, 1) == "-" && file != "-" ? "./" + file : file) {
        byte == '\'' ? quoted += "'\\''" : quoted += byte;
    }
    quoted += '\'';
    const bool is_plain = std::all_of(quoted.begin() + 1, quoted.end() - 1, [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
               (byte >= '+' && byte <= '9') || byte == '_';
    });
    return is_plain && quoted.size() > 2 ? quoted.substr(1, quoted.size() - 2)
                                         : sdp::printable(quoted);
}

// The command that undoes a move.
std::string way_back(const Options& options, const sdp::Move& move) {
    if (!move.old_address) {
        return "none (the move cannot be undone)";
    }
    return std::string("qova-sdp move ") + (options.back ? "" : "--back ") +
           (options.answer ? "--answer " : "") + "--address " + move.old_address->text() +
           " --audio-port " + std::to_string(*options.audio_port) + " --fax-port " +
           std::to_string(*options.fax_port) + " " +
           word(options.output.empty() ? "-" : options.output);
}

// What a command makes of a description.
struct Result {
    std::string output;
    sdp::Diagnostics diagnostics;
    std::vector<std::string> notes = {};  // for standard error
};

Result run_log(const Options& options, const std::string& text) {
    sdp::Reading reading = sdp::read(sdp::Description(text), options.role(), options.strictness());
    return {sdp::with_newline(*reading.capability), std::move(reading.diagnostics)};
}

Result run_move(const Options& options, const std::string& text) {
    try {
        sdp::Move move =
            sdp::move(text, *options.plan(),
                      {options.back, options.merge, options.role(), options.strictness()});
        Result result = {std::move(move.text), std::move(move.diagnostics)};
        if (options.verbose) {
            result.notes.push_back("before: " + sdp::with_newline(move.log_before));
        }
        result.notes.push_back("after: " + sdp::with_newline(move.log_after));
        result.notes.push_back("back: " + way_back(options, move) + "\n");
        return result;
    } catch (const sdp::SeveralAddresses& refusal) {
        throw sdp::Refusal(refusal.line,
                           std::string(refusal.what()) + " (use --merge to allow it)");
    }
}

// Calls a function with the description in a file. An error names the file and the line.
template <class Call>
void with_description(const Options& options, const std::string& file, Call call) {
    std::size_t lines_before = 0;
    try {
        const sdp::Found found = sdp::find_description(read_file(file));
        lines_before = found.lines_before;
        std::error_code error;
        sdp::refuse_if(found.is_part && std::filesystem::equivalent(file, options.output, error), 0,
                       "--output would replace the message around the description");
        call(found);
    } catch (const sdp::Refusal& refusal) {
        throw std::runtime_error(sdp::place(display_name(file), refusal.line, lines_before) + ": " +
                                 refusal.what());
    }
}

Result run_answer(const Options& options, const std::string& text) {
    sdp::CallSide side(options.policy(), options.plan());
    if (!options.previous.empty()) {
        with_description(options, options.previous,
                         [&](const sdp::Found& found) { side.resume(found.text); });
    }
    sdp::Reply reply = side.answer(text, options.strictness());
    return {std::move(reply.text), std::move(reply.diagnostics), {std::move(reply.log)}};
}

void process(const Options& options, const std::string& file) {
    const auto run_command = options.command == LOG    ? run_log
                             : options.command == MOVE ? run_move
                                                       : run_answer;
    with_description(options, file, [&](const sdp::Found& found) {
        const Result result = run_command(options, found.text);
        const std::string name = display_name(file);
        const bool is_one_of_many = options.files.size() > 1;
        for (const sdp::Diagnostic& diagnostic : result.diagnostics) {
            print_error(printed(diagnostic, name, found.lines_before) + "\n");
        }
        if (!options.output.empty()) {
            write_file(options.output, result.output);
        } else if (is_one_of_many) {
            write_output("==> " + name + " <==\n" + sdp::with_newline(result.output));
        } else {
            write_output(result.output);
        }
        const std::string prefix = is_one_of_many ? name + ": " : "";
        for (const std::string& note : result.notes) {
            print_error(prefix + note);
        }
    });
}

Status run(Options& options) {
    Status worst = DONE;
    for (const std::string& file : options.files) {
        Status status = DONE;
        try {
            process(options, file);
        } catch (const std::exception& exception) {
            status = report(program_name, exception.what());
        }
        if (options.files.size() > 1) {
            print_error(display_name(file) + ": status " + std::to_string(status) + "\n");
        }
        worst = std::max(worst, status);
    }
    return worst;
}

}  // namespace

int main(int argc, char** argv) {
    return run_program({program_name, usage(), read_options, run}, argc, argv);
}
