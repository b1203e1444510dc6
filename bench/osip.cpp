// The same operations with osip2, on the same offer as a session description.

#include <osipparser2/osip_port.h>
#include <osipparser2/sdp_message.h>

#include <string>

#include "add.h"
#include "expect.h"
#include "offer.h"
#include "operations.h"

namespace {

class Message {
public:
    explicit Message(const QOVA_Capability& capability) {
        expect(sdp_message_init(&message) == 0 &&
                   sdp_message_parse(message, offer::sdp(capability).c_str()) == 0,
               "the offer as osip2 reads it");
    }
    ~Message() { sdp_message_free(message); }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    sdp_message_t* operator*() const { return message; }

private:
    sdp_message_t* message = nullptr;
};

template <class Use>
auto on_message(Use use) {
    return [use](int lines) {
        return [use, message = Message(offer::make(lines))] { use(*message); };
    };
}

bool add_all() {
    using operations::ALL_LINES;
    using operations::keep;

    add("copy_and_free/osip", ALL_LINES, on_message([](sdp_message_t* message) {
            sdp_message_t* copy = nullptr;
            sdp_message_clone(message, &copy);
            keep(copy);
            sdp_message_free(copy);
        }));
    add("text/osip", ALL_LINES, on_message([](sdp_message_t* message) {
            char* text = nullptr;
            sdp_message_to_str(message, &text);
            keep(text);
            osip_free(text);
        }));
    return true;
}

const bool added = add_all();

}  // namespace
