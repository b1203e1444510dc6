// Runs cases (see case_file.h) and samples: what the tools make of each has to be what is written
// down, and the properties have to hold (see properties.h).
//
// usage: run_cases [--update] FILE.txt... SAMPLE.sdp... DIRECTORY...
//
// Beside NAME.sdp stand its log, NAME.log; the warnings about it, NAME.warnings, if there are any;
// and why it cannot move, NAME.refused, if it cannot. A sample with "answer" in its name is one.
//
// --update writes down what the tools make of them. A case without sections gets "refused", or
// "log" and "warnings".

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "adapter.h"
#include "case_file.h"
#include "properties.h"

namespace {

namespace fs = std::filesystem;
using tools::Case;
using tools::Lines;
using tools::Message;

std::string read_file(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    if (!(text << in.rdbuf()) && fs::file_size(path) != 0) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return text.str();
}

// The whole file or nothing of it.
void write_file(const fs::path& path, const std::string& text) {
    const fs::path part = path.string() + ".part";
    std::ofstream(part, std::ios::binary) << text << std::flush;
    if (read_file(part) != text) {
        throw std::runtime_error("cannot write " + part.string());
    }
    fs::rename(part, path);
}

// --- What the tools make of a description --------------------------------------------------------

// A description, and what it is run with.
struct Run {
    std::string input;
    std::string previous;
    tools::Role role = tools::Role::OFFER;
    tools::Move move;
    tools::Policy policy;

    std::string text() const { return tools::find(input).value.text; }
    tools::Result<tools::Read> reading() const {
        return tools::read(text(), role, tools::Strictness::LENIENT);
    }
    tools::Result<tools::Moved> moved() const { return tools::move(text(), move); }
    tools::Result<tools::Answered> answered() const { return tools::answer(text(), policy); }
};

Lines shown(const std::vector<Message>& messages) {
    Lines lines;
    for (const Message& message : messages) {
        lines.push_back(std::to_string(message.line) + ": " + message.text);
    }
    return lines;
}

template <class T>
Lines refusal(const tools::Result<T>& result) {
    return result.refusal ? shown({*result.refusal}) : Lines{"no"};
}

// What a function makes of a value, or the refusal.
template <class T, class Call>
Lines unless_refused(const tools::Result<T>& result, Call call) {
    return result.refusal ? Lines{"refused: " + shown({*result.refusal})[0]} : call(result.value);
}

tools::Plan plan_of(std::istream& words) {
    tools::Plan plan;
    words >> plan.address >> plan.audio_port >> plan.fax_port;
    return plan;
}

void add_options(Run& run, const Lines& lines) {
    for (const std::string& line : lines) {
        std::istringstream words(line);
        std::string option;
        words >> option;
        if (option == "answer") {
            run.role = run.move.role = tools::Role::ANSWER;
        } else if (option == "move") {
            run.move.plan = plan_of(words);
            const std::set<std::string> rest(std::istream_iterator<std::string>(words), {});
            run.move.back = rest.count("back") != 0;
            run.move.merge = rest.count("merge") != 0;
            run.move.strictness =
                rest.count("strict") != 0 ? tools::Strictness::STRICT : tools::Strictness::LENIENT;
        } else if (option == "local") {
            words >> run.policy.local;
        } else if (option == "public") {
            run.policy.public_plan = plan_of(words);
        } else if (option == "codecs") {
            run.policy.codecs.assign(std::istream_iterator<std::string>(words), {});
        } else if (option == "suites") {
            run.policy.suites.assign(std::istream_iterator<std::string>(words), {});
        } else if (option == "no-fax") {
            run.policy.fax = false;
        } else {
            throw std::invalid_argument("unknown option: " + line);
        }
    }
}

Lines found(const Run& run) {
    return unless_refused(tools::find(run.input), [](const tools::Found& found) {
        return Lines{"after line " + std::to_string(found.lines_before) +
                     (found.is_part ? " of a message" : "")};
    });
}

Lines answer(const Run& run) {
    return unless_refused(run.answered(), [&run](const tools::Answered& answered) {
        const std::string address =
            run.policy.public_plan ? run.policy.public_plan->address : run.policy.local;
        std::string text = tools::without_head(answered.text, address);
        std::map<std::size_t, int> counts;
        for (const std::string& key : answered.keys) {
            const std::string name =
                "\x1f"
                "FRESH" +
                std::to_string(key.size());
            const int count = ++counts[key.size()];
            const std::string written = tools::base64(key);
            const std::size_t at = text.find(written);
            if (at != std::string::npos) {
                text.replace(at, written.size(),
                             name + (count == 1 ? "" : "." + std::to_string(count)));
            }
        }
        Lines lines = tools::escaped(text);
        for (std::string& line : lines) {
            const std::size_t at = line.find("$x1fFRESH");
            if (at != std::string::npos) {
                line.erase(at + 1, 3);
            }
        }
        return lines;
    });
}

const std::map<std::string, std::function<Lines(const Run&)>> sections = {
    {"found", found},
    {"refused",
     [](const Run& run) {
         const auto found = tools::find(run.input);
         return found.refusal ? refusal(found) : refusal(run.reading());
     }},
    {"warnings", [](const Run& run) { return shown(run.reading().value.warnings); }},
    {"log",
     [](const Run& run) {
         return unless_refused(run.reading(), [](const tools::Read& reading) {
             return tools::plain_lines(reading.log);
         });
     }},
    {"crypto",
     [](const Run& run) {
         Lines lines;
         for (const std::string& crypto : run.reading().value.cryptos) {
             lines.push_back(tools::escaped(crypto + "\r\n")[0]);
         }
         return lines;
     }},
    {"changed",
     [](const Run& run) {
         return Lines{tools::is_changed(run.previous, run.text()) ? "yes" : "no"};
     }},
    {"moved",
     [](const Run& run) {
         return unless_refused(run.moved(), [&run](const tools::Moved& moved) {
             return tools::escaped(tools::without_head(moved.text, run.move.plan.address));
         });
     }},
    {"move-refused", [](const Run& run) { return refusal(run.moved()); }},
    {"move-warnings", [](const Run& run) { return shown(run.moved().value.warnings); }},
    {"way-back", [](const Run& run) { return Lines{run.moved().value.old_address}; }},
    {"answer", answer},
    {"rejected", [](const Run& run) { return shown(run.answered().value.rejections); }},
    {"answer-log", [](const Run& run) { return tools::plain_lines(run.answered().value.log); }},
};

Lines lines_with(const Lines& lines, const std::string& word) {
    Lines found;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                 [&](const std::string& line) { return line.find(word) != std::string::npos; });
    return found;
}

