// libFuzzer's entry to the model driver: stops at the first difference between library and model.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "model/driver.h"

namespace {

void print_operations() {
    std::fprintf(stderr, "model_fuzzer: %llu operations, an allocation failed in %llu of them\n",
                 model_driver::operations(), model_driver::failed_operations());
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return std::atexit(print_operations);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string difference = model_driver::run(data, size);
    if (!difference.empty()) {
        std::fprintf(stderr, "model_fuzzer: %s\n", difference.c_str());
        std::abort();
    }
    // An interrupted fuzzer prints no total.
    static unsigned long long next_report = 10'000'000;
    if (model_driver::operations() >= next_report) {
        next_report += 10'000'000;
        print_operations();
    }
    return 0;
}
