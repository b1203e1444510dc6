#include "move/checks.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

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

}  // namespace

// The library computes modulo 65536 and moves port 0 like any other.
void check_ports(const MovableLine& line, const Plan& plan, bool back) {
    if (line.leader == nullptr) {
        return;
    }
    const int shift = (back ? -1 : 1) * port_shift(plan, line.leader->mediaType);
    for (const Port& port : line.ports) {
        if (port.first > 65535) {
            throw Refusal(line.number(), "there is no RTCP port after port 65535");
        }
        for (const int number : {static_cast<int>(port.first), static_cast<int>(port.last)}) {
            if (!is_port(number + shift)) {
                throw Refusal(line.number(), "the move would change port " +
                                                 std::to_string(number) + " to " +
                                                 std::to_string(number + shift));
            }
        }
    }
}

void check_endpoints(const std::vector<MovableLine>& lines, const Shifts& shifts,
                     const std::string& new_address) {
    std::map<Endpoint, const MovableLine*> ends;
    std::map<std::pair<std::size_t, Endpoint>, Endpoint> bundled;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const MovableLine& line = lines[i];
        if (line.address.empty()) {
            continue;
        }
        const std::string& address = line.moves ? new_address : line.address;
        for (const Port& port : line.ports) {
            if (port.digits.empty()) {
                continue;
            }
            const Endpoint end = {line.is_tcp, address, moved_port(port, shifts[i])};
            const MovableLine& first = *ends.emplace(end, &line).first->second;
            if (&first != &line && (line.bundle == 0 || line.bundle != first.bundle)) {
                throw Refusal(line.number(),
                              "the move would give this line the address and port of line " +
                                  std::to_string(first.number()));
            }
            if (line.bundle != 0) {
                const Endpoint begin = {line.is_tcp, line.address, port.first};
                const auto known = bundled.emplace(std::pair(line.bundle, begin), end).first;
                if (known->second != end) {
                    throw Refusal(line.number(),
                                  "the move would separate this line from those that are bundled "
                                  "with it on one port");
                }
            }
        }
    }
}

Diagnostics left_behind(const std::vector<MovableLine>& lines, const Shifts& shifts,
                        const MovingAddresses& moving, const std::string& new_address) {
    Diagnostics warnings;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool stays = lines[i].address == new_address && shifts[i] == 0;
        if (!lines[i].moves || stays) {
            continue;
        }
        const auto has_moved = [&moving](std::string_view host) {
            IPAddress address;
            return IPAddress::Parse(std::string(host), address) &&
                   moving.addresses.count(address.ToString()) != 0;
        };
        for (const Line& line : *lines[i].section) {
            const std::vector<std::string_view> hosts = other_addresses(line);
            if (std::any_of(hosts.begin(), hosts.end(), has_moved)) {
                warnings.push_back(
                    {line.number, Severity::WARNING, "this line still names the old address"});
            }
        }
    }
    return warnings;
}

}  // namespace sdp
