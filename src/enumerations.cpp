#include "qova/enumerations.h"

#include <iterator>
#include <string_view>

#include "qova/attributes.h"
#include "qova/media.h"
#include "text.h"

namespace {

// The names of the values 0, 1, 2 ... of an enumeration.
template <std::size_t Count>
struct Names {
    std::string_view names[Count];
    std::string_view others;  // of the values beyond, negative ones included

    constexpr std::string_view operator[](int value) const {
        const auto index = static_cast<unsigned int>(value);
        return index < Count ? names[index] : others;
    }
};

constexpr Names<11> codec_names = {{"NIL", "G711alaw", "G711ulaw", "G723", "G729", "G729a",
                                    "G711nil", "G729nil", "G722", "G722.2", "OPUS"},
                                   "NIL"};
constexpr Names<5> direction_names = {{"nil", "sendrecv", "sendonly", "recvonly", "inactive"},
                                      "unknown???"};
constexpr Names<3> transport_names = {{"NIL", "T38udptl", "T38tcp"}, "NIL"};
constexpr Names<3> rate_management_names = {{"NIL", "TRFTCF", "LocalTCF"}, "NIL"};
constexpr Names<5> type_names = {{"Nil", "Audio", "Video", "Fax", "Data"}, "Nil"};
constexpr Names<4> status_names = {{"Unknown", "Accepted", "Rejected", "Modified"}, "Unknown"};

char* put_name(char* to, std::string_view name) {
    return to + name.copy(to, name.size());
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
    return put_name(to, codec_names[value]);
}

char* qova::put(char* to, QOVA_EarlyMedia value) {
    return put_name(to, direction_names[value]);
}

char* qova::put(char* to, QOVA_FaxTransport value) {
    return put_name(to, transport_names[value]);
}

char* qova::put(char* to, QOVA_FaxRateMgt value) {
    return put_name(to, rate_management_names[value]);
}

char* qova::put(char* to, QOVA_Media::e_MediaType value) {
    return put_name(to, type_names[value]);
}

char* qova::put(char* to, QOVA_Media::e_MediaStatus value) {
    return put_name(to, status_names[value]);
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
