#include "move/mover.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

#include "move/checks.h"
#include "move/editor.h"
#include "move/movable.h"
#include "qova/capability.h"
#include "qova/media.h"

namespace sdp {

namespace {

// Moves the model. Returns what it added to the ports that each line follows.
Shifts move_model(QOVA_Capability& capability, const std::vector<MovableLine>& lines,
                  const Plan& plan, bool back) {
    const auto port_of = [](const MovableLine& line) {
        return line.leader == nullptr ? 0 : line.leader->rcvPort;
    };
    Shifts before;
    std::transform(lines.begin(), lines.end(), std::back_inserter(before), port_of);
    const UDPAddr endpoint(plan.address.ip(), 0);
    if (back) {
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

// Returns the log text of a description that was moved.
std::string log_of(const std::string& text, Role role) {
    try {
        return *read(Description(text), role, Strictness::LENIENT).capability;
    } catch (const Refusal& refusal) {
        throw std::logic_error(std::string("cannot read the moved description: ") + refusal.what());
    }
}

// Moves a description without trying the way back. The log text after the move is missing.
Move move_once(const std::string& text, const Plan& plan, const MoveOptions& options) {
    const Description description(text);
    Reading reading = read(description, options.role, options.strictness);
    const std::vector<MovableLine> lines = movable_lines(description, reading);
    for (const MovableLine& line : lines) {
        check_ports(line, plan, options.back);
    }
    const MovingAddresses moving = moving_addresses(description, lines, options.merge);
    Editor editor(description, plan.address, options.back, moving);

    Move result;
    if (moving.addresses.empty()) {
        result.old_address = plan.address;  // any address: the text has none
    } else if (moving.addresses.size() == 1) {
        result.old_address = MediaAddress::parse(moving.first_written);
    }
    result.log_before = std::string(*reading.capability);
    const std::string new_address = plan.address.ip().ToString();
    const Shifts shifts = move_model(*reading.capability, lines, plan, options.back);
    check_endpoints(lines, shifts, new_address);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].moves) {
            editor.edit_ports(lines[i], shifts[i]);
        } else {
            editor.keep_address(*lines[i].section);
        }
    }
    result.text = editor.result();
    result.diagnostics = std::move(reading.diagnostics);
    for (Diagnostic& warning : left_behind(lines, shifts, moving, new_address)) {
        if (options.strictness == Strictness::STRICT) {
            throw Refusal(warning.line, warning.message);
        }
        result.diagnostics.push_back(std::move(warning));
    }
    sort(result.diagnostics);
    return result;
}

// Returns the text that the reverse move makes.
std::string moved_back(const Move& moved, const Plan& plan, const MoveOptions& options) {
    const Plan old_plan = {*moved.old_address, plan.audio_port, plan.fax_port};
    MoveOptions reverse = options;
    reverse.back = !options.back;
    reverse.strictness = Strictness::LENIENT;
    try {
        return move_once(moved.text, old_plan, reverse).text;
    } catch (const Refusal& refusal) {
        throw Refusal(0, "the reverse move would be refused, at line " +
                             std::to_string(refusal.line) +
                             " of the moved description: " + refusal.what());
    }
}

// Throws Refusal if the reverse move does not restore the text.
void check_way_back(const std::string& text, const std::string& restored) {
    if (restored != text) {
        const auto differing =
            std::mismatch(text.begin(), text.end(), restored.begin(), restored.end()).first;
        const auto offset = static_cast<std::size_t>(differing - text.begin());
        throw Refusal(Description(text).line_at(offset),
                      "the reverse move would not restore this line: it already has the new "
                      "address or port, or an unusual spelling of the old address or a port");
    }
}

}  // namespace

Move move(const std::string& text, const Plan& plan, const MoveOptions& options) {
    Move result = move_once(text, plan, options);
    result.log_after = log_of(result.text, options.role);
    if (result.old_address) {
        try {
            check_way_back(text, moved_back(result, plan, options));
        } catch (const Refusal&) {
            if (!options.back) {
                throw;
            }
            result.old_address.reset();
        }
    }
    return result;
}

}  // namespace sdp
