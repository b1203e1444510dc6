// Files of cases: descriptions, and what the tools make of them.
//
//     == a fraction of a millisecond is cut
//     m=audio 5004 RTP/AVP 0
//     | a=ptime:20.0
//     | a=ptime:20.5 => 7: a=ptime: only whole milliseconds are used
//     | a=ptime:20 $/ a=maxptime:0.125 => 8: a=maxptime: only whole milliseconds are used
//     -- warnings
//     -- log framing=\d+
//     | framing=20
//     | framing=20
//     | framing=20
//
// What stands before the first case is a comment.
//
// Input. A description whose first line is "LETTER=", other than v=, stands behind the usual five
// lines of a session at 10.0.0.1. Lines end with CR LF; one that ends in $LF or $CR ends so, and
// one that ends in $END does not end. $x20 is the byte 20 (hexadecimal). $KEY30 is a key of 30
// bytes as base64. $SECRET is a word that no tool may show.
//
// " $/ " separates lines, too. Lines that begin with "|" are alternatives: the case stands for one
// description for each. Either the input or the section "with" may have alternatives.
//
// Sections. One that is not written is not compared; `-- log vad=.` is only what matches this
// regular expression. What is expected is the same for all alternatives; or it stands behind " => "
// in the first section that is compared, and as alternatives in the others.
//
//     with           what the case is run with:
//                      answer                          the description is one
//                      move ADDRESS AUDIO FAX WORD...  the plan; the words are back, merge, strict
//                      local ADDRESS                   of the answer
//                      public ADDRESS AUDIO FAX        of the answer
//                      codecs NAME..., suites NAME..., no-fax
//     previous       another description, for "changed"
//     refused        why it cannot be read, or "no"
//     warnings       about it
//     log            of it, with runs of blanks as one
//     passed         what of it is passed through
//     crypto         its keys, as LINE: TAG SUITE inline:KEY|LIFETIME|MKI:SIZE
//     changed        whether anything is negotiated otherwise than in "previous"
//     moved          the lines that a move changes, those that it adds (+) or takes away (-)
//     move-warnings  about the move
//     answer         the answer; new keys are $FRESH30, $FRESH30.2, and so on
//     rejected       why lines of the offer are rejected
//
// Of a move and of an answer the usual five lines are left out where they are as they should be.

#ifndef QOVA_TESTS_TOOLS_CASE_FILE_H
#define QOVA_TESTS_TOOLS_CASE_FILE_H

#include <cstddef>
#include <string>
#include <vector>

namespace tools {

using Lines = std::vector<std::string>;

struct Section {
    std::string name;
    std::string pattern;  // only what matches it
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

// Each alternative of a block with the lines around it.
std::vector<Lines> alternatives(const Lines& block);

// What stands behind the alternatives of a block; and the block with other such texts.
std::vector<Lines> answers(const Lines& block);
Lines with_answers(const Lines& block, const std::vector<Lines>& texts);

// Alternatives from blocks.
Lines joined(const std::vector<Lines>& blocks);

// What of the lines matches a regular expression.
Lines matching(const Lines& lines, const std::string& pattern);

// A text from lines as they are written in a case, and back.
std::string unescaped(const Lines& lines);
Lines escaped(const std::string& text);

// With the usual five lines where a text needs them; and without.
std::string with_head(const std::string& text);
std::string without_head(const std::string& text, const std::string& address);

// Lines with runs of blanks as one.
Lines plain_lines(const std::string& text);

// What has to change: lines after "- ", "+ " or, if they stay, two blanks.
Lines difference(const Lines& before, const Lines& after);

// The same as it is written for a move.
Lines changes(const std::string& before, const std::string& after, const std::string& address);

}  // namespace tools

#endif
