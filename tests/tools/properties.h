// What holds of the tools whatever the description: the runner of the cases checks it for each case
// and each sample, the fuzzer for all that it thinks of.

#ifndef QOVA_TESTS_TOOLS_PROPERTIES_H
#define QOVA_TESTS_TOOLS_PROPERTIES_H

#include <stdexcept>
#include <string>
#include <vector>

#include "adapter.h"

namespace tools {

class Broken : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

// How often there was something to check.
struct Counts {
    unsigned long long readable = 0;
    unsigned long long strict = 0;  // readable strictly
    unsigned long long moved = 0;
    unsigned long long restored = 0;
    unsigned long long answered = 0;
    unsigned long long accepted = 0;
};

// Throws Broken, unless:
// - A message names a line of the description, can be printed, and warnings are in order.
// - A strict reading refuses the description for the first warning, and else reads the same.
// - What a reading refuses, each move and answer refuses for the same reason.
// - A moved description reads as the log says, and the way back restores it to the byte.
// - An answer has the lines of the offer and reads as the capability that it was written from; a
//   side of a call that goes on from it gives it again.
// - No key stands in a log, in a message or, if it was offered, in the answer.
void check_properties(const std::string& text, Counts& counts);

// The same for another move or side.
void check_move(const std::string& text, const Journey& there, Counts& counts);
void check_answer(const std::string& text, const Side& side, Counts& counts);

}  // namespace tools

#endif
