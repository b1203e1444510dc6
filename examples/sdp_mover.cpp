#include "sdp_mover.h"

#include <sys/socket.h>

#include <algorithm>
#include <set>
#include <utility>

#include "qova/capability.h"
#include "qova/media.h"
#include "sdp_reader.h"

namespace sdp {

namespace {

struct Edit {
    std::size_t offset;
    std::size_t length;  // of what goes
    std::string text;    // that comes in its place
};

std::string apply(std::string_view text, std::vector<Edit> edits) {
    std::stable_sort(edits.begin(), edits.end(), [](const Edit& left, const Edit& right) {
        return left.offset < right.offset;
    });
    std::string result;
    std::size_t done = 0;
    for (const Edit& edit : edits) {
        result += text.substr(done, edit.offset - done);
        result += edit.text;
        done = edit.offset + edit.length;
    }
    result += text.substr(done);
    return result;
}

bool moves(const QOVA_Media* media) {
    return media != nullptr && media->mediaStatus != QOVA_Media::MS_REJECTED;
}

bool moves_ports(const QOVA_Media* media) {
    return moves(media) &&
           (media->mediaType == QOVA_Media::MT_AUDIO || media->mediaType == QOVA_Media::MT_FAX);
}

// --- What the model's move would do -------------------------------------------------------------

// The library computes modulo 65536 and moves a port 0 like any other; a description cannot.
void check_ports(const Line& line, const QOVA_Media& media, const Plan& plan) {
    int shift = media.mediaType == QOVA_Media::MT_AUDIO
                    ? plan.audio_port - QOVA_Capability::AUDIO_PORT_BASE
                    : plan.fax_port - QOVA_Capability::FAX_PORT_BASE;
    if (plan.back) {
        shift = -shift;
    }
    if (media.rcvPort2 == 0) {
        throw Refusal(line.number, "port 65535 leaves no second port to move");
    }
    const int first = media.rcvPort;
    const int last = first + static_cast<int>(media_line(line).more_ports);
    for (const int port : {first, last, static_cast<int>(media.rcvPort2)}) {
        if (port + shift < 1 || port + shift > 65535) {
            throw Refusal(line.number, "the move takes port " + std::to_string(port) + " to " +
                                           std::to_string(port + shift));
        }
    }
}

// The addresses in a description that a move changes.
struct MovingAddresses {
    std::vector<AddressField> fields;          // each place once
    const Line* session_connection = nullptr;  // when it is one of the places
    std::string old_address;                   // see Move
};

// The specified addresses that a line uses: those of its c= lines, else the session's, and that of
// its a=rtcp.
std::vector<AddressField> addresses_of(const Section& section, const Line* session_connection) {
    std::vector<AddressField> fields;
    if (first_connection(section) == nullptr && session_connection != nullptr) {
        fields.push_back(connection_address(*session_connection));
    }
    const Line* const rtcp = rtcp_of(section);
    for (const Line& line : section) {
        if (line.type == 'c') {
            fields.push_back(connection_address(line));
        } else if (&line == rtcp) {
            if (const auto field = rtcp_address(line)) {
                fields.push_back(*field);
            }
        }
    }
    fields.erase(std::remove_if(fields.begin(), fields.end(),
                                [](const auto& field) { return field.address.IsAny() != 0; }),
                 fields.end());
    return fields;
}

// The address of a session's line; nothing where it is a host name or broken.
std::optional<AddressField> address_or_none(const Line& line) {
    try {
        return line.type == 'c' ? connection_address(line) : origin_address(line);
    } catch (const Refusal&) {
        return std::nullopt;
    }
}

MovingAddresses moving_addresses(const Description& description, const Reading& reading) {
    MovingAddresses moving;
    std::set<std::string> addresses;
    std::string first_written = "0.0.0.0";  // serves when there is nothing to write
    const Section& session = description.sections.front();
    const Line* const session_connection = first_connection(session);
    for (std::size_t i = 0; i < reading.media.size(); ++i) {
        if (!moves(reading.media[i])) {
            continue;
        }
        const std::vector<AddressField> fields =
            addresses_of(description.sections[i + 1], session_connection);
        for (const AddressField& field : fields) {
            const std::string address = field.address.ToString();
            if (address != fields.front().address.ToString()) {
                throw Refusal(field.line, "the media has a second address, which cannot move");
            }
            if (addresses.empty()) {
                first_written = field.text;
            }
            addresses.insert(address);
            if (session_connection == nullptr || field.line != session_connection->number) {
                moving.fields.push_back(field);
            }
        }
    }
    // The session's own places follow when they name an address that moves.
    for (const Line& line : session) {
        if (line.type != 'c' && line.type != 'o') {
            continue;
        }
        const auto field = address_or_none(line);
        if (field && addresses.count(field->address.ToString()) != 0) {
            moving.fields.push_back(*field);
            if (line.type == 'c') {
                moving.session_connection = &line;
            }
        }
    }
    if (addresses.size() <= 1) {
        moving.old_address = first_written;
    }
    return moving;
}

// --- The edits ----------------------------------------------------------------------------------

class Editor {
public:
    Editor(const Description& whole, const Plan& how, const IPAddress& to,
           const MovingAddresses& moving)
        : description(whole), plan(how), address(to) {
        for (const AddressField& field : moving.fields) {
            if (field.address.IsMulticast()) {
                throw Refusal(field.line, "a multicast address cannot move");
            }
            if (field.suffix) {
                throw Refusal(field.line, "an address with a number after it cannot move");
            }
            if (address.IsAny() != 0) {
                throw Refusal(0, "the new address is unspecified, which would hold the call");
            }
            edit_address(field);
        }
        if (moving.session_connection != nullptr) {
            const Line& line = *moving.session_connection;
            old_connection = description.content(line);
            new_connection = edited(line);
            connection_ending = description.ending(line);
        }
    }

