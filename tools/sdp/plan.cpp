#include "sdp/plan.h"

#include "qova/capability.h"

namespace sdp {

std::optional<MediaAddress> MediaAddress::parse(const std::string& text) {
    IPAddress address;
    if (!IPAddress::Parse(text, address) || address.IsMulticast() || address.IsAny() != 0) {
        return std::nullopt;
    }
    return MediaAddress(address, text);
}

int port_shift(const Plan& plan, QOVA_Media::e_MediaType type) {
    return type == QOVA_Media::MT_AUDIO ? plan.audio_port - QOVA_Capability::AUDIO_PORT_BASE
           : type == QOVA_Media::MT_FAX ? plan.fax_port - QOVA_Capability::FAX_PORT_BASE
                                        : 0;
}

bool is_port(int port) {
    return port >= 1 && port <= 65535;
}

}  // namespace sdp
