#include "move/editor.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace sdp {
namespace {

struct Edit {
    std::string_view old;  // a piece of the description
    std::string text;      // what replaces it
};

// Returns a piece of the description with the edits in it, which are in their order.
std::string with_edits(std::string_view piece, const std::vector<Edit>& edits) {
    std::string result;
    const char* done = piece.data();
    const char* const end = done + piece.size();
    for (const Edit& edit : edits) {
        if (edit.old.data() >= done && edit.old.data() <= end) {
            result.append(done, edit.old.data()).append(edit.text);
            done = edit.old.data() + edit.old.size();
        }
    }
    return result.append(done, end);
}

const char* end_of(const Line& line) {
    return line.ending.data() + line.ending.size();
}

// Returns true if a section has a line with this index and no blank line before it.
bool is_next(const Section& section, std::size_t index) {
    return index < section.size() && section[index].text.data() == end_of(section[index - 1]);
}

class Editor {
public:
    explicit Editor(const Description& given_description) : description(given_description) {}

    // The label, such as "ip4", keeps its case.
    void edit_address(const AddressField& field, const MediaAddress& address) {
        if (field.address.Family() != address.ip().Family()) {
            const std::string_view digit = field.label.substr(2);
            replace(digit, digit == "4" ? "6" : "4");
        }
        replace(field.text, address.text());
    }

    // A port that stays can have leading zeros: it is not written again.
    void edit_ports(const MovableLine& line) {
        for (const Port& port : line.ports) {
            if (!port.digits.empty() && line.shift != 0) {
                replace(port.digits, std::to_string(line.moved(port)));
            }
        }
    }

    // Remembers the session's c= line before and after its edits.
    void set_connection(const Line& line) {
        old_connection = line.text;
        new_connection = with_edits(line.text, edits);
        connection_ending = line.ending;
    }

    // Adds or removes a copy of the session's old c= line.
    void keep_address(const Section& section, bool back) {
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
        while (is_next(section, before + 1 + copies) && section[before + 1 + copies].text == copy) {
            ++copies;
        }
        if (all == 0 || (!back && copies == all)) {
            insert_connection(section[before]);
        } else if (copies == all) {
            remove_connection(section[before], section[before + 1]);
        }
    }

    std::string result() {
        std::stable_sort(edits.begin(), edits.end(), [](const auto& left, const auto& right) {
            return left.old.data() < right.old.data();
        });
        return with_edits(description.text, edits);
    }

private:
    void replace(std::string_view piece, std::string text) {
        edits.push_back({piece, std::move(text)});
    }

    void insert_connection(const Line& before) {
        const std::string ending(before.ending);
        replace(before.ending.substr(before.ending.size()),
                ending.empty() ? connection_ending + old_connection : old_connection + ending);
    }

    // Undoes insert_connection(), if that can have added the copy.
    void remove_connection(const Line& before, const Line& copy) {
        if (copy.ending == before.ending) {
            replace({copy.text.data(), copy.text.size() + copy.ending.size()}, "");
        } else if (copy.ending.empty() && before.ending == connection_ending) {
            replace({before.ending.data(), before.ending.size() + copy.text.size()}, "");
        }
    }

    const Description& description;
    std::string old_connection;
    std::string new_connection;
    std::string connection_ending;
    std::vector<Edit> edits;
};

}  // namespace

std::string edited(const Description& description, const std::vector<MovableLine>& lines,
                   const MovingAddresses& moving, const MediaAddress& address, bool back) {
    Editor editor(description);
    for (const AddressField& field : moving.fields) {
        editor.edit_address(field, address);
    }
    if (moving.session_connection != nullptr) {
        editor.set_connection(*moving.session_connection);
    }
    for (const MovableLine& line : lines) {
        if (line.moves) {
            editor.edit_ports(line);
        } else {
            editor.keep_address(*line.section, back);
        }
    }
    return editor.result();
}

}  // namespace sdp