    // The ports of a line, as the model has them now.
    void edit_ports(const Section& section, const QOVA_Media& media) {
        edit_port(media_line(section.front()).port_digits, media.rcvPort);
        if (const Line* const rtcp = rtcp_of(section)) {
            edit_port(rtcp_line(*rtcp).port_digits, media.rcvPort2);
        }
    }

    // Keeps the address of a line that does not move (see "The way back" in the header).
    void keep_address(const Section& section) {
        if (old_connection == new_connection) {
            return;
        }
        // The copy stands after this one.
        std::size_t before = 0;
        while (is_next(section, before + 1) && section[before + 1].type == 'i') {
            ++before;
        }
        const auto all = static_cast<std::size_t>(std::count_if(
            section.begin(), section.end(), [](const Line& line) { return line.type == 'c'; }));
        const std::string& copy = plan.back ? new_connection : old_connection;
        std::size_t copies = 0;
        while (is_next(section, before + 1 + copies) &&
               description.content(section[before + 1 + copies]) == copy) {
            ++copies;
        }
        if (all == 0 || (!plan.back && copies == all)) {
            insert_connection(section[before]);
        } else if (copies == all) {
            remove_connection(section[before], section[before + 1]);
        }
    }

    std::string result() { return apply(description.text, std::move(edits)); }

private:
    // Whether a section has a line of that index, with no blank line before it.
    static bool is_next(const Section& section, std::size_t index) {
        return index < section.size() && section[index].begin == section[index - 1].next;
    }

    void replace(std::string_view piece, std::string text) {
        edits.push_back({description.offset(piece), piece.size(), std::move(text)});
    }

    void edit_address(const AddressField& field) {
        if (field.address.Family() != address.Family()) {
            replace(field.label.substr(2), address.Family() == AF_INET ? "4" : "6");
        }
        replace(field.text, plan.address);
    }

