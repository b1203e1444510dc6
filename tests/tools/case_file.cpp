#include "case_file.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <regex>

#include "adapter.h"
#include "sdp/strings.h"

namespace tools {

namespace {

const std::regex newline("\n");
const std::regex section_line(R"(-- (\S+) ?(.*))");
const std::regex separator(R"( \$/ )");
const std::regex piece(R"(\$(?:KEY(\d\d)|x([0-9a-f]{2})|SECRET)|[\s\S])");
const std::map<std::string, std::string> endings = {{"$LF", "\n"}, {"$CR", "\r"}, {"$END", ""}};
const std::regex origin("^v=0\r\no=- \\d+ 1 ");  // the number of an answerer's session is random
const std::string arrow = " => ";

bool begins(const std::string& line, const std::string& with) {
    return line.compare(0, with.size(), with) == 0;
}

bool is_alternative(const std::string& line) {
    return begins(line, "|");
}

Lines split(const std::string& text, const std::regex& at) {
    return {std::sregex_token_iterator(text.begin(), text.end(), at, -1), {}};
}

template <class Pieces>
std::string joined(const Pieces& pieces, const std::string& between) {
    std::string text;
    for (const auto& one : pieces) {
        text.append(text.empty() ? "" : between).append(one);
    }
    return text;
}

// Drops empty lines at the end.
void trim(Lines& lines) {
    while (!lines.empty() && lines.back().empty()) {
        lines.pop_back();
    }
}

std::string head(const std::string& address) {
    const std::string at =
        (address.find(':') == std::string::npos ? "IN IP4 " : "IN IP6 ") + address + "\r\n";
    return "v=0\r\no=- 1 1 " + at + "s=-\r\nc=" + at + "t=0 0\r\n";
}

std::string key(std::size_t size) {
    std::string bytes(size, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return base64(bytes);
}

}  // namespace

Section* Case::section(const std::string& of) {
    const auto at = std::find_if(sections.begin(), sections.end(),
                                 [&](const Section& one) { return one.name == of; });
    return at == sections.end() ? nullptr : &*at;
}

CaseFile parse(const std::string& text) {
    CaseFile file;
    Lines* block = &file.comment;
    std::size_t number = 0;
    for (const std::string& line : split(text, newline)) {
        ++number;
        if (begins(line, "== ")) {
            trim(*block);
            file.cases.push_back({line.substr(3), number, {}, {}});
            block = &file.cases.back().input;
        } else if (std::smatch part;
                   std::regex_match(line, part, section_line) && !file.cases.empty()) {
            trim(*block);
            file.cases.back().sections.push_back({part[1], part[2], {}});
            block = &file.cases.back().sections.back().lines;
        } else {
            block->push_back(line);
        }
    }
    trim(*block);
    return file;
}

std::string text_of(const CaseFile& file) {
    std::string text;
    const auto write = [&text](const Lines& lines) {
        for (const std::string& line : lines) {
            text += line + "\n";
        }
    };
    write(file.comment);
    for (const Case& one : file.cases) {
        write({(text.empty() ? "== " : "\n== ") + one.name});
        write(one.input);
        for (const Section& section : one.sections) {
            write({"-- " + section.name + (section.pattern.empty() ? "" : " " + section.pattern)});
            write(section.lines);
        }
    }
    return text;
}

std::vector<Lines> alternatives(const Lines& block) {
    const auto count = std::count_if(block.begin(), block.end(), is_alternative);
    std::vector<Lines> all(count == 0 ? 1 : static_cast<std::size_t>(count));
    auto next = all.begin();
    for (const std::string& line : block) {
        const bool is_one = is_alternative(line);
        const std::string text = is_one ? line.substr(0, line.find(arrow)) : line;
        const Lines pieces = text == "|" ? Lines{} : split(text.substr(is_one ? 2 : 0), separator);
        const auto begin = is_one ? next : all.begin();
        const auto end = is_one ? ++next : all.end();
        for (auto to = begin; to != end; ++to) {
            to->insert(to->end(), pieces.begin(), pieces.end());
        }
    }
    return all;
}

std::vector<Lines> answers(const Lines& block) {
    std::vector<Lines> all;
    for (const std::string& line : block) {
        if (is_alternative(line)) {
            const std::size_t at = line.find(arrow);
            all.push_back(at == std::string::npos
                              ? Lines{}
                              : split(line.substr(at + arrow.size()), separator));
        }
    }
    return all;
}

void write_answers(Lines& block, const std::vector<Lines>& texts) {
    auto text = texts.begin();
    for (std::string& line : block) {
        if (is_alternative(line)) {
            line.resize(std::min(line.find(arrow), line.size()));
            line += text->empty() ? "" : arrow + joined(*text, " $/ ");
            ++text;
        }
    }
}

Lines matching(const Lines& lines, const std::string& pattern) {
    if (pattern.empty()) {
        return lines;
    }
    const std::regex form(pattern);
    Lines found;
    for (const std::string& line : lines) {
        const Lines pieces(std::sregex_token_iterator(line.begin(), line.end(), form), {});
        const std::string text = joined(pieces, " ");
        if (!text.empty()) {
            found.push_back(text);
        }
    }
    return found;
}

void replace_all(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

std::string unescaped(const Lines& lines) {
    std::string text;
    for (std::string line : lines) {
        const auto ending = endings.find(line.substr(std::min(line.rfind('$'), line.size())));
        line.resize(line.size() - (ending == endings.end() ? 0 : ending->first.size()));
        for (std::sregex_iterator it(line.begin(), line.end(), piece), end; it != end; ++it) {
            const std::smatch& match = *it;
            text += match[1].matched ? key(std::stoul(match[1]))
                    : match[2].matched
                        ? std::string(1, static_cast<char>(std::stoul(match[2], nullptr, 16)))
                    : match.length() > 1 ? "SecretKeyMaterialThatNobodyMayEverSeeHere"
                                         : match.str();
        }
        text += ending == endings.end() ? "\r\n" : ending->second;
    }
    return text;
}

Lines escaped(const std::string& text) {
    Lines lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        const bool is_crlf = text.compare(end, 2, "\r\n") == 0;
        std::string line;
        for (std::size_t at = begin; at < end; ++at) {
            const char byte = text[at];
            const bool is_last_blank = byte == ' ' && at + 1 == end && is_crlf;
            const bool is_plain = byte >= ' ' && byte <= '~' && byte != '$' && !is_last_blank;
            line += is_plain ? std::string(1, byte) : "$x" + hexadecimal({byte});
        }
        for (const std::size_t size : {46U, 44U, 38U, 30U, 28U}) {
            replace_all(line, key(size), "$KEY" + std::to_string(size));
        }
        lines.push_back(line + (is_crlf              ? ""
                                : end == text.size() ? "$END"
                                : text[end] == '\n'  ? "$LF"
                                                     : "$CR"));
        begin = end + (is_crlf ? 2 : 1);
    }
    return lines;
}

std::string session(const Lines& lines) {
    const std::string text = unescaped(lines);
    return text.size() > 1 && text[0] != 'v' && text[1] == '=' ? head("10.0.0.1") + text : text;
}

std::string without_head(const std::string& text, const std::string& address) {
    const std::string usual = std::regex_replace(text, origin, "v=0\r\no=- 1 1 ");
    return begins(usual, head(address)) ? usual.substr(head(address).size()) : text;
}

Lines plain_lines(const std::string& text) {
    Lines lines;
    for (const std::string_view line : sdp::split(text, "\n")) {
        lines.push_back(joined(sdp::tokens(line), " "));
    }
    trim(lines);
    return lines;
}

Lines difference(const Lines& before, const Lines& after) {
    // The length of the longest common subsequence of what follows.
    std::vector<std::vector<std::size_t>> common(before.size() + 1,
                                                 std::vector<std::size_t>(after.size() + 1));
    for (std::size_t i = before.size(); i-- != 0;) {
        for (std::size_t k = after.size(); k-- != 0;) {
            common[i][k] = before[i] == after[k] ? common[i + 1][k + 1] + 1
                                                 : std::max(common[i + 1][k], common[i][k + 1]);
        }
    }
    Lines all;
    std::size_t i = 0;
    std::size_t k = 0;
    while (i != before.size() || k != after.size()) {
        if (i != before.size() && k != after.size() && before[i] == after[k]) {
            all.push_back("  " + before[i++]);
            ++k;
        } else if (k == after.size() ||
                   (i != before.size() && common[i + 1][k] >= common[i][k + 1])) {
            all.push_back("- " + before[i++]);
        } else {
            all.push_back("+ " + after[k++]);
        }
    }
    return all;
}

Lines changes(const std::string& before, const std::string& after, const std::string& address) {
    const std::string short_before = without_head(before, "10.0.0.1");
    const std::string short_after = without_head(after, address);
    const bool are_short = short_before != before && short_after != after;
    Lines all;
    std::size_t number = are_short ? 5 : 0;
    std::size_t gone = 0;  // how many of the last lines are gone and not replaced yet
    for (const std::string& line : difference(escaped(are_short ? short_before : before),
                                              escaped(are_short ? short_after : after))) {
        if (line[0] == '-') {
            all.push_back("-" + std::to_string(number + ++gone) + ":" + line.substr(1));
            continue;
        }
        ++number;
        if (line[0] == ' ') {
            gone = 0;
        } else if (gone != 0) {
            all[all.size() - gone--] = std::to_string(number) + ":" + line.substr(1);
        } else {
            all.push_back("+" + std::to_string(number) + ":" + line.substr(1));
        }
    }
    return all;
}

}  // namespace tools
