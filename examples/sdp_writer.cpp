#include "sdp_writer.h"

#include <sofia-sip/sdp.h>
#include <sofia-sip/su_alloc.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "qova/crypto.h"
#include "qova/media.h"
#include "sdp_crypto.h"
#include "sdp_parser.h"

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

// The fmtp lines of a payload as one, since the parser keeps the last.
std::string fmtp_of(const Section& section, unsigned payload) {
    std::string parameters;
    for (const Line& line : section) {
        const std::vector<std::string_view> fields = split(line.value, blanks, 2);
        if (same(line.name, "fmtp") && fields.size() == 2 && number(fields[0], 127) == payload) {
            parameters.append(parameters.empty() ? "" : ";").append(trimmed(fields[1]));
        }
    }
    return parameters;
}

// How an answer writes one line of its offer.
class MediaWriter {
public:
    MediaWriter(const Home& home_of, const ReadLine& read, sdp_media_t& written)
        : home(home_of), line(read), media(written) {
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
    }

    void reject() {
        media.m_port = 0;
        media.m_mode = sdp_sendrecv;
        media.m_rtpmaps = nullptr;
        media.m_attributes = nullptr;
        format = {sizeof format, nullptr,
                  copy_of(home, line.formats.empty() ? "0" : line.formats.front())};
        media.m_format = &format;
    }

    void accept(const Section& section, const QOVA_Media& answer,
                const std::vector<unsigned>& payloads) {
        media.m_port = answer.rcvPort;
        media.m_mode = answer.bsnd   ? answer.brcv ? sdp_sendrecv : sdp_sendonly
                       : answer.brcv ? sdp_recvonly
                                     : sdp_inactive;
        remove_if(media.m_rtpmaps, &sdp_rtpmap_t::rm_next, [&](const sdp_rtpmap_t& payload) {
            return std::find(payloads.begin(), payloads.end(), payload.rm_pt) == payloads.end();
        });
        for (sdp_rtpmap_t* map = media.m_rtpmaps; map != nullptr; map = map->rm_next) {
            const unsigned type = map->rm_pt;  // once each
            remove_if(map->rm_next, &sdp_rtpmap_t::rm_next,
                      [type](const sdp_rtpmap_t& other) { return other.rm_pt == type; });
            const std::string fmtp = fmtp_of(section, type);
            map->rm_fmtp = fmtp.empty() ? nullptr : copy_of(home, fmtp);
        }
        remove_if(media.m_attributes, &sdp_attribute_t::a_next,
                  [&](const sdp_attribute_t& attribute) {
                      return !stays(answer.mediaType, attribute.a_name);
                  });
        if (!answer.cryptos.empty()) {
            crypto = {sizeof crypto, media.m_attributes, "crypto",
                      copy_of(home, crypto_value(*answer.cryptos.front()))};
            media.m_attributes = &crypto;
        }
    }

private:
    const Home& home;
    const ReadLine& line;
    sdp_media_t& media;
    sdp_list_t format = {};
    sdp_attribute_t crypto = {};
};

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
    sdp_connection_t connection = {};
    connection.c_size = sizeof connection;
    connection.c_nettype = sdp_net_in;
    connection.c_addrtype = address.Size() == 4 ? sdp_addr_ip4 : sdp_addr_ip6;
    connection.c_address = copy_of(home, address.ToString());
    sdp_origin_t own = {sizeof own, "-", origin.id, origin.version, &connection};
    session->sdp_origin = &own;
    session->sdp_subject = "-";
    session->sdp_information = nullptr;
    session->sdp_uri = nullptr;
    session->sdp_emails = nullptr;
    session->sdp_phones = nullptr;
    session->sdp_connection = &connection;
    session->sdp_bandwidths = nullptr;
    session->sdp_key = nullptr;
    session->sdp_charset = nullptr;
    remove_if(
        session->sdp_attributes, &sdp_attribute_t::a_next,
        [](const sdp_attribute_t& attribute) { return !same(attribute.a_name, "silenceSupp"); });

    std::list<MediaWriter> writers;  // what they write lives as long as they do
    sdp_media_t* media = session->sdp_media;
    auto answered = answer.filteredMedia.begin();
    for (std::size_t i = 0; i < reading.lines.size(); ++i, media = media->m_next) {
        const ReadLine& line = reading.lines[i];
        MediaWriter& writer = writers.emplace_back(home, line, *media);
        const QOVA_Media* const own_media = line.media == nullptr ? nullptr : *answered++;
        if (own_media == nullptr || own_media->mediaStatus == QOVA_Media::MS_REJECTED) {
            writer.reject();
        } else {
            writer.accept(offer.sections[i + 1], *own_media, payloads[i]);
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
    return sdp_message(printer.get());
}

}  // namespace sdp
