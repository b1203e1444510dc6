#include "case_file.h"

#include <algorithm>
#include <regex>
#include <sstream>

#include "adapter.h"

namespace tools {

namespace {

bool begins(const std::string& line, const std::string& with) {
    return line.compare(0, with.size(), with) == 0;
}

Lines split(const std::string& text) {
    Lines lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

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
    std::string bytes;
    while (bytes.size() < size) {
        bytes += static_cast<char>(bytes.size());
    }
    return base64(bytes);
}

// The piece that a "$" begins, and how long it is written.
std::string piece(const std::string& line, std::size_t at, std::size_t& size) {
    static const std::regex form(R"(\$(?:KEY(\d\d)|x([0-9a-f]{2})|SECRET))");
    std::smatch match;
    if (!std::regex_search(line.begin() + static_cast<std::ptrdiff_t>(at), line.end(), match, form,
                           std::regex_constants::match_continuous)) {
        throw std::invalid_argument("unknown piece: " + line.substr(at));
    }
    size = static_cast<std::size_t>(match.length());
    if (match[1].matched) {
        return key(std::stoul(match[1]));
    }
    return match[2].matched ? std::string(1, static_cast<char>(std::stoul(match[2], nullptr, 16)))
                            : "SecretKeyMaterialThatNobodyMayEverSeeHere";
}

}  // namespace

const Section* Case::section(const std::string& of) const {
    const auto at = std::find_if(sections.begin(), sections.end(),
                                 [&](const Section& section) { return section.name == of; });
    return at == sections.end() ? nullptr : &*at;
}

CaseFile parse(const std::string& text) {
    CaseFile file;
    Lines* block = &file.comment;
    std::size_t number = 0;
    for (const std::string& line : split(text)) {
        ++number;
        if (begins(line, "== ")) {
            trim(*block);
            file.cases.push_back({line.substr(3), number, {}, {}});
            block = &file.cases.back().input;
        } else if (begins(line, "-- ") && !file.cases.empty()) {
            trim(*block);
            const std::size_t end = std::min(line.find(' ', 3), line.size());
            file.cases.back().sections.push_back(
                {line.substr(3, end - 3), line.substr(std::min(end + 1, line.size())), {}});
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
        write({text.empty() ? "== " + one.name : "\n== " + one.name});
        write(one.input);
        for (const Section& section : one.sections) {
            write({"-- " + section.name + (section.word.empty() ? "" : " " + section.word)});
            write(section.lines);
        }
    }
    return text;
}

std::vector<Lines> alternatives(const Lines& block) {
    const auto is_first = [](const std::string& line) { return begins(line, "|"); };
    const auto first = std::find_if(block.begin(), block.end(), is_first);
    const auto last = std::find_if(first, block.end(), [&](const std::string& line) {
        return !is_first(line) && !begins(line, "  ");
    });
    if (first == last) {
        return {block};
    }
    std::vector<Lines> all;
    for (auto line = first; line != last; ++line) {
        if (is_first(*line)) {
            all.emplace_back(block.begin(), first);
        }
        if (*line != "|") {
            all.back().push_back(line->substr(2));
        }
    }
    for (Lines& one : all) {
        one.insert(one.end(), last, block.end());
    }
    return all;
}

Lines joined(const std::vector<Lines>& blocks) {
    if (std::all_of(blocks.begin(), blocks.end(),
                    [&](const Lines& block) { return block == blocks.front(); })) {
        return blocks.front();
    }
    Lines all;
    for (const Lines& block : blocks) {
        const char* mark = "| ";
        for (const std::string& line : block) {
            all.push_back(mark + line);
            mark = "  ";
        }
        if (block.empty()) {
            all.emplace_back("|");
        }
    }
    return all;
}

std::string unescaped(const Lines& lines) {
    std::string text;
    for (std::string line : lines) {
        std::string ending = "\r\n";
        for (const auto& [mark, bytes] : {std::pair("$LF", "\n"), {"$CR", "\r"}, {"$END", ""}}) {
            const std::string name = mark;
            if (line.size() >= name.size() && line.substr(line.size() - name.size()) == name) {
                ending = bytes;
                line.resize(line.size() - name.size());
                break;
            }
        }
        for (std::size_t at = 0; at < line.size(); ++at) {
            std::size_t size = 1;
            text += line[at] == '$' ? piece(line, at, size) : std::string(1, line[at]);
            at += size - 1;
        }
        text += ending;
    }
    return text;
}

Lines escaped(const std::string& text) {
    static const std::vector<std::pair<std::string, std::string>> keys = {
        {key(46), "$KEY46"}, {key(44), "$KEY44"}, {key(30), "$KEY30"}, {key(28), "$KEY28"}};
    Lines lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        std::string line;
        for (std::size_t at = begin; at < end; ++at) {
            const char byte = text[at];
            const bool is_plain = byte > ' ' && byte <= '~' && byte != '$';
            const bool is_inner_blank = byte == ' ' && at + 1 != end;
            constexpr char digits[] = "0123456789abcdef";
            const auto value = static_cast<unsigned char>(byte);
            line += is_plain || is_inner_blank
                        ? std::string(1, byte)
                        : std::string("$x") + digits[value / 16] + digits[value % 16];
        }
        for (const auto& [written, name] : keys) {
            for (std::size_t at = line.find(written); at != std::string::npos;
                 at = line.find(written)) {
                line.replace(at, written.size(), name);
            }
        }
        const bool is_crlf = text.compare(end, 2, "\r\n") == 0;
        begin = end + (is_crlf ? 2 : 1);
        lines.push_back(line + (is_crlf              ? ""
                                : end == text.size() ? "$END"
                                : text[end] == '\n'  ? "$LF"
                                                     : "$CR"));
    }
    return lines;
}

std::string with_head(const std::string& text, const std::string& address) {
    const bool is_piece = text.size() > 1 && text[0] != 'v' && text[1] == '=';
    return is_piece ? head(address) + text : text;
}

std::string without_head(const std::string& text, const std::string& address) {
    // The number of the session is a random one.
    const std::string usual =
        std::regex_replace(text, std::regex("^v=0\r\no=- \\d+ 1 "), "v=0\r\no=- 1 1 ");
    return begins(usual, head(address)) ? usual.substr(head(address).size()) : text;
}

Lines plain_lines(const std::string& text) {
    Lines lines = split(text);
    for (std::string& line : lines) {
        line = std::regex_replace(line, std::regex("[ \t]+"), " ");
        line.erase(0, line.find_first_not_of(' '));
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
    }
    return lines;
}

std::string difference(const Lines& expected, const Lines& found) {
    // The length of the longest common subsequence of what follows.
    std::vector<std::vector<std::size_t>> common(expected.size() + 1,
                                                 std::vector<std::size_t>(found.size() + 1));
    for (std::size_t i = expected.size(); i-- != 0;) {
        for (std::size_t k = found.size(); k-- != 0;) {
            common[i][k] = expected[i] == found[k] ? common[i + 1][k + 1] + 1
                                                   : std::max(common[i + 1][k], common[i][k + 1]);
        }
    }
    std::string text;
    std::size_t i = 0;
    std::size_t k = 0;
    while (i != expected.size() || k != found.size()) {
        if (i != expected.size() && k != found.size() && expected[i] == found[k]) {
            text += "    " + expected[i++] + "\n";
            ++k;
        } else if (k == found.size() ||
                   (i != expected.size() && common[i + 1][k] >= common[i][k + 1])) {
            text += "  - " + expected[i++] + "\n";
        } else {
            text += "  + " + found[k++] + "\n";
        }
    }
    return text;
}

}  // namespace tools
