// Finds the description in what a file holds.

#ifndef QOVA_TOOLS_SDP_MESSAGE_H
#define QOVA_TOOLS_SDP_MESSAGE_H

#include <cstddef>
#include <string>

namespace sdp {

struct Found {
    std::string text;
    std::size_t lines_before = 0;  // in the file
    bool is_part = false;          // of a message or a multipart body
};

// The part of a SIP message or of a multipart body whose type is application/sdp, the first if
// there are several; any other text as a whole. Throws Refusal for a message or body without one.
Found find_description(const std::string& text);

}  // namespace sdp

#endif
