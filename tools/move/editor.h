// Changes the addresses and ports of a description in its text.

#ifndef QOVA_TOOLS_MOVE_EDITOR_H
#define QOVA_TOOLS_MOVE_EDITOR_H

#include <string>
#include <vector>

#include "move/movable.h"
#include "sdp/plan.h"
#include "sdp/text.h"

namespace sdp {

// Returns the text with the new address and ports, and with the c= lines that keep the address of
// the other lines (see move/mover.h).
std::string edited(const Description& description, const std::vector<MovableLine>& lines,
                   const MovingAddresses& moving, const MediaAddress& address, bool back);

}  // namespace sdp

#endif
