// What a move must not do, and what it leaves unusable.

#ifndef QOVA_TOOLS_MOVE_CHECKS_H
#define QOVA_TOOLS_MOVE_CHECKS_H

#include <string>
#include <vector>

#include "move/movable.h"
#include "sdp/diagnostics.h"
#include "sdp/plan.h"

namespace sdp {

// Throws Refusal if a port of the line would not be from 1 to 65535.
void check_ports(const MovableLine& line, const Plan& plan, bool back);

// Throws Refusal if two lines would have the same address and port, or if lines that are bundled on
// one port would not.
void check_endpoints(const std::vector<MovableLine>& lines, const Shifts& shifts,
                     const std::string& new_address);

// Returns a warning for each line that names an address that its media moves away from.
Diagnostics left_behind(const std::vector<MovableLine>& lines, const Shifts& shifts,
                        const MovingAddresses& moving, const std::string& new_address);

}  // namespace sdp

#endif
