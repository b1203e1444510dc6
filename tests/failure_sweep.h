// Fails every allocation of an operation, one after the other, and looks at what that leaves.

#ifndef QOVA_TESTS_FAILURE_SWEEP_H
#define QOVA_TESTS_FAILURE_SWEEP_H

#include <cstddef>
#include <exception>
#include <functional>
#include <new>
#include <string>
#include <typeinfo>
#include <vector>

#include "allocations.h"

namespace failure_sweep {

// One operation; its functions hold the objects that it needs. The texts are empty when all is
// well.
struct Operation {
    using Text = std::function<std::string()>;

    std::function<void()> run;

    // All that the operation must leave as it is.
    Text source = [] { return std::string(); };

    // Looks at what a failure left, and uses it as far as its state allows.
    Text after_failure = [] { return std::string(); };

    // What must be done before the operation can be run again.
    std::function<void()> recover = [] {};

    // Looks at what the operation achieved.
    Text result = [] { return std::string(); };
};

using Make = std::function<Operation()>;

struct Findings {
    std::size_t points = 0;          // allocations that failed
    std::vector<std::size_t> sizes;  // of the blocks that the operation asked for, in its order
    std::vector<std::string> complaints;
};

inline std::string run_failing(const Operation& operation, bool again, std::size_t nth,
                               allocations::Failure::Extent extent, bool& reached) {
    const std::string source = operation.source();
    enum { DONE, FAILED, OTHER_EXCEPTION } outcome = DONE;
    {
        const allocations::Failure failure(nth, extent);
        try {
            operation.run();
        } catch (const std::exception& exception) {
            // Exactly a bad_alloc: one of a class derived from it could tell what it was copying.
            outcome = typeid(exception) == typeid(std::bad_alloc) ? FAILED : OTHER_EXCEPTION;
        }
        reached = allocations::Failure::consumed();
    }
    if (outcome == OTHER_EXCEPTION) {
        return "another exception than bad_alloc";
    }
    if (reached != (outcome == FAILED)) {
        return reached ? "the failure is swallowed" : "bad_alloc without a failure";
    }
    if (operation.source() != source) {
        return "the source is changed";
    }
    if (!reached) {
        return operation.result();
    }
    const std::string complaint = operation.after_failure();
    if (!complaint.empty() || !again) {
        return complaint;
    }
    operation.recover();
    try {
        operation.run();
    } catch (const std::bad_alloc&) {
        return "it fails for good";
    }
    return operation.source() == source ? operation.result()
                                        : "the source is changed at the second attempt";
}

// Fails the first allocation, the second and so on until the operation does not get that far; once
// that one alone, once all from there on. Each time the objects are made anew, and destroyed: at
// once, or after the operation was run again.
inline Findings sweep(const Make& make) {
    using allocations::Failure;
    Findings findings;
    bool reached = true;
    for (std::size_t nth = 1; reached; ++nth) {
        for (const auto extent : {Failure::ONCE, Failure::FROM_THERE_ON}) {
            for (const bool again : {false, true}) {
                const std::size_t before = allocations::live();
                std::string complaint = run_failing(make(), again, nth, extent, reached);
                if (complaint.empty() && allocations::live() != before) {
                    complaint = "blocks leak";
                }
                if (!complaint.empty()) {
                    findings.complaints.push_back("allocation " + std::to_string(nth) + ": " +
                                                  complaint);
                }
            }
            findings.points += reached ? 1U : 0U;
        }
        if (reached) {
            findings.sizes.push_back(Failure::size());
        }
    }
    return findings;
}

}  // namespace failure_sweep

#endif
