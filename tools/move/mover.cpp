#include "move/mover.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "move/editor.h"
#include "move/movable.h"
#include "qova/capability.h"
#include "sdp/strings.h"

namespace sdp {
namespace {

// Returns the host of a URI such as msrp://user@[2001:db8::1]:2855/s111;tcp
std::string_view host_of(std::string_view uri) {
    const std::size_t scheme = uri.find("://");
    uri.remove_prefix(scheme == std::string_view::npos ? 0 : scheme + 3);
    uri = uri.substr(0, uri.find_first_of("/;"));
    uri.remove_prefix(uri.find('@') + 1);  // npos + 1 is 0
    return uri.substr(0, 1) == "[" ? uri.substr(1, uri.find(']') - 1)
                                   : uri.substr(0, uri.find(':'));
}

// Returns the hosts in an attribute that does not move.
std::vector<std::string_view> other_addresses(const Line& line) {
    std::vector<std::string_view> hosts;
    const std::vector<std::string_view> fields = tokens(line.value);
    if (same(line.name, "candidate") && fields.size() > 4) {
        hosts.push_back(fields[4]);
    } else if (same(line.name, "remote-candidates")) {
        for (std::size_t i = 1; i < fields.size(); i += 3) {
            hosts.push_back(fields[i]);
        }
    } else if (same(line.name, "path")) {
        std::transform(fields.begin(), fields.end(), std::back_inserter(hosts), host_of);
    }
    return hosts;
}

// Throws Refusal if a port of the line would not be from 1 to 65535: the library computes modulo
// 65536.
void check_ports(const MovableLine& line, const Plan& plan, bool back) {
    if (line.leader == nullptr) {
        return;
    }
    const int shift = (back ? -1 : 1) * port_shift(plan, line.leader->mediaType);
    for (const Port& port : line.ports) {
        refuse_if(port.first > 65535, line.number(), "there is no RTCP port after port 65535");
        for (const int number : {static_cast<int>(port.first), static_cast<int>(port.last)}) {
            if (!is_port(number + shift)) {
                throw Refusal(line.number(), "the move would change port " +
                                                 std::to_string(number) + " to " +
                                                 std::to_string(number + shift));
            }
        }
    }
}

// Throws Refusal if two lines would have the same address and port, or if lines that are bundled on
// one port would not.
void check_endpoints(const std::vector<MovableLine>& lines, const std::string& new_address) {
    std::map<Endpoint, const MovableLine*> ends;
    std::map<std::pair<std::size_t, Endpoint>, Endpoint> bundled;
    for (const MovableLine& line : lines) {
        const std::string& address = line.moves ? new_address : line.address;
        for (const Port& port : line.ports) {
            if (line.address.empty() || port.digits.empty()) {
                continue;
            }
            const Endpoint end = {line.is_tcp, address, line.moved(port)};
            const MovableLine& first = *ends.emplace(end, &line).first->second;
            if (&first != &line && (line.bundle == 0 || line.bundle != first.bundle)) {
                throw Refusal(line.number(),
                              "the move would give this line the address and port of line " +
                                  std::to_string(first.number()));
            }
            if (line.bundle != 0) {
                const Endpoint begin = {line.is_tcp, line.address, port.first};
                const auto known = bundled.emplace(std::pair(line.bundle, begin), end).first;
                refuse_if(known->second != end, line.number(),
                          "the move would separate this line from those that are bundled "
                          "with it on one port");
            }
        }
    }
}

// Returns a warning for each line that names an address that its media moves away from.
Diagnostics left_behind(const std::vector<MovableLine>& lines, const MovingAddresses& moving,
                        const std::string& new_address) {
    Diagnostics warnings;
    const auto has_moved = [&moving](std::string_view host) {
        IPAddress address;
        return IPAddress::Parse(std::string(host), address) &&
               moving.addresses.count(address.ToString()) != 0;
    };
    for (const MovableLine& moved : lines) {
        if (!moved.moves || (moved.address == new_address && moved.shift == 0)) {
            continue;
        }
        for (const Line& line : *moved.section) {
            const std::vector<std::string_view> hosts = other_addresses(line);
            if (std::any_of(hosts.begin(), hosts.end(), has_moved)) {
                warnings.push_back(
                    {line.number, Severity::WARNING, "this line still names the old address"});
            }
        }
    }
    return warnings;
}

// Moves the model and finds out what that adds to the ports of each line.
void move_model(QOVA_Capability& capability, std::vector<MovableLine>& lines, const Plan& plan,
                bool back) {
    const auto add_ports = [&lines](int sign) {
        for (MovableLine& line : lines) {
            const int port = line.leader == nullptr ? 0 : line.leader->rcvPort;
            line.shift = static_cast<unsigned short>(line.shift + sign * port);
        }
    };
    const UDPAddr endpoint(plan.address.ip(), 0);
    add_ports(-1);
    if (back) {
        capability.setLocalAddrPort(endpoint, plan.audio_port, plan.fax_port);
    } else {
        capability.setPublicAddrPort(endpoint, plan.audio_port, plan.fax_port);
    }
    add_ports(1);
}

// Moves a description without trying the way back. The log text after the move is missing.
Move move_once(const std::string& text, const Plan& plan, const MoveOptions& options) {
    const Description description(text);
    Reading reading = read(description, options.role, options.strictness);
    std::vector<MovableLine> lines = movable_lines(description, reading);
    for (const MovableLine& line : lines) {
        check_ports(line, plan, options.back);
    }
    const MovingAddresses moving = moving_addresses(description, lines, options.merge);

    Move result;
    if (moving.addresses.empty()) {
        result.old_address = plan.address;  // any address: the text has none
    } else if (moving.addresses.size() == 1) {
        result.old_address = MediaAddress::parse(moving.first_written);
    }
    result.log_before = std::string(*reading.capability);
    const std::string new_address = plan.address.ip().ToString();
    move_model(*reading.capability, lines, plan, options.back);
    check_endpoints(lines, new_address);
    result.text = edited(description, lines, moving, plan.address, options.back);
    result.diagnostics = std::move(reading.diagnostics);
    for (Diagnostic& warning : left_behind(lines, moving, new_address)) {
        if (options.strictness == Strictness::STRICT) {
            throw Refusal(warning.line, warning.message);
        }
        result.diagnostics.push_back(std::move(warning));
    }
    sort(result.diagnostics);
    return result;
}

// Throws Refusal if the reverse move does not restore the text.
void check_way_back(const std::string& text, const Move& moved, const Plan& plan,
                    const MoveOptions& options) {
    const Plan old_plan = {*moved.old_address, plan.audio_port, plan.fax_port};
    std::string restored;
    try {
        restored = move_once(moved.text, old_plan,
                             {!options.back, options.merge, options.role, Strictness::LENIENT})
                       .text;
    } catch (const Refusal& refusal) {
        throw Refusal(0, "the reverse move would be refused, at line " +
                             std::to_string(refusal.line) +
                             " of the moved description: " + refusal.what());
    }
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
    result.log_after =
        std::string(*read(Description(result.text), options.role, Strictness::LENIENT).capability);
    if (result.old_address) {
        try {
            check_way_back(text, result, plan, options);
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
