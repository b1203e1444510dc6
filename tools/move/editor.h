// Changes addresses and ports in the text of a description, and nothing else.

#ifndef QOVA_TOOLS_MOVE_EDITOR_H
#define QOVA_TOOLS_MOVE_EDITOR_H

#include <string>
#include <string_view>
#include <vector>

#include "move/movable.h"
#include "sdp/plan.h"
#include "sdp/text.h"

namespace sdp {

class Editor {
public:
    // Changes the addresses. Borrows its arguments. Throws Refusal for an address that cannot move.
    Editor(const Description& given_description, const MediaAddress& given_address, bool given_back,
           const MovingAddresses& moving);

    void edit_ports(const MovableLine& line, unsigned short shift);

    // Keeps the address of a line that does not move (see move/mover.h).
    void keep_address(const Section& section);

    std::string result() const;

private:
    struct Edit {
        std::size_t offset;
        std::size_t length;  // of the old text
        std::string text;    // the new text
    };
    static std::string apply(std::string_view text, std::vector<Edit> edits);

    void replace(std::string_view piece, std::string text);
    void edit_address(const AddressField& field);
    std::string edited(const Line& line) const;
    void insert_connection(const Line& before);
    void remove_connection(const Line& before, const Line& copy);

    const Description& description;
    const MediaAddress& address;
    const bool back;
    std::string old_connection;  // the session's c= line, if it changes
    std::string new_connection;
    std::string connection_ending;
    std::vector<Edit> edits;
};

}  // namespace sdp

#endif
