// Runs every operation a few times, and marks on stderr where each run begins and ends, for whoever
// counts the instructions in between. Needs nothing but the library, and so runs on the device.

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "operations.h"

namespace {

void mark(const std::string& text) {
    if (write(STDERR_FILENO, text.data(), text.size()) < 0) {
        std::abort();
    }
}

template <class Operation>
void run(Operation& operation, int times) {
    for (; times > 0; --times) {
        operation();
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int lines = argc > 1 ? std::atoi(argv[1]) : offer::small;
    operations::for_each([lines](const std::string& name, operations::Extent extent, auto make) {
        const bool of_library = name.find("/qova") != std::string::npos;
        if (lines != offer::small && (extent == operations::ONE_OBJECT || !of_library)) {
            return;
        }
        auto operation = make(lines);
        run(operation, 8);  // binds the functions and fills the allocator's caches
        const std::string twice = "begin " + name + " 2\n";
        const std::string four_times = "begin " + name + " 4\n";
        const std::string end = "end\n";
        mark(twice);
        run(operation, 2);
        mark(four_times);
        run(operation, 4);
        mark(end);
    });
    return 0;
}
