#include "sdp/diagnostics.h"

#include <algorithm>

namespace sdp {

std::string place(const std::string& name, std::size_t line) {
    return line == 0 ? name : name + ":" + std::to_string(line);
}

std::string printed(const Diagnostic& diagnostic, const std::string& name,
                    std::size_t lines_before) {
    return place(name, diagnostic.line == 0 ? 0 : lines_before + diagnostic.line) +
           (diagnostic.severity == Severity::WARNING ? ": warning: " : ": rejected: ") +
           diagnostic.message;
}

void sort(Diagnostics& diagnostics) {
    std::stable_sort(
        diagnostics.begin(), diagnostics.end(),
        [](const Diagnostic& left, const Diagnostic& right) { return left.line < right.line; });
}

}  // namespace sdp
