#include "move/movable.h"

#include <map>
#include <optional>
#include <utility>

#include "move/mover.h"
#include "sdp/strings.h"

namespace sdp {
namespace {

constexpr unsigned long discard_port = 9;

// Returns the address of a line; nullopt if it is a host name or broken.
std::optional<AddressField> address_or_none(const Line& line) {
    try {
        return address_of(line);
    } catch (const Refusal&) {
        return std::nullopt;
    }
}

// Returns the bundle of each media identification (a=mid), as the number of its a=group line.
std::map<std::string_view, std::size_t> bundles_of(const Section& session) {
    std::map<std::string_view, std::size_t> bundles;
    for (const Line* const line : attributes(session, "group")) {
        const std::vector<std::string_view> fields = tokens(line->value);
        for (std::size_t i = 1; i < fields.size() && same(fields[0], "BUNDLE"); ++i) {
            bundles.emplace(fields[i], line->number);
        }
    }
    return bundles;
}

std::size_t bundle_of(const Section& section,
                      const std::map<std::string_view, std::size_t>& bundles) {
    const std::vector<const Line*> mids = attributes(section, "mid");
    const auto found = mids.empty() ? bundles.end() : bundles.find(mids.front()->value);
    return found == bundles.end() ? 0 : found->second;
}

// Returns true for transports such as TCP/RTP/AVP or TCPTL.
bool is_over_tcp(std::string_view transport) {
    const std::string_view first = split(transport, "/", 2).front();
    return same(first, "tcp") || same(first, "tcptl");
}

std::vector<Port> ports_of(const MediaLine& media, const MovableLine& line) {
    // Without an address, no candidate is known yet (RFC 8838); a TCP line will connect (RFC 4145).
    const auto is_discarded = [&line](unsigned long port, bool is_at_address) {
        return port == discard_port && (line.is_tcp || !is_at_address);
    };
    std::vector<Port> ports;
    if (!is_discarded(media.port, !line.address.empty())) {
        ports.push_back({media.port_digits, media.port, media.port + media.more_ports});
    }
    if (const Line* const attribute = rtcp_of(*line.section)) {
        const unsigned short port = rtcp_port(*attribute);
        const auto own = address_of(*attribute);
        const bool is_at_address = own ? own->address.IsAny() == 0 : !line.address.empty();
        if (!is_discarded(port, is_at_address)) {
            ports.push_back({tokens(attribute->value).front(), port, port});
        }
    } else if (!ports.empty() && media.is_rtp && !line.is_tcp &&
               attributes(*line.section, "rtcp-mux").empty()) {
        ports.push_back({{}, media.port + 1, media.port + 1});
    }
    return ports;
}

// Returns the specified addresses of a line: of its c= lines, or the session's, and of its a=rtcp.
std::vector<AddressField> addresses_of(const Section& section, const Line* session_connection) {
    std::vector<AddressField> fields;
    const auto add = [&fields](const Line& line) {
        const auto field = address_of(line);
        if (field && field->address.IsAny() == 0) {
            fields.push_back(*field);
        }
    };
    if (first_connection(section) == nullptr && session_connection != nullptr) {
        add(*session_connection);
    }
    const Line* const rtcp = rtcp_of(section);
    for (const Line& line : section) {
        if (line.type == 'c' || &line == rtcp) {
            add(line);
        }
    }
    return fields;
}

Endpoint endpoint_of(const MovableLine& line) {
    return {line.is_tcp, line.address, line.ports.empty() ? 0 : line.ports.front().first};
}

// Lines that are bundled on one port move with the first one that the model moves.
void follow_bundles(std::vector<MovableLine>& lines) {
    std::map<std::pair<std::size_t, Endpoint>, const QOVA_Media*> leaders;
    for (const MovableLine& line : lines) {
        if (line.leader != nullptr) {
            leaders.emplace(std::pair(line.bundle, endpoint_of(line)), line.leader);
        }
    }
    for (MovableLine& line : lines) {
        const auto found = leaders.find({line.bundle, endpoint_of(line)});
        if (line.moves && line.bundle != 0 && line.leader == nullptr && found != leaders.end()) {
            line.leader = found->second;
        }
    }
}

}  // namespace

std::vector<MovableLine> movable_lines(const Description& description, const Reading& reading) {
    const Section& session = description.sections.front();
    const Line* const session_connection = first_connection(session);
    const auto bundles = bundles_of(session);
    std::vector<MovableLine> lines;
    for (std::size_t i = 0; i < reading.lines.size(); ++i) {
        const QOVA_Media* const media = reading.lines[i].media;
        const Section& section = description.sections[i + 1];
        const MediaLine parsed = media_line(section.front());
        MovableLine line = {};
        line.section = &section;
        line.moves = media != nullptr && media->mediaStatus != QOVA_Media::MS_REJECTED;
        line.is_tcp = is_over_tcp(parsed.transport);
        line.bundle = bundle_of(section, bundles);
        const Line* const own = first_connection(section);
        if (const Line* const connection = own != nullptr ? own : session_connection) {
            const auto field = address_or_none(*connection);
            line.address = field && field->address.IsAny() == 0 ? field->address.ToString() : "";
        }
        if (line.moves) {
            const bool has_ports =
                media->mediaType == QOVA_Media::MT_AUDIO || media->mediaType == QOVA_Media::MT_FAX;
            line.leader = has_ports ? media : nullptr;
            line.at = addresses_of(section, session_connection);
            line.ports = ports_of(parsed, line);
        } else if (parsed.port != 0) {
            line.ports.push_back({parsed.port_digits, parsed.port, parsed.port});
        }
        lines.push_back(std::move(line));
    }
    follow_bundles(lines);
    return lines;
}

MovingAddresses moving_addresses(const Description& description,
                                 const std::vector<MovableLine>& lines, bool merge) {
    MovingAddresses moving;
    std::size_t first_line = 0;
    const Section& session = description.sections.front();
    const Line* const session_connection = first_connection(session);
    for (const MovableLine& line : lines) {
        for (const AddressField& field : line.at) {
            const std::string address = field.address.ToString();
            refuse_if(address != line.at.front().address.ToString(), field.line,
                      "a media line with two addresses cannot move");
            if (moving.addresses.empty()) {
                moving.first_written = field.text;
                first_line = field.line;
            }
            moving.addresses.insert(address);
            if (moving.addresses.size() > 1 && !merge) {
                throw SeveralAddresses(field.line,
                                       "the address differs from that of line " +
                                           std::to_string(first_line) +
                                           "; moving both to one address cannot be undone");
            }
            if (session_connection == nullptr || field.line != session_connection->number) {
                moving.fields.push_back(field);
            }
        }
    }
    // The lines of the session change too, if they have an address that moves.
    for (const Line& line : session) {
        if (line.type != 'c' && line.type != 'o') {
            continue;
        }
        const auto field = address_or_none(line);
        if (field && moving.addresses.count(field->address.ToString()) != 0) {
            moving.fields.push_back(*field);
            if (line.type == 'c') {
                moving.session_connection = &line;
            }
        }
    }
    for (const AddressField& field : moving.fields) {
        refuse_if(field.address.IsMulticast() || field.suffix, field.line,
                  field.address.IsMulticast() ? "a multicast address cannot move"
                                              : "an address with a TTL or a count cannot move");
    }
    return moving;
}

}  // namespace sdp
