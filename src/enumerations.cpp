#include "qova/enumerations.h"

#include <cstring>

#include "qova/attributes.h"
#include "qova/media.h"
#include "text.h"

namespace {

// A name in a record of its own: copied whole, which is quicker than to its length.
struct Name {
    unsigned char length;
    char text[qova::longest_name];

    template <std::size_t N>
    constexpr Name(const char (&literal)[N]) : length(N - 1), text() {
        static_assert(N - 1 <= sizeof text, "a name that does not fit");
        for (std::size_t i = 0; i < N - 1; ++i) {
            text[i] = literal[i];
        }
    }
};

// The names of the values 0, 1, 2 ... of each enumeration, and the one of all other values last.
constexpr Name codec_names[] = {"NIL",     "G711alaw", "G711ulaw", "G723",   "G729", "G729a",
                                "G711nil", "G729nil",  "G722",     "G722.2", "OPUS", "NIL"};
constexpr Name direction_names[] = {"nil",      "sendrecv", "sendonly",
                                    "recvonly", "inactive", "unknown???"};
constexpr Name transport_names[] = {"NIL", "T38udptl", "T38tcp", "NIL"};
constexpr Name rate_management_names[] = {"NIL", "TRFTCF", "LocalTCF", "NIL"};
constexpr Name type_names[] = {"Nil", "Audio", "Video", "Fax", "Data", "Nil"};
constexpr Name status_names[] = {"Unknown", "Accepted", "Rejected", "Modified", "Unknown"};

// Negative values are great ones when read unsigned.
char* put_name(char* to, const Name* names, unsigned int last, unsigned int value) {
    const Name& name = names[value < last ? value : last];
    std::memcpy(to, name.text, sizeof name.text);
    return to + name.length;
}

template <std::size_t Count>
char* put_name(char* to, const Name (&names)[Count], int value) {
    return put_name(to, names, Count - 1, static_cast<unsigned int>(value));
}

}  // namespace

char* qova::put(char* to, QOVA_Codec value) {
    const unsigned int first_dynamic = 96;
    const unsigned int last_dynamic = 127;
    if (static_cast<unsigned int>(value) - first_dynamic <= last_dynamic - first_dynamic) {
        to = put(to, "DYN(");
        to = put(to, static_cast<int>(value));
        return put(to, ")");
    }
    return put_name(to, codec_names, value);
}

char* qova::put(char* to, QOVA_EarlyMedia value) {
    return put_name(to, direction_names, value);
}

char* qova::put(char* to, QOVA_FaxTransport value) {
    return put_name(to, transport_names, value);
}

char* qova::put(char* to, QOVA_FaxRateMgt value) {
    return put_name(to, rate_management_names, value);
}

char* qova::put(char* to, QOVA_Media::e_MediaType value) {
    return put_name(to, type_names, value);
}

char* qova::put(char* to, QOVA_Media::e_MediaStatus value) {
    return put_name(to, status_names, value);
}

std::string ToString(QOVA_Codec codec) {
    return qova::text_of(codec);
}

std::string ToString(QOVA_EarlyMedia direction) {
    return qova::text_of(direction);
}

std::string QOVA_Media::ToString(e_MediaStatus status) {
    return qova::text_of(status);
}

std::string QOVA_Media::ToString(e_MediaType type) {
    return qova::text_of(type);
}