// --- Cases ---------------------------------------------------------------------------------------

// Runs descriptions and counts.
class Runner {
public:
    explicit Runner(bool updates) : is_update(updates) {}

    void run_file(const fs::path& path) {
        if (fs::is_directory(path)) {
            std::set<fs::path> files;
            for (const auto& entry : fs::directory_iterator(path)) {
                if (entry.path().extension() == ".sdp") {
                    files.insert(entry.path());
                }
            }
            std::for_each(files.begin(), files.end(), [this](const auto& file) { run_file(file); });
        } else if (path.extension() == ".sdp") {
            run_sample(path);
        } else {
            run_cases(path);
        }
    }

    // Returns whether there was something to run, and nothing failed.
    bool report() const {
        std::cout << passed << " passed, " << failed << " failed" << std::endl;
        return passed != 0 && failed == 0;
    }

private:
    void run_cases(const fs::path& path) {
        const std::string before = read_file(path);
        tools::CaseFile file = tools::parse(before);
        for (Case& one : file.cases) {
            place = path.string() + ":" + std::to_string(one.line) + ": " + one.name;
            run_case(one);
        }
        const std::string after = text_of(file);
        if (is_update && after != before) {
            write_file(path, after);
        }
    }

    void run_case(Case& one) {
        std::vector<Run> runs = runs_of(one);
        if (one.sections.empty() && is_update) {
            const auto reading = runs.front().reading();
            one.sections = {{reading.refusal ? "refused" : "log", "", {}}};
            if (!reading.refusal && !reading.value.warnings.empty()) {
                one.sections.push_back({"warnings", "", {}});
            }
        }
        problems.assign(runs.size(), "");
        for (std::size_t i = 0; i < runs.size(); ++i) {
            problems[i] += broken_property(runs[i]);
        }
        bool is_compared = false;
        for (tools::Section& section : one.sections) {
            if (section.name != "with" && section.name != "previous") {
                is_compared = true;
                compare(section, runs);
            }
        }
        for (std::size_t i = 0; i < runs.size(); ++i) {
            count(is_compared ? problems[i] : "  nothing is compared (--update writes it down)\n",
                  runs[i].input);
        }
    }

