/// @file
/// Where media is sent to: an address, and ports that are measured from a base.

#ifndef QOVA_TOOLS_SDP_PLAN_H
#define QOVA_TOOLS_SDP_PLAN_H

#include <optional>
#include <string>

#include "qova/capability.h"
#include "socket/address.h"

namespace sdp {

/// An IPv4 or IPv6 address that media can be sent to: neither unspecified nor multicast. It keeps
/// its spelling.
class MediaAddress {
public:
    /// Returns nullopt if the text is not such an address.
    static std::optional<MediaAddress> parse(const std::string& text) {
        IPAddress address;
        if (!IPAddress::Parse(text, address) || address.IsMulticast() || address.IsAny() != 0) {
            return std::nullopt;
        }
        return MediaAddress(address, text);
    }

    const IPAddress& ip() const { return address; }       ///< The address.
    const std::string& text() const { return spelling; }  ///< The address as it was spelled.

private:
    MediaAddress(const IPAddress& given_address, const std::string& given_spelling)
        : address(given_address), spelling(given_spelling) {}

    IPAddress address;
    std::string spelling;
};

/// The address and ports that stand for the local ones.
struct Plan {
    MediaAddress address;       ///< Replaces the local address.
    unsigned short audio_port;  ///< Replaces QOVA_Capability::AUDIO_PORT_BASE; not 0.
    unsigned short fax_port;    ///< Replaces QOVA_Capability::FAX_PORT_BASE; not 0.
};

/// Returns what a plan adds to local ports; 0 for media other than audio and fax.
inline int port_shift(const Plan& plan, QOVA_Media::e_MediaType type) {
    return type == QOVA_Media::MT_AUDIO ? plan.audio_port - QOVA_Capability::AUDIO_PORT_BASE
           : type == QOVA_Media::MT_FAX ? plan.fax_port - QOVA_Capability::FAX_PORT_BASE
                                        : 0;
}

/// Returns true for a port from 1 to 65535.
constexpr bool is_port(int port) {
    return port >= 1 && port <= 65535;
}

}  // namespace sdp

#endif
