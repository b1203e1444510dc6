// Properties that hold for every description. The runner of the cases, the random tests and the
// fuzzer check them with this code.

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

// Throws Broken unless all of this holds:
// - Messages are printable and name a line of the description. Warnings are in line order.
// - A strict reading throws the first warning. Without warnings, it is the same as the lenient one.
// - Moves and answers are refused for the same reason as the reading.
// - A moved description reads as its log shows. The reverse move restores every byte.
// - An answer has the lines of the offer, and reads as the capability that it was written from. A
//   side of a call that resumes from it gives the same answer.
// - No log, message or answer shows a key, except the new keys of an answer.
void check_properties(const std::string& text, Counts& counts);

// The same for another move or side.
void check_move(const std::string& text, const Journey& there, Counts& counts);
void check_answer(const std::string& text, const Side& side, Counts& counts);

}  // namespace tools

#endif