    // The same number may be written with leading zeros: it stays as it is.
    void edit_port(std::string_view digits, unsigned short port) {
        if (number(digits, port) != port) {
            replace(digits, std::to_string(port));
        }
    }

    // A line as the edits so far make it.
    std::string edited(const Line& line) const {
        std::vector<Edit> of_line;
        for (const Edit& edit : edits) {
            if (edit.offset >= line.begin && edit.offset < line.end) {
                of_line.push_back({edit.offset - line.begin, edit.length, edit.text});
            }
        }
        return apply(description.content(line), std::move(of_line));
    }

    void insert_connection(const Line& before) {
        if (description.ending(before).empty()) {
            edits.push_back({before.end, 0, connection_ending + old_connection});
        } else {
            std::string line = old_connection;
            edits.push_back({before.next, 0, line.append(description.ending(before))});
        }
    }

    // The exact reverse, if insert_connection() can have made the line.
    void remove_connection(const Line& before, const Line& copy) {
        if (description.ending(copy) == description.ending(before)) {
            edits.push_back({copy.begin, copy.next - copy.begin, {}});
        } else if (description.ending(copy).empty() &&
                   description.ending(before) == connection_ending) {
            edits.push_back({before.end, copy.end - before.end, {}});
        }
    }

    const Description& description;
    const Plan& plan;
    const IPAddress& address;
    std::string old_connection;  // the session's c= line, when it changes
    std::string new_connection;
    std::string connection_ending;
    std::vector<Edit> edits;
};

Move move_once(const std::string& text, const Plan& plan) {
    if (!is_address(plan.address)) {
        throw Refusal(0, "the new address is not one that media can have");
    }
    const Description description(text);
    Reading reading = read(description, Role::OFFER, Strictness::LENIENT);
    QOVA_Capability& capability = *reading.capability;
    for (std::size_t i = 0; i < reading.media.size(); ++i) {
        if (moves_ports(reading.media[i])) {
            check_ports(description.sections[i + 1].front(), *reading.media[i], plan);
        }
    }
    const MovingAddresses moving = moving_addresses(description, reading);
    IPAddress address;
    IPAddress::Parse(plan.address, address);
    Editor editor(description, plan, address, moving);

    Move move;
    move.old_address = moving.old_address;
    move.warnings = std::move(reading.warnings);
    move.log_before = std::string(capability);
    const UDPAddr endpoint(address, 0);
    if (plan.back) {
        capability.setLocalAddrPort(endpoint, plan.audio_port, plan.fax_port);
    } else {
        capability.setPublicAddrPort(endpoint, plan.audio_port, plan.fax_port);
    }
    move.log_after = std::string(capability);

    for (std::size_t i = 0; i < reading.media.size(); ++i) {
        const Section& section = description.sections[i + 1];
        if (moves_ports(reading.media[i])) {
            editor.edit_ports(section, *reading.media[i]);
        } else if (!moves(reading.media[i])) {
            editor.keep_address(section);
        }
    }
    move.text = editor.result();
    return move;
}

void check_way_back(const std::string& text, const Plan& plan, const Move& move) {
    const Plan back = {move.old_address, plan.audio_port, plan.fax_port, true};
    const std::string restored = move_once(move.text, back).text;
    if (restored != text) {
        const auto differing =
            std::mismatch(text.begin(), text.end(), restored.begin(), restored.end()).first;
        const auto offset = static_cast<std::size_t>(differing - text.begin());
        throw Refusal(Description(text).line_at(offset),
                      "the reverse move would not restore this line: it is already at the new "
                      "address, or spells the old address or a port in an unusual way");
    }
}

}  // namespace

bool is_address(const std::string& text) {
    IPAddress address;
    return IPAddress::Parse(text, address) && !address.IsMulticast();
}

Move move(const std::string& text, const Plan& plan) {
    Move move = move_once(text, plan);
    if (!plan.back && !move.old_address.empty()) {
        check_way_back(text, plan, move);
    }
    return move;
}

}  // namespace sdp
