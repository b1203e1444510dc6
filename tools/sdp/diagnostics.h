/// @file
/// What the tools report about a description. No message quotes the description, because its lines
/// can hold keys.

#ifndef QOVA_TOOLS_SDP_DIAGNOSTICS_H
#define QOVA_TOOLS_SDP_DIAGNOSTICS_H

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace sdp {

/// How serious a diagnostic is.
enum class Severity {
    WARNING,   ///< The model cannot hold a value of this line.
    REJECTION  ///< The answer rejects this media line.
};

/// A message about one line of a description.
struct Diagnostic {
    std::size_t line;     ///< Counted from 1; 0 is the whole description.
    Severity severity;    ///< How serious it is.
    std::string message;  ///< Printable ASCII, one line.
};

/// Diagnostics, in the order of their lines within a severity.
using Diagnostics = std::vector<Diagnostic>;

/// Thrown when a description is refused.
class Refusal : public std::runtime_error {
public:
    Refusal(std::size_t given_line, const std::string& message)
        : std::runtime_error(message), line(given_line) {}

    std::size_t line;  ///< Counted from 1; 0 is the whole description.
};

/// Throws a Refusal if `is_wrong` is true.
inline void refuse_if(bool is_wrong, std::size_t line, const char* message) {
    if (is_wrong) {
        throw Refusal(line, message);
    }
}

/// Returns "NAME:LINE", or "NAME" if the line is 0. NAME is the file or message that holds the
/// description after `lines_before` other lines.
inline std::string place(const std::string& name, std::size_t line, std::size_t lines_before = 0) {
    return line == 0 ? name : name + ":" + std::to_string(lines_before + line);
}

/// Returns "NAME:LINE: warning: MESSAGE" or "NAME:LINE: rejected: MESSAGE", without a newline.
/// NAME and LINE are those of place().
inline std::string printed(const Diagnostic& diagnostic, const std::string& name,
                           std::size_t lines_before = 0) {
    return place(name, diagnostic.line, lines_before) +
           (diagnostic.severity == Severity::WARNING ? ": warning: " : ": rejected: ") +
           diagnostic.message;
}

/// Sorts by line; diagnostics of the same line keep their order.
inline void sort(Diagnostics& diagnostics) {
    std::stable_sort(diagnostics.begin(), diagnostics.end(),
                     [](const auto& left, const auto& right) { return left.line < right.line; });
}

/// Calls a function and turns a Refusal, or another Reason derived from it, into a warning. Returns
/// false if there was one.
template <class Reason = Refusal, class Call>
bool warn_of_refusal(Diagnostics& diagnostics, Call call) {
    try {
        call();
        return true;
    } catch (const Reason& reason) {
        diagnostics.push_back({reason.line, Severity::WARNING, reason.what()});
        return false;
    }
}

}  // namespace sdp

#endif
