// What a move may not do, and what it leaves unusable.

#ifndef QOVA_TOOLS_MOVE_CHECKS_H
#define QOVA_TOOLS_MOVE_CHECKS_H

#include <string>
#include <vector>

#include "move/movable.h"
#include "move/mover.h"
#include "sdp/text.h"

namespace sdp {

// Throws Refusal where the plan takes a port below 1 or beyond 65535.
void check_ports(const MovableLine& line, const Plan& plan);

// Throws Refusal where two lines would end at the same address and port, or where lines that are
// bundled on one port would not.
void check_endpoints(const std::vector<MovableLine>& lines, const Shifts& shifts,
                     const std::string& new_address);

// The lines that name an address that the media have left.
std::vector<Warning> left_behind(const std::vector<MovableLine>& lines, const Shifts& shifts,
                                 const MovingAddresses& moving, const std::string& new_address);

}  // namespace sdp

#endif
