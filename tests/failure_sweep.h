// Fails every allocation of an operation, one after the other, and looks at what that leaves
// behind.

#ifndef QOVA_TESTS_FAILURE_SWEEP_H
#define QOVA_TESTS_FAILURE_SWEEP_H

#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "allocations.h"

namespace failure_sweep {

// One operation with the objects that it needs. The texts are empty when all is well.
class Operation {
public:
    virtual ~Operation() = default;

    virtual void run() = 0;

    // All that the operation must leave as it is.
    virtual std::string source() const { return ""; }

    // Uses what a failure left behind, as far as its state allows.
    virtual std::string after_failure() { return ""; }

    // What must be done before the operation can be run again.
    virtual void recover() {}

    // Looks at what the operation achieved.
    virtual std::string result() const { return ""; }
};

using Make = std::function<std::unique_ptr<Operation>()>;

struct Findings {
    std::size_t points = 0;  // allocations that failed
    std::vector<std::string> complaints;
};

// Whether the n-th allocation was reached, and what was wrong then.
struct Point {
    bool reached = false;
    std::string complaint;
};

inline std::string run_failing(Operation& operation, bool again, std::size_t nth,
                               allocations::Failure::Extent extent, bool& reached) {
    const std::string source = operation.source();
    enum { DONE, FAILED, OTHER_EXCEPTION } outcome = DONE;
    {
        const allocations::Failure failure(nth, extent);
        try {
            operation.run();
        } catch (const std::bad_alloc&) {
            outcome = FAILED;
        } catch (...) {
            outcome = OTHER_EXCEPTION;
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

// The objects are made anew, and destroyed: at once, or after the operation was run again.
inline Point try_point(const Make& make, bool again, std::size_t nth,
                       allocations::Failure::Extent extent) {
    Point point;
    const std::size_t before = allocations::live();
    point.complaint = run_failing(*make(), again, nth, extent, point.reached);
    if (point.complaint.empty() && allocations::live() != before) {
        point.complaint = "blocks leak";
    }
    return point;
}

// Fails the first allocation, the second and so on until the operation does not get that far; once
// that one alone, once all from there on.
inline Findings sweep(const Make& make) {
    Findings findings;
    bool reached = true;
    for (std::size_t nth = 1; reached; ++nth) {
        for (const auto extent :
             {allocations::Failure::ONCE, allocations::Failure::FROM_THERE_ON}) {
            for (const bool again : {false, true}) {
                const Point point = try_point(make, again, nth, extent);
                if (!point.complaint.empty()) {
                    findings.complaints.push_back("allocation " + std::to_string(nth) + ": " +
                                                  point.complaint);
                }
                reached = point.reached;
            }
            findings.points += reached ? 1U : 0U;
        }
    }
    return findings;
}

}  // namespace failure_sweep

#endif
