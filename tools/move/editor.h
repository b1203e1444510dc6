// Changes addresses and ports in a description's own text, and nothing else of it.

#ifndef QOVA_TOOLS_MOVE_EDITOR_H
#define QOVA_TOOLS_MOVE_EDITOR_H

#include <string>
#include <string_view>
#include <vector>

#include "move/movable.h"
#include "move/mover.h"
#include "sdp/text.h"

namespace sdp {

class Editor {
public:
    // Moves the addresses. Throws Refusal for one that cannot move.
    Editor(const Description& whole, const Plan& how, const MovingAddresses& moving);

    void edit_ports(const MovableLine& line, unsigned short shift);

    // Keeps the address of a line that does not move (see "The way back" in sdp_mover.h).
    void keep_address(const Section& section);

    std::string result() const;

private:
    struct Edit {
        std::size_t offset;
        std::size_t length;  // of what goes
        std::string text;    // that comes in its place
    };
    static std::string apply(std::string_view text, std::vector<Edit> edits);

    void replace(std::string_view piece, std::string text);
    void edit_address(const AddressField& field);
    std::string edited(const Line& line) const;
    void insert_connection(const Line& before);
    void remove_connection(const Line& before, const Line& copy);

    const Description& description;
    const Plan& plan;
    IPAddress address;
    std::string old_connection;  // the session's c= line, when it changes
    std::string new_connection;
    std::string connection_ending;
    std::vector<Edit> edits;
};

}  // namespace sdp

#endif
