// qova-sdp: what a call-control application does with libqova, on real session descriptions.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "answer/call_side.h"
#include "cli/files.h"
#include "cli/options.h"
#include "move/mover.h"
#include "sdp/diagnostics.h"
#include "sdp/message.h"
#include "sdp/reader.h"
#include "sdp/strings.h"

namespace {

void print_error(const std::string& text) {
    std::fputs(text.c_str(), stderr);
}

// One word of a shell's command line, and no option.
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
    return is_plain && quoted.size() > 2 ? quoted.substr(1, quoted.size() - 2) : shown(quoted);
}

std::string way_back(const Options& options, const sdp::Move& move) {
    if (!move.old_address) {
        return "none: no move restores the description";
    }
    return std::string("qova-sdp move ") + (options.back ? "" : "--back ") +
           (options.answer ? "--answer " : "") + "--address " + move.old_address->text() +
           " --audio-port " + std::to_string(*options.audio_port) + " --fax-port " +
           std::to_string(*options.fax_port) + " " + word(options.output.value_or("-"));
}

// What a file's command prints.
struct Result {
    std::string output;
    sdp::Diagnostics diagnostics;
    std::vector<std::string> notes;  // for standard error
};

Result run_log(const Options& options, const std::string& text) {
    const auto role = options.answer ? sdp::Role::ANSWER : sdp::Role::OFFER;
    sdp::Reading reading = sdp::read(sdp::Description(text), role, strictness_of(options));
    return {sdp::with_newline(*reading.capability), std::move(reading.diagnostics), {}};
}

Result run_move(const Options& options, const std::string& text) {
    const sdp::Plan plan = {*options.address, *options.audio_port, *options.fax_port};
    const auto role = options.answer ? sdp::Role::ANSWER : sdp::Role::OFFER;
    sdp::Move move = [&] {
        try {
            return sdp::move(text, plan,
                             {options.back, options.merge, role, strictness_of(options)});
        } catch (const sdp::SeveralAddresses& refusal) {
            throw sdp::Refusal(refusal.line,
                               std::string(refusal.what()) + " (use --merge to allow it)");
        }
    }();
    std::vector<std::string> notes;
    if (options.verbose) {
        notes.push_back("before: " + sdp::with_newline(move.log_before));
    }
    notes.push_back("after: " + sdp::with_newline(move.log_after));
    notes.push_back("back: " + way_back(options, move) + "\n");
    return {std::move(move.text), std::move(move.diagnostics), std::move(notes)};
}

// Lets a call use a file's description. Throws what names the file and the line of a Refusal.
template <class Call>
void with_description(const std::string& file, Call call) {
    std::size_t lines_before = 0;
    try {
        const sdp::Found found = sdp::find_description(read_file(file));
        lines_before = found.lines_before;
        call(found);
    } catch (const sdp::Refusal& refusal) {
        const std::size_t line = refusal.line == 0 ? 0 : lines_before + refusal.line;
        throw std::runtime_error(sdp::place(display_name(file), line) + ": " + refusal.what());
    }
}

// A message is not replaced by its description.
void check_output(const Options& options, const std::string& file, const sdp::Found& found) {
    std::error_code error;
    if (found.is_part && options.output &&
        std::filesystem::equivalent(file, *options.output, error)) {
        throw sdp::Refusal(0, "the description is a part of it, and --output would replace it all");
    }
}

Result run_answer(const Options& options, const std::string& text) {
    sdp::CallSide side(policy_of(options), public_plan_of(options));
    if (options.previous) {
        with_description(*options.previous, [&](const sdp::Found& found) {
            check_output(options, *options.previous, found);
            side.resume(found.text);
        });
    }
    sdp::Reply reply = side.answer(text, strictness_of(options));
    return {std::move(reply.text), std::move(reply.diagnostics), {std::move(reply.log)}};
}

Result result_of(const Options& options, const std::string& text) {
    return options.command == "log"    ? run_log(options, text)
           : options.command == "move" ? run_move(options, text)
                                       : run_answer(options, text);
}

void process(const Options& options, const std::string& file) {
    const bool is_one_of_many = options.files.size() > 1;
    with_description(file, [&](const sdp::Found& found) {
        check_output(options, file, found);
        const Result result = result_of(options, found.text);
        for (const sdp::Diagnostic& diagnostic : result.diagnostics) {
            print_error(sdp::printed(diagnostic, display_name(file), found.lines_before) + "\n");
        }
        if (options.output) {
            write_file(*options.output, result.output);
        } else if (is_one_of_many) {
            write_output("==> " + display_name(file) + " <==\n" + sdp::with_newline(result.output));
        } else {
            write_output(result.output);
        }
        for (const std::string& note : result.notes) {
            print_error((is_one_of_many ? display_name(file) + ": " : "") + note);
        }
    });
}

Status run(const Options& options) {
    if (options.help || options.version) {
        write_output(options.help ? usage : version_of("qova-sdp"));
        return DONE;
    }
    Status worst = DONE;
    for (const std::string& file : options.files) {
        Status status = DONE;
        try {
            process(options, file);
        } catch (const std::exception& exception) {
            status = report("qova-sdp", FAILED, exception.what());
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
    return run_program("qova-sdp", [&] {
        return run(read_options({argv + std::min(1, argc), argv + argc}));
    });
}
