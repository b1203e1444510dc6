// Files of cases: descriptions, and what the tools make of them. cases/README.md has the format.

#ifndef QOVA_TESTS_TOOLS_CASE_FILE_H
#define QOVA_TESTS_TOOLS_CASE_FILE_H

#include <cstddef>
#include <string>
#include <vector>

namespace tools {

using Lines = std::vector<std::string>;

struct Section {
    std::string name;
    std::string pattern;  // only its matches are compared; empty: all
    Lines lines;
};

struct Case {
    std::string name;
    std::size_t line;  // in its file
    Lines input;
    std::vector<Section> sections;

    Section* section(const std::string& of);  // null if there is none
};

struct CaseFile {
    Lines comment;
    std::vector<Case> cases;
};
CaseFile parse(const std::string& text);
std::string text_of(const CaseFile& file);

// Returns each alternative of a block, with the lines around it.
std::vector<Lines> alternatives(const Lines& block);

// Returns the texts behind the alternatives of a block; and replaces them.
std::vector<Lines> answers(const Lines& block);
void write_answers(Lines& block, const std::vector<Lines>& texts);

// Returns the parts of lines that match a regular expression, without lines that do not.
Lines matching(const Lines& lines, const std::string& pattern);

// Turns lines of a case into the text that they stand for, and back.
std::string unescaped(const Lines& lines);
Lines escaped(const std::string& text);

void replace_all(std::string& text, const std::string& from, const std::string& to);

// Returns a description from lines of a case, with the usual five lines if it needs them.
std::string session(const Lines& lines);

// Removes the usual five lines of a session at an address.
std::string without_head(const std::string& text, const std::string& address);

// Splits a text into lines, with runs of blanks as one.
Lines plain_lines(const std::string& text);

// Compares lines: each result starts with "- ", "+ " or, if the line stays, two blanks.
Lines difference(const Lines& before, const Lines& after);

// Returns the lines that a move changes, as in the section "moved".
Lines changes(const std::string& before, const std::string& after, const std::string& address);

}  // namespace tools

#endif
