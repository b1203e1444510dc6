#include "move/mover.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "move/checks.h"
#include "move/editor.h"
#include "move/movable.h"
#include "qova/capability.h"
#include "qova/media.h"

namespace sdp {

namespace {

// Moves the model, and says by how much it moved the ports that each line follows.
Shifts move_model(QOVA_Capability& capability, const std::vector<MovableLine>& lines,
                  const Plan& plan, const IPAddress& address) {
    const auto port_of = [](const MovableLine& line) {
        return line.leader == nullptr ? 0 : line.leader->rcvPort;
    };
    Shifts before;
    std::transform(lines.begin(), lines.end(), std::back_inserter(before), port_of);
    const UDPAddr endpoint(address, 0);
    if (plan.back) {
        capability.setLocalAddrPort(endpoint, plan.audio_port, plan.fax_port);
    } else {
        capability.setPublicAddrPort(endpoint, plan.audio_port, plan.fax_port);
    }
    Shifts shifts;
    std::transform(lines.begin(), lines.end(), before.begin(), std::back_inserter(shifts),
                   [port_of](const MovableLine& line, unsigned short port) {
                       return static_cast<unsigned short>(port_of(line) - port);
                   });
    return shifts;
}

// The capability of a text that a move has made.
std::string log_of(const std::string& text, Role role) {
    try {
        return *read(Description(text), role, Strictness::LENIENT).capability;
    } catch (const Refusal& refusal) {
        throw std::logic_error(std::string("the moved description is not read: ") + refusal.what());
    }
}

// But for the log after, and without trying the way back.
Move move_once(const std::string& text, const Plan& plan) {
    if (!is_address(plan.address)) {
        throw Refusal(0, "the new address is not one that media can have");
    }
    const Description description(text);
    Reading reading = read(description, plan.role, plan.strictness);
    const std::vector<MovableLine> lines = movable_lines(description, reading);
    for (const MovableLine& line : lines) {
        check_ports(line, plan);
    }
    const MovingAddresses moving = moving_addresses(description, lines, plan);
    Editor editor(description, plan, moving);

    Move move;
    move.old_address = moving.addresses.size() == 1 ? moving.first_written : "";
    if (moving.addresses.empty()) {
        move.old_address = plan.address;  // any will do, as none is written
    }
    move.log_before = std::string(*reading.capability);
    IPAddress address;
    IPAddress::Parse(plan.address, address);
    const Shifts shifts = move_model(*reading.capability, lines, plan, address);
    check_endpoints(lines, shifts, address.ToString());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].moves) {
            editor.edit_ports(lines[i], shifts[i]);
        } else {
            editor.keep_address(*lines[i].section);
        }
    }
    move.text = editor.result();
    move.warnings = std::move(reading.warnings);
    for (Warning& warning : left_behind(lines, shifts, moving, address.ToString())) {
        if (plan.strictness == Strictness::STRICT) {
            throw Refusal(warning.line, warning.message);
        }
        move.warnings.push_back(std::move(warning));
    }
    std::stable_sort(
        move.warnings.begin(), move.warnings.end(),
        [](const Warning& left, const Warning& right) { return left.line < right.line; });
    return move;
}

// The text that the reverse move makes of a move's.
std::string moved_back(const Plan& plan, const Move& move) {
    Plan back = plan;
    back.address = move.old_address;
    back.back = !plan.back;
    back.strictness = Strictness::LENIENT;
    try {
        return move_once(move.text, back).text;
    } catch (const Refusal& refusal) {
        throw Refusal(0, "the reverse move would be refused, at line " +
                             std::to_string(refusal.line) +
                             " of the moved description: " + refusal.what());
    }
}

void check_way_back(const std::string& text, const Plan& plan, const Move& move) {
    const std::string restored = moved_back(plan, move);
    if (restored != text) {
        const auto differing =
            std::mismatch(text.begin(), text.end(), restored.begin(), restored.end()).first;
        const auto offset = static_cast<std::size_t>(differing - text.begin());
        throw Refusal(Description(text).line_at(offset),
                      "the reverse move would not restore this line: it is already at the new "
                      "address or port, or spells the old address or a port in an unusual way");
    }
}

}  // namespace

bool is_address(const std::string& text) {
    IPAddress address;
    return IPAddress::Parse(text, address) && !address.IsMulticast() && address.IsAny() == 0;
}

Move move(const std::string& text, const Plan& plan) {
    Move move = move_once(text, plan);
    move.log_after = log_of(move.text, plan.role);
    if (!move.old_address.empty()) {
        try {
            check_way_back(text, plan, move);
        } catch (const Refusal&) {
            if (!plan.back) {
                throw;
            }
            move.old_address.clear();
        }
    }
    return move;
}

}  // namespace sdp
