/// @file
/// Moves a description between the local and a public address and port plan, in its own text.
///
/// QOVA_Capability::setPublicAddrPort and setLocalAddrPort move the model, and the text follows.
/// Every byte that need not change stays the same:
///
/// - Lines move unless they are rejected or passed through. Their addresses change in c= (their own
///   or the session's) and in a=rtcp. Their ports change in m= and a=rtcp if the model moves them
///   (audio and fax), or if the line is bundled with one that it moves, on the same port (RFC
///   8843).
/// - An unspecified address (0.0.0.0, ::) stays: the call is on hold, or no candidate is known yet.
///   Port 9 stays at such an address (RFC 8838), and on a TCP line that will connect (RFC 4145).
/// - The addresses in o= and in the session's c= change if they are an address that moves. Any
///   other address or a host name stays, because it is not the address of the media.
/// - IP4 and IP6 change with the address. The new address is spelled as in the plan.
/// - A line that keeps its address gets a c= line of its own if the session's c= changes.
/// - The addresses in a=candidate, a=remote-candidates and a=path (MSRP) stay. If the media moves
///   away from such an address, there is a warning.
///
/// A move is refused if:
///
/// - it takes a port below 1 or above 65535;
/// - it moves a multicast address, a line with two addresses, or, without MoveOptions::merge, lines
///   with different addresses;
/// - two lines have the same address and port afterwards, or lines that are bundled on one port no
///   longer share it;
/// - the reverse move could not undo it.
///
/// If the lines that move share one address, MoveOptions::back with this address, in its old
/// spelling, restores the text byte for byte. move() tries that before it accepts a move. The
/// reverse move needs one rule for the c= lines that a move adds:
///
/// - A move gives a line that keeps its address a copy of the session's old c= line, directly after
///   its m= and i= lines, if it has no c= line, or only such copies there.
/// - The reverse move removes one of those copies, or gives a line without a c= line a copy of the
///   old one.
///
/// So a rejected line that already had a copy of the session's c= has two while it is moved, and
/// comes back as it was.

#ifndef QOVA_TOOLS_MOVE_MOVER_H
#define QOVA_TOOLS_MOVE_MOVER_H

#include <optional>
#include <string>

#include "sdp/diagnostics.h"
#include "sdp/plan.h"
#include "sdp/reader.h"

namespace sdp {

/// How a description moves.
struct MoveOptions {
    bool back = false;        ///< From the public plan to the local one.
    bool merge = false;       ///< Move lines with different addresses; this cannot be undone.
    Role role = Role::OFFER;  ///< Which side the description is.

    /// STRICT refuses a description or a move with a warning.
    Strictness strictness = Strictness::LENIENT;
};

/// A description that was moved.
struct Move {
    std::string text;        ///< The moved description.
    std::string log_before;  ///< The log text of the capability before the move.
    std::string log_after;   ///< The log text of the capability after the move.

    /// The address that restores the description; nullopt if none does.
    std::optional<MediaAddress> old_address;

    Diagnostics diagnostics;  ///< Warnings about the old text.
};

/// A Refusal of a move because its lines have different addresses and MoveOptions::merge is false.
class SeveralAddresses : public Refusal {
    using Refusal::Refusal;
};

/// Moves a description. The time is n log n in the length of its text. Throws SeveralAddresses, or
/// Refusal for everything else that it refuses. The plan is the public one; with MoveOptions::back,
/// it has the local address and the public ports.
Move move(const std::string& text, const Plan& plan, const MoveOptions& options = {});

}  // namespace sdp

#endif
