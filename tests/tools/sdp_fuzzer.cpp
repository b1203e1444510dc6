// libFuzzer's entry to the properties (see properties.h).

#include "properties.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

tools::Counts counts;

void print_counts() {
    std::fprintf(stderr,
                 "sdp_fuzzer: %llu descriptions read, %llu of them strictly, %llu moves, %llu of "
                 "them undone, %llu answers, %llu of them with something in common\n",
                 counts.readable, counts.strict, counts.moved, counts.restored, counts.answered,
                 counts.accepted);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return std::atexit(print_counts);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    try {
        tools::check_properties(text, counts);
    } catch (const tools::Broken& broken) {
        std::fprintf(stderr, "sdp_fuzzer: %s\nof\n%s\n", broken.what(), text.c_str());
        std::abort();
    }
    return 0;
}