    static std::vector<Run> runs_of(const Case& one) {
        std::vector<Run> runs;
        const tools::Section* const with = one.section("with");
        const tools::Section* const previous = one.section("previous");
        for (const Lines& input : tools::alternatives(one.input)) {
            for (const Lines& options :
                 tools::alternatives(with == nullptr ? Lines{} : with->lines)) {
                Run run;
                run.input = tools::with_head(tools::unescaped(input), "10.0.0.1");
                if (previous != nullptr) {
                    run.previous = tools::with_head(tools::unescaped(previous->lines), "10.0.0.1");
                }
                add_options(run, options);
                runs.push_back(std::move(run));
            }
        }
        return runs;
    }

    static std::string broken_property(const Run& run) {
        tools::Counts counts;
        try {
            const std::string text = run.text();
            tools::check_properties(text, counts);
            tools::check_move(text, run.move, counts);
            tools::check_answer(text, run.policy, counts);
            return "";
        } catch (const tools::Broken& broken) {
            return std::string("  ") + broken.what() + "\n";
        }
    }

    void compare(tools::Section& section, const std::vector<Run>& runs) {
        const auto make = sections.find(section.name);
        if (make == sections.end()) {
            throw std::invalid_argument(place + ": unknown section '" + section.name + "'");
        }
        std::vector<Lines> found;
        for (const Run& run : runs) {
            found.push_back(lines_with(make->second(run), section.word));
        }
        if (is_update) {
            section.lines = tools::joined(found);
            return;
        }
        std::vector<Lines> expected = tools::alternatives(section.lines);
        if (expected.size() == 1) {
            expected.resize(runs.size(), expected.front());
        }
        if (expected.size() != runs.size()) {
            throw std::invalid_argument(place + ": '" + section.name + "' has " +
                                        std::to_string(expected.size()) + " alternatives for " +
                                        std::to_string(runs.size()));
        }
        for (std::size_t i = 0; i < runs.size(); ++i) {
            if (found[i] != expected[i]) {
                problems[i] += "-- " + section.name + " " + section.word + "\n" +
                               tools::difference(expected[i], found[i]);
            }
        }
    }

    void count(const std::string& problem, const std::string& input) {
        if (problem.empty()) {
            ++passed;
            return;
        }
        ++failed;
        std::cout << place << "\n";
        for (const std::string& line : tools::escaped(input)) {
            std::cout << "    " << line << "\n";
        }
        std::cout << problem << "\n";
    }

    // --- Samples ---------------------------------------------------------------------------------

    void run_sample(const fs::path& path) {
        place = path.string();
        Run run;
        run.input = read_file(path);
        if (path.stem().string().find("answer") != std::string::npos) {
            run.role = run.move.role = tools::Role::ANSWER;
        }
        const auto reading = run.reading();
        const auto moved = run.moved();
        std::string warnings;
        for (const Message& warning : reading.value.warnings) {
            warnings += std::to_string(warning.line) + ": warning: " + warning.text + "\n";
        }
        problems.assign(1, broken_property(run));
        compare_file(path, ".log", reading.value.log);
        compare_file(path, ".warnings", warnings);
        compare_file(path, ".refused", moved.refusal ? refusal(moved).front() + "\n" : "");
        count(problems.front(), "");
    }

    // An empty text has no file.
    void compare_file(fs::path path, const std::string& extension, const std::string& text) {
        path.replace_extension(extension);
        const std::string expected = fs::exists(path) ? read_file(path) : "";
        if (expected == text) {
            return;
        }
        if (!is_update) {
            problems.front() +=
                path.string() + "\n" +
                tools::difference(tools::plain_lines(expected), tools::plain_lines(text));
        } else if (text.empty()) {
            fs::remove(path);
        } else {
            write_file(path, text);
        }
    }

    bool is_update;
    std::string place;
    std::vector<std::string> problems;  // of each description of a case
    unsigned passed = 0;
    unsigned failed = 0;
};

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool is_update = !arguments.empty() && arguments.front() == "--update";
    arguments.erase(arguments.begin(), arguments.begin() + (is_update ? 1 : 0));
    Runner runner(is_update);
    try {
        for (const std::string& file : arguments) {
            runner.run_file(file);
        }
    } catch (const std::exception& error) {
        std::cout << error.what() << "\n";
        runner.report();
        return 1;
    }
    return runner.report() ? 0 : 1;
}
