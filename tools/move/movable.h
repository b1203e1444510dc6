// What of a description a move changes: which lines, with which ports and addresses.

#ifndef QOVA_TOOLS_MOVE_MOVABLE_H
#define QOVA_TOOLS_MOVE_MOVABLE_H

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "move/mover.h"
#include "qova/media.h"
#include "sdp/reader.h"
#include "sdp/text.h"

namespace sdp {

struct Port {
    std::string_view digits;  // empty: implied, as the RTCP port is
    unsigned long first;
    unsigned long last;
};

// An m= line and what follows it. What points to media is borrowed.
struct MovableLine {
    const Section* section;
    bool moves;                    // neither rejected nor passed through
    std::string address;           // that its c= gives it; empty: unspecified, or none
    bool is_tcp;                   // else UDP, whose ports are others
    std::size_t bundle;            // the line of its group (RFC 8843); 0: none
    const QOVA_Media* leader;      // whose ports its own follow; null: its ports stay
    std::vector<Port> ports;       // but for those that mean no port yet
    std::vector<AddressField> at;  // specified addresses of a line that moves

    std::size_t number() const { return section->front().number; }
};

std::vector<MovableLine> movable_lines(const Description& description, const Reading& reading);

// By how much the ports of each line move, modulo 65536 as the library computes.
using Shifts = std::vector<unsigned short>;
unsigned short moved_port(const Port& port, unsigned short shift);

// TCP or not, address, port: two lines that share one receive each other's packets.
using Endpoint = std::tuple<bool, std::string, unsigned long>;

// The places of the addresses that a move changes.
struct MovingAddresses {
    std::vector<AddressField> fields;          // each place once
    const Line* session_connection = nullptr;  // when it is one of the places
    std::set<std::string> addresses;           // without those that stay
    std::string first_written;                 // as the first was written; empty when there is none
};
// Throws Refusal for a line that has two addresses, and for several addresses without Plan::merge.
MovingAddresses moving_addresses(const Description& description,
                                 const std::vector<MovableLine>& lines, const Plan& plan);

}  // namespace sdp

#endif
