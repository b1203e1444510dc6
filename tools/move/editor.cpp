#include "move/editor.h"

#include <algorithm>
#include <utility>

namespace sdp {

namespace {

// Returns true if a section has a line with this index and no blank line before it.
bool is_next(const Section& section, std::size_t index) {
    return index < section.size() && section[index].begin == section[index - 1].next;
}

}  // namespace

Editor::Editor(const Description& given_description, const MediaAddress& given_address,
               bool given_back, const MovingAddresses& moving)
    : description(given_description), address(given_address), back(given_back) {
    for (const AddressField& field : moving.fields) {
        if (field.address.IsMulticast()) {
            throw Refusal(field.line, "a multicast address cannot move");
        }
        if (field.suffix) {
            throw Refusal(field.line, "an address with a TTL or a count cannot move");
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

// A port that stays can have leading zeros: it is not written again.
void Editor::edit_ports(const MovableLine& line, unsigned short shift) {
    for (const Port& port : line.ports) {
        if (!port.digits.empty() && shift != 0) {
            replace(port.digits, std::to_string(moved_port(port, shift)));
        }
    }
}

void Editor::keep_address(const Section& section) {
    if (old_connection == new_connection) {
        return;
    }
    // Copies come after this line.
    std::size_t before = 0;
    while (is_next(section, before + 1) && section[before + 1].type == 'i') {
        ++before;
    }
    const auto all = static_cast<std::size_t>(std::count_if(
        section.begin(), section.end(), [](const Line& line) { return line.type == 'c'; }));
    const std::string& copy = back ? new_connection : old_connection;
    std::size_t copies = 0;
    while (is_next(section, before + 1 + copies) &&
           description.content(section[before + 1 + copies]) == copy) {
        ++copies;
    }
    if (all == 0 || (!back && copies == all)) {
        insert_connection(section[before]);
    } else if (copies == all) {
        remove_connection(section[before], section[before + 1]);
    }
}

std::string Editor::result() const {
    return apply(description.text, edits);
}

std::string Editor::apply(std::string_view text, std::vector<Edit> edits) {
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

void Editor::replace(std::string_view piece, std::string text) {
    edits.push_back({description.offset(piece), piece.size(), std::move(text)});
}

// The label, such as "ip4", keeps its case.
void Editor::edit_address(const AddressField& field) {
    if (field.address.Family() != address.ip().Family()) {
        const std::string_view digit = field.label.substr(2);
        replace(digit, digit == "4" ? "6" : "4");
    }
    replace(field.text, address.text());
}

// Returns a line with the edits so far.
std::string Editor::edited(const Line& line) const {
    std::vector<Edit> of_line;
    for (const Edit& edit : edits) {
        if (edit.offset >= line.begin && edit.offset < line.end) {
            of_line.push_back({edit.offset - line.begin, edit.length, edit.text});
        }
    }
    return apply(description.content(line), std::move(of_line));
}

void Editor::insert_connection(const Line& before) {
    if (description.ending(before).empty()) {
        edits.push_back({before.end, 0, connection_ending + old_connection});
    } else {
        std::string line = old_connection;
        edits.push_back({before.next, 0, line.append(description.ending(before))});
    }
}

// Undoes insert_connection(), if that can have added the copy.
void Editor::remove_connection(const Line& before, const Line& copy) {
    if (description.ending(copy) == description.ending(before)) {
        edits.push_back({copy.begin, copy.next - copy.begin, {}});
    } else if (description.ending(copy).empty() &&
               description.ending(before) == connection_ending) {
        edits.push_back({before.end, copy.end - before.end, {}});
    }
}

}  // namespace sdp
