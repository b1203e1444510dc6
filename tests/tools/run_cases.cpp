// Runs cases (see cases/README.md) and samples: compares what the tools make of each description
// with what is written down, and checks the properties (see properties.h).
//
// usage: run_cases [--update] FILE.txt... SAMPLE.sdp... DIRECTORY...
//
// A sample, NAME.sdp, has its log in NAME.log, its warnings in NAME.warnings and the refusal of a
// move in NAME.refused. A sample with "answer" in its name is read as an answer.
//
// --update writes down what the tools make of the descriptions. A case without sections gets
// "refused", or "log" and "warnings".

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>

#include "adapter.h"
#include "case_file.h"
#include "cli/files.h"
#include "properties.h"

namespace {

namespace fs = std::filesystem;
using tools::Lines;

// --- What the tools make of a description --------------------------------------------------------

// A description, and what it is run with.
struct Run : tools::Options {
    std::string text;
    std::size_t lines_before = 0;  // in a message
    tools::Diagnostics refusal;
    std::string previous;

    explicit Run(const std::string& input) : text(input) {
        const auto found = tools::find(input);
        refusal = found.refusal;
        if (!found.is_refused()) {
            text = found.value.text;
            lines_before = found.value.lines_before;
            refusal = reading().refusal;
        }
    }
    tools::Result<tools::Read> reading() const {
        return tools::read(text, journey.options.role, tools::Strictness::LENIENT);
    }
    Lines shown(const tools::Diagnostics& diagnostics) const {
        return tools::shown(diagnostics, lines_before);
    }
};

Lines passed_through(const Run& run) {
    const std::string log = run.reading().value.log;
    const std::size_t at = log.find("Pass-through=");
    return tools::escaped(log.substr(std::min(log.find('\n', at), log.size() - 1) + 1));
}

Lines moved(const Run& run) {
    const auto moved = tools::move(run.text, run.journey);
    if (moved.is_refused()) {
        return {"refused: " + run.shown(moved.refusal)[0]};
    }
    Lines lines = tools::changes(run.text, moved.value.text, run.journey.plan.address.text());
    if (!moved.value.old_address) {
        lines.emplace_back("no way back");
    }
    return lines;
}

Lines answer(const Run& run) {
    const auto answered = tools::answer(run.text, run.side);
    if (answered.is_refused()) {
        return {"refused: " + run.shown(answered.refusal)[0]};
    }
    const sdp::MediaAddress& address =
        run.side.plan ? run.side.plan->address : run.side.policy.address;
    Lines lines = tools::escaped(tools::without_head(answered.value.text, address.text()));
    std::map<std::size_t, int> counts;
    for (const std::string& key : answered.value.keys) {
        const int count = ++counts[key.size()];
        const std::string name =
            "$FRESH" + std::to_string(key.size()) + (count == 1 ? "" : "." + std::to_string(count));
        for (std::string& line : lines) {
            tools::replace_all(line, tools::base64(key), name);
        }
    }
    return lines;
}

Lines section(const std::string& name, const Run& run) {
    using Call = Lines (*)(const Run&);
    static const std::map<std::string, Call> calls = {
        {"refused",
         [](const Run& of) { return of.refusal.empty() ? Lines{"no"} : of.shown(of.refusal); }},
        {"warnings", [](const Run& of) { return of.shown(of.reading().value.warnings); }},
        {"log", [](const Run& of) { return tools::plain_lines(of.reading().value.log); }},
        {"passed", passed_through},
        {"crypto", [](const Run& of) { return tools::escaped(of.reading().value.crypto); }},
        {"changed",
         [](const Run& of) {
             return Lines{tools::is_changed(of.previous, of.text) ? "yes" : "no"};
         }},
        {"moved", moved},
        {"move-warnings",
         [](const Run& of) {
             return of.shown(tools::move(of.text, of.journey).value.diagnostics);
         }},
        {"answer", answer},
        {"rejected",
         [](const Run& of) { return of.shown(tools::answer(of.text, of.side).value.rejections); }},
    };
    const auto call = calls.find(name);
    if (call == calls.end()) {
        throw std::invalid_argument("unknown section '" + name + "'");
    }
    return call->second(run);
}

std::string broken_property(const Run& run) {
    tools::Counts counts;
    try {
        tools::check_properties(run.text, counts);
        tools::check_move(run.text, run.journey, counts);
        tools::check_answer(run.text, run.side, counts);
        return "";
    } catch (const tools::Broken& broken) {
        return broken.what() + std::string("\n");
    }
}

std::string diff(const std::string& title, const Lines& expected, const Lines& found) {
    std::string text = "-- " + title + "\n";
    for (const std::string& line : tools::difference(expected, found)) {
        text += "  " + line + "\n";
    }
    return expected == found ? "" : text;
}

// --- Files ---------------------------------------------------------------------------------------

bool is_update = false;
unsigned passed = 0;
unsigned failed = 0;

void count(const std::string& place, const std::string& problem) {
    ++(problem.empty() ? passed : failed);
    std::cout << (problem.empty() ? "" : place + "\n" + problem + "\n");
}

std::vector<Run> runs_of(tools::Case& one) {
    const auto alternatives_of = [&one](const char* section) {
        return tools::alternatives(one.section(section) ? one.section(section)->lines : Lines{});
    };
    std::vector<Run> runs;
    for (const Lines& input : tools::alternatives(one.input)) {
        for (const Lines& options : alternatives_of("with")) {
            Run run(tools::session(input));
            run.previous = tools::session(alternatives_of("previous").front());
            for (const std::string& option : options) {
                run.add(option);
            }
            runs.push_back(std::move(run));
        }
    }
    return runs;
}

// Compares a section of a case. The first one can have different texts for the alternatives of the
// block before it, behind them.
void run_section(tools::Section& part, Lines& block, bool is_first, const std::vector<Run>& runs,
                 std::vector<std::string>& problems) {
    std::vector<Lines> found;
    for (const Run& run : runs) {
        found.push_back(tools::matching(section(part.name, run), part.pattern));
    }
    if (is_update) {
        const bool are_equal = std::equal(found.begin() + 1, found.end(), found.begin());
        const bool are_behind = is_first && !are_equal;
        part.lines = are_behind ? Lines{} : found.front();
        if (is_first) {
            tools::write_answers(block, are_behind ? found : std::vector<Lines>(found.size()));
        }
    }
    std::vector<Lines> expected(runs.size(), part.lines);
    const std::vector<Lines> behind = tools::answers(block);
    if (is_first && behind != std::vector<Lines>(behind.size())) {
        if (!part.lines.empty() || behind.size() != runs.size()) {
            throw std::invalid_argument("texts behind the alternatives and in other places");
        }
        expected = behind;
    }
    for (std::size_t i = 0; i < runs.size(); ++i) {
        problems[i] += diff(part.name + " " + part.pattern, expected[i], found[i]);
    }
}

void run_case(const std::string& place, tools::Case& one) {
    const std::vector<Run> runs = runs_of(one);
    if (one.sections.empty() && is_update) {
        one.sections = {{runs.front().refusal.empty() ? "log" : "refused", "", {}}};
        if (!runs.front().reading().value.warnings.empty()) {
            one.sections.push_back({"warnings", "", {}});
        }
    }
    std::vector<std::string> problems;
    std::transform(runs.begin(), runs.end(), std::back_inserter(problems), broken_property);
    tools::Section* const with = one.section("with");
    Lines& block = tools::answers(one.input).empty() && with != nullptr ? with->lines : one.input;
    bool is_first = true;
    for (tools::Section& part : one.sections) {
        if (part.name != "with" && part.name != "previous") {
            run_section(part, block, is_first, runs, problems);
            is_first = false;
        }
    }
    if (is_first) {
        throw std::invalid_argument("the case has no sections (use --update to add them)");
    }
    for (std::size_t i = 0; i < runs.size(); ++i) {
        count(place + (runs.size() == 1 ? "" : " (alternative " + std::to_string(i + 1) + ")"),
              problems[i]);
    }
}

void run_cases(const fs::path& path) {
    const std::string before = read_file(path);
    tools::CaseFile file = tools::parse(before);
    for (tools::Case& one : file.cases) {
        const std::string place = path.string() + ":" + std::to_string(one.line) + ": " + one.name;
        try {
            run_case(place, one);
        } catch (const std::exception& error) {
            count(place, error.what() + std::string("\n"));
        }
    }
    const std::string after = tools::text_of(file);
    if (is_update && after != before) {
        write_file(path, after);
    }
}

void run_sample(const fs::path& path) {
    Run run(read_file(path));
    if (path.stem().string().find("answer") != std::string::npos) {
        run.add("answer");
    }
    const tools::Read reading = run.reading().value;
    const tools::Diagnostics refusal = tools::move(run.text, run.journey).refusal;
    std::string warnings;
    for (const sdp::Diagnostic& warning : reading.warnings) {
        warnings += sdp::printed(warning, "").substr(1) + "\n";
    }
    const std::pair<const char*, std::string> texts[] = {
        {".log", reading.log},
        {".warnings", warnings},
        {".refused", refusal.empty() ? "" : run.shown(refusal)[0] + "\n"}};
    std::string problem = broken_property(run);
    for (const auto& [extension, text] : texts) {
        const fs::path file = fs::path(path).replace_extension(extension);
        if (is_update) {
            text.empty() ? void(fs::remove(file)) : write_file(file, text);
        }
        const std::string expected = fs::exists(file) ? read_file(file) : "";
        problem += diff(file, tools::escaped(expected), tools::escaped(text));
    }
    count(path.string(), problem);
}

void run_path(const fs::path& path) {
    if (fs::is_directory(path)) {
        for (const fs::path& entry : std::set<fs::path>(fs::directory_iterator(path), {})) {
            if (entry.extension() == ".sdp") {
                run_sample(entry);
            }
        }
    } else {
        path.extension() == ".sdp" ? run_sample(path) : run_cases(path);
    }
}

}  // namespace

int main(int argc, char** argv) {
    is_update = argc > 1 && argv[1] == std::string("--update");
    for (const std::string& path :
         std::vector<std::string>(argv + (is_update ? 2 : 1), argv + argc)) {
        try {
            run_path(path);
        } catch (const std::exception& error) {
            count(path, error.what() + std::string("\n"));
        }
    }
    std::cout << passed << " passed, " << failed << " failed" << std::endl;
    return passed != 0 && failed == 0 ? 0 : 1;
}
