// The same operations with sofia-sip, on the same offer as a session description.

#include <sofia-sip/sdp.h>

#include <memory>
#include <string>

#include "offer.h"
#include "operations.h"

namespace {

using namespace operations;

// A memory home that frees what was made in it.
struct Home {
    Home() { su_home_init(&home); }
    ~Home() { su_home_deinit(&home); }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;

    su_home_t home = SU_HOME_INIT(home);
};

std::shared_ptr<const sdp_session_t> session_of(const QOVA_Capability& capability) {
    const std::string text = offer::sdp(capability);
    const auto memory = std::make_shared<Home>();
    sdp_parser_t* const parser =
        sdp_parse(&memory->home, text.data(), static_cast<issize_t>(text.size()), 0);
    expect(sdp_parsing_error(parser) == nullptr, "the offer as sofia-sip reads it");
    return {memory, sdp_session(parser)};
}

template <class Use>
auto on_session(Use use) {
    return [use](int lines) {
        return repeat([use, session = session_of(*offer::make(lines))] { use(session.get()); });
    };
}

const sdp_media_t* find_codec(const sdp_session_t* session, const sdp_rtpmap_t& wanted) {
    for (const sdp_media_t* media = session->sdp_media; media != nullptr; media = media->m_next) {
        if (media->m_type == sdp_media_audio &&
            sdp_rtpmap_find_matching(media->m_rtpmaps, &wanted) != nullptr) {
            return media;
        }
    }
    return nullptr;
}

}  // namespace

std::vector<Operation> operations::of_sofia() {
    std::vector<Operation> all;
    const auto add = [&all](const char* name, auto make) {
        all.push_back({name, ALL_LINES, make});
    };
    add("copy_and_free/sofia", on_session([](const sdp_session_t* session) {
            Home memory;
            keep(sdp_session_dup(&memory.home, session));
        }));
    add("text/sofia", on_session([](const sdp_session_t* session) {
            Home memory;
            sdp_printer_t* const printer = sdp_print(&memory.home, session, nullptr, 0, 0);
            keep(sdp_message(printer));
            sdp_printer_free(printer);
        }));
    for (const bool equal : {true, false}) {
        add(equal ? "equal/sofia" : "different/sofia",
            on_two_offers(equal, [equal](const auto& first, const auto& second) {
                const auto left = session_of(*first);
                const auto right = session_of(*second);
                expect((sdp_session_cmp(left.get(), right.get()) == 0) == equal,
                       "sofia-sip's equality");
                return repeat([left, right] { keep(sdp_session_cmp(left.get(), right.get())); });
            }));
    }
    for (const bool hit : {true, false}) {
        sdp_rtpmap_t wanted = {};
        wanted.rm_size = sizeof wanted;
        wanted.rm_encoding = hit ? "red" : "GSM";
        wanted.rm_rate = 8000;
        const auto session = session_of(*offer::make(offer::small));
        expect((find_codec(session.get(), wanted) != nullptr) == hit, "sofia-sip's search");
        add(hit ? "find_codec_hit/sofia" : "find_codec_miss/sofia",
            on_session(
                [wanted](const sdp_session_t* searched) { keep(find_codec(searched, wanted)); }));
    }
    return all;
}
