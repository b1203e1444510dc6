// Moves a description between the local and a public address and port plan, in its own text.
//
// QOVA_Capability::setPublicAddrPort and setLocalAddrPort move the model; the text follows it, and
// every byte that need not change stays as it came:
//
// - The lines that move are those that are neither rejected nor passed through. Their c= addresses
//   change (their own or the session's), the addresses of their a=rtcp, and the ports of m= and
//   a=rtcp where the model moves them (audio and fax), or those of a line bundled with it on the
//   same port (RFC 8843).
// - An unspecified address (0.0.0.0, ::) stays: it holds the call, or no candidate is known yet.
//   Port 9 stays at such an address (RFC 8838), and that of a TCP line, which will connect
//   (RFC 4145).
// - The o= address and the session's c= change when they are an address that moves. Another
//   address or a host name there stays: it is not the media's.
// - IP4 and IP6 follow the address. The new address is written as it was given.
// - A line that keeps its address while the session's c= changes gets a c= of its own.
// - The addresses in a=candidate, a=remote-candidates and MSRP's a=path stay, with a warning where
//   the move leaves them.
//
// Refused, with a message: a move that takes a port below 1 or beyond 65535; that would move a
// multicast address, a line that has two addresses, or lines of several addresses without `merge`;
// that ends with two lines at one address and port, or parts lines that are bundled on one; that
// the reverse move could not undo.
//
// The way back. When the lines that move share one address, `back` with that address (as it was
// written) restores the text byte for byte. That is tried before a move is accepted, and it needs
// one rule, for the c= lines that a move adds:
//
//   `move` gives a line that keeps its address a copy of the session's old c= line, directly after
//   its m= and i= lines, if it has no c= line, or if all it has is such copies there already.
//   `back` takes one of those copies away, or gives a line without c= line a copy of the old one.
//
// So a rejected line that had repeated the session's c= from the start repeats it twice while it is
// moved, and comes back as it was.

#ifndef QOVA_TOOLS_MOVE_MOVER_H
#define QOVA_TOOLS_MOVE_MOVER_H

#include <string>
#include <vector>

#include "sdp/reader.h"
#include "sdp/text.h"

namespace sdp {

struct Plan {
    std::string address;        // any spelling
    unsigned short audio_port;  // stands for QOVA_Capability::AUDIO_PORT_BASE
    unsigned short fax_port;    // stands for QOVA_Capability::FAX_PORT_BASE
    bool back = false;          // from the public plan to the local one
    bool merge = false;         // several addresses may become one
    Role role = Role::OFFER;
    Strictness strictness = Strictness::LENIENT;  // STRICT: a warning is thrown as a Refusal
};

struct Move {
    std::string text;               // the moved description
    std::string log_before;         // the capability's text
    std::string log_after;          // that of the moved description
    std::string old_address;        // for the way back, as it was written; empty if there is none
    std::vector<Warning> warnings;  // in the order of the lines
};

// Whether media can be sent to an address: an IPv4 or IPv6 address that is neither a multicast
// group nor unspecified.
bool is_address(const std::string& text);

// Linear in the length of the text, but for sorting. Throws Refusal.
Move move(const std::string& text, const Plan& plan);

}  // namespace sdp

#endif
