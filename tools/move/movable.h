// What a move changes in a description: lines, ports and addresses.

#ifndef QOVA_TOOLS_MOVE_MOVABLE_H
#define QOVA_TOOLS_MOVE_MOVABLE_H

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "qova/media.h"
#include "sdp/reader.h"
#include "sdp/text.h"

namespace sdp {

struct Port {
    std::string_view digits;  // empty if implied, as the RTCP port is
    unsigned long first;
    unsigned long last;
};

// A media line and the lines after it. It borrows the section and the media.
struct MovableLine {
    const Section* section;
    bool moves;                    // neither rejected nor passed through
    std::string address;           // of its c=; empty if unspecified or missing
    bool is_tcp;                   // TCP and UDP have different ports
    std::size_t bundle;            // the number of its a=group line (RFC 8843), or 0
    const QOVA_Media* leader;      // the media that its ports move with; null if they stay
    unsigned short shift;          // what the library adds to them, modulo 65536
    std::vector<Port> ports;       // without discard ports
    std::vector<AddressField> at;  // the specified addresses of a line that moves

    std::size_t number() const { return section->front().number; }
    unsigned short moved(const Port& port) const {
        return static_cast<unsigned short>(port.first + shift);
    }
};

std::vector<MovableLine> movable_lines(const Description& description, const Reading& reading);

// TCP, address, port: two lines that share them receive each other's packets.
using Endpoint = std::tuple<bool, std::string, unsigned long>;

// The addresses that a move changes.
struct MovingAddresses {
    std::vector<AddressField> fields;          // each place in the text once
    const Line* session_connection = nullptr;  // if it is one of the places
    std::set<std::string> addresses;           // all different ones
    std::string first_written;                 // the first one, as spelled; empty if there is none
};

// Throws SeveralAddresses unless `merge` is true, and Refusal for a line with two addresses or an
// address that cannot move.
MovingAddresses moving_addresses(const Description& description,
                                 const std::vector<MovableLine>& lines, bool merge);

}  // namespace sdp

#endif
