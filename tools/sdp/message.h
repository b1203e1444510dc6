/// @file
/// Finds the session description in a SIP message or a multipart body.

#ifndef QOVA_TOOLS_SDP_MESSAGE_H
#define QOVA_TOOLS_SDP_MESSAGE_H

#include <cstddef>
#include <string>

namespace sdp {

/// A description, and where it is.
struct Found {
    std::string text;              ///< The description.
    std::size_t lines_before = 0;  ///< The number of lines before it.
    bool is_part = false;          ///< It is a part of a message or a multipart body.
};

/// Returns the first part of type application/sdp of a SIP message or a multipart body (RFC 2046),
/// or any other text as a whole. Linear in the length of the text. Throws Refusal for a message or
/// a body without such a part.
Found find_description(const std::string& text);

}  // namespace sdp

#endif
