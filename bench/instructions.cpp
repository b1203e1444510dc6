// Runs every operation twice, then four times, and marks on stderr where each run begins, for
// whoever counts the instructions in between. Needs nothing but the library, and so runs on the
// device.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "operations.h"

int main(int argc, char** argv) {
    const int lines = argc > 1 ? std::atoi(argv[1]) : offer::small;
    for (const auto& [name, extent, make] : operations::of_library()) {
        const bool of_library = name.find("/qova") != std::string::npos;
        if (lines != offer::small && (extent == operations::ONE_OBJECT || !of_library)) {
            continue;
        }
        const operations::Run run = make(lines);
        run(8);  // binds the functions and fills the allocator's caches
        for (const std::size_t times : {2U, 4U, 0U}) {
            std::fprintf(stderr, "run %s %zu\n", name.c_str(), times);
            run(times);
        }
    }
    return 0;
}
