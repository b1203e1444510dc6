#include "qova/enumerations.h"

#include <algorithm>
#include <cstring>

#include "qova/attributes.h"
#include "qova/media.h"
#include "text.h"

namespace {

using Name = char[qova::name_size];

// The names of the values 0, 1, 2 ... of each enumeration. The last entry is the name of all other
// values.
constexpr Name codec_names[] = {"NIL",     "G711alaw", "G711ulaw", "G723",   "G729", "G729a",
                                "G711nil", "G729nil",  "G722",     "G722.2", "OPUS", "NIL"};
constexpr Name direction_names[] = {"nil",      "sendrecv", "sendonly",
                                    "recvonly", "inactive", "unknown???"};
constexpr Name transport_names[] = {"NIL", "T38udptl", "T38tcp", "NIL"};
constexpr Name rate_management_names[] = {"NIL", "TRFTCF", "LocalTCF", "NIL"};
constexpr Name type_names[] = {"Nil", "Audio", "Video", "Fax", "Data", "Nil"};
constexpr Name status_names[] = {"Unknown", "Accepted", "Rejected", "Modified", "Unknown"};

// Copies the whole array, which is faster than copying `strlen` bytes. Negative values become large
// unsigned ones and select the last entry.
char* put_name(char* to, const Name* names, unsigned int last, int value) {
    const Name& name = names[std::min(static_cast<unsigned int>(value), last)];
    std::memcpy(to, name, sizeof name);
    return to + std::strlen(name);
}

template <std::size_t Count>
char* put_name(char* to, const Name (&names)[Count], int value) {
    return put_name(to, names, Count - 1, value);
}

// Returns the name of a value.
template <class Enumeration>
std::string name_of(Enumeration value) {
    std::string name;
    qova::append(name, value);
    return name;
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
    return name_of(codec);
}

std::string ToString(QOVA_EarlyMedia direction) {
    return name_of(direction);
}

std::string QOVA_Media::ToString(e_MediaStatus status) {
    return name_of(status);
}

std::string QOVA_Media::ToString(e_MediaType type) {
    return name_of(type);
}
