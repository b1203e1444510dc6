#include "sdp/writer.h"

#include <sofia-sip/sdp.h>
#include <sofia-sip/su_alloc.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "qova/crypto.h"
#include "qova/media.h"
#include "sdp/crypto.h"
#include "sdp/parser.h"

namespace sdp {

namespace {

// Memory for a session, freed as a whole.
struct FreeHome {
    void operator()(su_home_t* home) const { su_home_unref(home); }
};
using Home = std::unique_ptr<su_home_t, FreeHome>;

const char* copy_of(const Home& home, const std::string& text) {
    const char* const copy = su_strdup(home.get(), text.c_str());
    return copy != nullptr ? copy : throw std::bad_alloc();
}

// One of sofia-sip's records, which hold their size.
template <class Record>
Record* make(const Home& home, int Record::*size) {
    auto* const record = static_cast<Record*>(su_zalloc(home.get(), sizeof(Record)));
    if (record == nullptr) {
        throw std::bad_alloc();
    }
    record->*size = sizeof(Record);
    return record;
}

// Takes those out of a list for which it is so.
template <class Element, class Test>
void remove_if(Element*& first, Element* Element::*next, Test test) {
    for (Element** place = &first; *place != nullptr;) {
        if (test(**place)) {
            *place = (*place)->*next;
        } else {
            place = &((*place)->*next);
        }
    }
}

// Whether an answer keeps an attribute as it was offered.
bool stays(QOVA_Media::e_MediaType kind, std::string_view name) {
    constexpr std::string_view fax = "T38Fax";
    if (kind == QOVA_Media::MT_FAX) {
        return same(name.substr(0, fax.size()), fax) || same(name, "T38MaxBitRate");
    }
    return same(name, "ptime") || same(name, "maxptime") || same(name, "silenceSupp");
}

sdp_attribute_t* new_attribute(const Home& home, const std::string& name, const std::string& value,
                               sdp_attribute_t* next) {
    auto* const attribute = make<sdp_attribute_t>(home, &sdp_attribute_t::a_size);
    attribute->a_name = copy_of(home, name);
    attribute->a_value = value.empty() ? nullptr : copy_of(home, value);
    attribute->a_next = next;
    return attribute;
}

// The attributes of a section whose names stay, from its own lines: the parser reads some names
// otherwise.
template <class Test>
sdp_attribute_t* attributes_of(const Home& home, const Section& section, Test stays) {
    sdp_attribute_t* first = nullptr;
    for (auto line = section.rbegin(); line != section.rend(); ++line) {
        if (line->type == 'a' && stays(line->name)) {
            first = new_attribute(home, std::string(line->name), std::string(line->value), first);
        }
    }
    return first;
}

// The fmtp lines of a payload as one, since the parser keeps the last.
std::string fmtp_of(const Section& section, const sdp_rtpmap_t& payload) {
    const char* const separator = same(text_of(payload.rm_encoding), "telephone-event") ? "," : ";";
    std::string parameters;
    for (const Line& line : section) {
        if (!same(line.name, "fmtp")) {
            continue;
        }
        const std::vector<std::string_view> fields = split(line.value, blanks, 2);
        if (fields.size() == 2 && number(fields[0], 127) == payload.rm_pt) {
            parameters.append(parameters.empty() ? "" : separator).append(trimmed(fields[1]));
        }
    }
    return parameters;
}

// The session's times as they came, unless they are broken: the printer knows but one.
std::string times_of(const Section& session, const std::vector<Warning>& warnings) {
    std::string times;
    for (const Line& line : session) {
        const auto warning = std::lower_bound(
            warnings.begin(), warnings.end(), line.number,
            [](const Warning& candidate, std::size_t number) { return candidate.line < number; });
        const bool is_broken = warning != warnings.end() && warning->line == line.number;
        if (!is_broken && std::string_view("trz").find(line.type) != std::string_view::npos) {
            times.append(1, line.type).append("=").append(line.value).append("\r\n");
        }
    }
    return times.substr(0, 2) == "t=" ? times : "t=0 0\r\n";
}

// The format that stands for a line: of fax the one that makes it fax, else the first.
std::string format_of(const ReadLine& line) {
    const auto t38 =
        line.media == nullptr || line.media->mediaType != QOVA_Media::MT_FAX
            ? line.formats.end()
            : std::find_if(line.formats.begin(), line.formats.end(),
                           [](const std::string& format) { return same(format, "t38"); });
    return t38 != line.formats.end() ? *t38 : line.formats.empty() ? "0" : line.formats.front();
}

// What is true of every line of an answer.
void begin(const Home& home, const ReadLine& line, sdp_media_t& media) {
    // By name, as the parser knows few transports, and some by another name.
    media.m_type = sdp_media_x;
    media.m_type_name = copy_of(home, line.kind);
    media.m_proto = sdp_proto_x;
    media.m_proto_name = copy_of(home, line.transport);
    media.m_number_of_ports = 0;
    media.m_information = nullptr;
    media.m_connections = nullptr;
    media.m_bandwidths = nullptr;
    media.m_key = nullptr;
    media.m_format = make<sdp_list_t>(home, &sdp_list_t::l_size);  // where there are no payloads
    media.m_format->l_text = copy_of(home, format_of(line));
}

void reject(sdp_media_t& media) {
    media.m_port = 0;
    media.m_mode = sdp_sendrecv;
    media.m_rtpmaps = nullptr;
    media.m_attributes = nullptr;
}

void accept(const Home& home, const Section& section, const QOVA_Media& answer,
            const std::vector<unsigned>& payloads, sdp_media_t& media) {
    media.m_port = answer.rcvPort;
    media.m_mode = answer.bsnd   ? answer.brcv ? sdp_sendrecv : sdp_sendonly
                   : answer.brcv ? sdp_recvonly
                                 : sdp_inactive;
    remove_if(media.m_rtpmaps, &sdp_rtpmap_t::rm_next, [&](const sdp_rtpmap_t& map) {
        return std::find(payloads.begin(), payloads.end(), map.rm_pt) == payloads.end();
    });
    for (sdp_rtpmap_t* map = media.m_rtpmaps; map != nullptr; map = map->rm_next) {
        const unsigned payload = map->rm_pt;  // once each
        remove_if(map->rm_next, &sdp_rtpmap_t::rm_next,
                  [payload](const sdp_rtpmap_t& other) { return other.rm_pt == payload; });
        const std::string fmtp = fmtp_of(section, *map);
        map->rm_fmtp = fmtp.empty() ? nullptr : copy_of(home, fmtp);
    }
    media.m_attributes = attributes_of(
        home, section, [&](std::string_view name) { return stays(answer.mediaType, name); });
    if (!answer.cryptos.empty()) {
        media.m_attributes = new_attribute(
            home, "crypto", crypto_value(*answer.cryptos.front(), section), media.m_attributes);
    }
}

}  // namespace

Origin origin_of(const Reading& reading) {
    const sdp_origin_t& origin = *reading.session->sdp_origin;
    return {origin.o_id, origin.o_version};
}

std::string write(const Description& offer, const Reading& reading, const QOVA_Capability& answer,
                  const std::vector<std::vector<unsigned>>& payloads, const IPAddress& address,
                  const Origin& origin) {
    const Home home(static_cast<su_home_t*>(su_home_new(sizeof(su_home_t))));
    sdp_session_t* const session = sdp_session_dup(home.get(), reading.session.get());
    if (session == nullptr) {
        throw std::bad_alloc();
    }
    auto* const connection = make<sdp_connection_t>(home, &sdp_connection_t::c_size);
    connection->c_nettype = sdp_net_in;
    connection->c_addrtype = address.Size() == 4 ? sdp_addr_ip4 : sdp_addr_ip6;
    connection->c_address = copy_of(home, address.ToString());
    session->sdp_origin->o_username = "-";
    session->sdp_origin->o_id = origin.id;
    session->sdp_origin->o_version = origin.version;
    session->sdp_origin->o_address = connection;
    session->sdp_subject = "-";
    session->sdp_time = nullptr;
    session->sdp_information = nullptr;
    session->sdp_uri = nullptr;
    session->sdp_emails = nullptr;
    session->sdp_phones = nullptr;
    session->sdp_connection = connection;
    session->sdp_bandwidths = nullptr;
    session->sdp_key = nullptr;
    session->sdp_charset = nullptr;
    session->sdp_attributes =
        attributes_of(home, offer.sections.front(),
                      [](std::string_view name) { return same(name, "silenceSupp"); });

    sdp_media_t* media = session->sdp_media;
    auto answered = answer.filteredMedia.begin();
    for (std::size_t i = 0; i < reading.lines.size(); ++i, media = media->m_next) {
        const ReadLine& line = reading.lines[i];
        const QOVA_Media* const own = line.media == nullptr ? nullptr : *answered++;
        begin(home, line, *media);
        if (own == nullptr || own->mediaStatus == QOVA_Media::MS_REJECTED) {
            reject(*media);
        } else {
            accept(home, offer.sections[i + 1], *own, payloads[i], *media);
        }
    }
    struct FreePrinter {
        void operator()(sdp_printer_t* printer) const { sdp_printer_free(printer); }
    };
    const std::unique_ptr<sdp_printer_t, FreePrinter> printer(
        sdp_print(home.get(), session, nullptr, 0, sdp_f_realloc));
    if (const char* const error = sdp_printing_error(printer.get())) {
        throw std::runtime_error(std::string("sofia-sip cannot print the answer: ") + error);
    }
    std::string text = sdp_message(printer.get());
    const std::size_t after_connection = text.find("\r\n", text.find("\r\nc=") + 2) + 2;
    text.insert(after_connection, times_of(offer.sections.front(), reading.warnings));
    return text;
}

}  // namespace sdp
