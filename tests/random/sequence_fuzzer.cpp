// libFuzzer's entry to the random sequences. A broken rule ends the program with an exception.

#include <cstddef>
#include <cstdint>

#include "random/sequences.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static sequences::Counts counts;
    sequences::Sequence(data, size, counts).run();
    return 0;
}
