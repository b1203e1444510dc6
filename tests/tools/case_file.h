// Files of cases: descriptions, and what the tools make of them.
//
//     == the name of a case, a sentence
//     m=audio 5004 RTP/AVP 0
//     | a=ptime:20.5
//     | a=ptime:x
//     -- warnings
//     | 7: a=ptime: only whole milliseconds are used
//     | 7: a=ptime: expected a number from 0 to 2147483647
//
// What stands before the first case is a comment.
//
// Input. Lines end with CR LF; one that ends in $LF or $CR ends so, and one that ends in $END does
// not end. $x20 is the byte 20 (hexadecimal). $KEY30 is a key of 30 bytes as base64. $SECRET is a
// word that no tool may show. A description whose first line is "LETTER=", other than v=, stands
// behind the usual five lines of a session at 10.0.0.1.
//
// Lines that begin with "|" are alternatives, with the lines after them that begin with two blanks:
// the case stands for one description for each. What is expected is the same for all of them, or is
// written in the same way. Either the input or the section "with" may have alternatives.
//
// Sections. One that is not written is not compared; `-- log vad=` is only the lines with "vad=".
// Runs of blanks count as one in a log. New keys of an answer are $FRESH30, $FRESH30.2, and so on.
//
//     with          what the case is run with:
//                     answer                        the description is one
//                     move ADDRESS AUDIO FAX WORD...   the plan; the words are back, merge, strict
//                     local ADDRESS                 of the answer
//                     public ADDRESS AUDIO FAX      of the answer
//                     codecs NAME..., suites NAME..., no-fax
//     previous      another description, for "changed"
//     found         where the description stands in the input
//     refused       why it cannot be read
//     warnings      about it
//     log           of it
//     crypto        its keys, as LINE: TAG SUITE inline:KEY|LIFETIME|MKI:SIZE
//     changed       whether anything is negotiated otherwise than in "previous"
//     moved         the moved description
//     move-refused  why it cannot move
//     move-warnings about the move
//     way-back      the address that undoes the move
//     answer        the answer
//     rejected      why lines of the offer are rejected
//     answer-log    of the offer and the answer
//
// Of a moved description and of an answer the usual five lines are left out where they are as they
// should be.

#ifndef QOVA_TESTS_TOOLS_CASE_FILE_H
#define QOVA_TESTS_TOOLS_CASE_FILE_H

#include <cstddef>
#include <string>
#include <vector>

namespace tools {

using Lines = std::vector<std::string>;

struct Section {
    std::string name;
    std::string word;  // only the lines with it
    Lines lines;
};

struct Case {
    std::string name;
    std::size_t line;  // in its file
    Lines input;
    std::vector<Section> sections;

    const Section* section(const std::string& name) const;
};

struct CaseFile {
    Lines comment;
    std::vector<Case> cases;
};
CaseFile parse(const std::string& text);
std::string text_of(const CaseFile& file);

// Each alternative of a block with the lines around it.
std::vector<Lines> alternatives(const Lines& block);

// The inverse for blocks that are alternatives as a whole. Equal ones become one.
Lines joined(const std::vector<Lines>& blocks);

// A text from lines as they are written in a case, and back.
std::string unescaped(const Lines& lines);
Lines escaped(const std::string& text);

// With the usual five lines where a text needs them; and without.
std::string with_head(const std::string& text, const std::string& address);
std::string without_head(const std::string& text, const std::string& address);

// Lines that end with LF alone, with runs of blanks as one.
Lines plain_lines(const std::string& text);

// What has to change: lines that begin with "-" and "+", and those that stay between them.
std::string difference(const Lines& expected, const Lines& found);

}  // namespace tools

#endif
