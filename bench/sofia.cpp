// The same operations with sofia-sip, on the same offer as a session description.

#include <sofia-sip/sdp.h>

#include <string>

#include "add.h"
#include "expect.h"
#include "offer.h"
#include "operations.h"

namespace {

// A memory home that frees what was made in it.
struct Home {
    Home() { su_home_init(&home); }
    ~Home() { su_home_deinit(&home); }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;

    su_home_t home = SU_HOME_INIT(home);
};

class Session {
public:
    explicit Session(const QOVA_Capability& capability) {
        const std::string text = offer::sdp(capability);
        sdp_parser_t* const parser =
            sdp_parse(&memory.home, text.data(), static_cast<issize_t>(text.size()), 0);
        expect(sdp_parsing_error(parser) == nullptr, "the offer as sofia-sip reads it");
        session = sdp_session(parser);
    }

    const sdp_session_t* operator*() const { return session; }

private:
    Home memory;
    const sdp_session_t* session;
};

const sdp_media_t* find_codec(const sdp_session_t* session, const sdp_rtpmap_t& wanted) {
    for (const sdp_media_t* media = session->sdp_media; media != nullptr; media = media->m_next) {
        if (media->m_type == sdp_media_audio &&
            sdp_rtpmap_find_matching(media->m_rtpmaps, &wanted) != nullptr) {
            return media;
        }
    }
    return nullptr;
}

template <class Use>
auto on_session(Use use) {
    return [use](int lines) {
        return [use, session = Session(offer::make(lines))] { operations::keep(use(*session)); };
    };
}

bool add_all() {
    using operations::ALL_LINES;
    using operations::keep;

    add("copy_and_free/sofia", ALL_LINES, on_session([](const sdp_session_t* session) {
            Home memory;
            keep(sdp_session_dup(&memory.home, session));
            return 0;
        }));
    add("text/sofia", ALL_LINES, on_session([](const sdp_session_t* session) {
            Home memory;
            sdp_printer_t* const printer = sdp_print(&memory.home, session, nullptr, 0, 0);
            keep(sdp_message(printer));
            sdp_printer_free(printer);
            return 0;
        }));

    const auto on_two_sessions = [](bool equal) {
        return [equal](int lines) {
            const offer::Pair pair(lines, equal);
            expect((sdp_session_cmp(*Session(pair.left), *Session(pair.right)) == 0) == equal,
                   "sofia-sip's equality");
            return [left = Session(pair.left), right = Session(pair.right)] {
                keep(sdp_session_cmp(*left, *right));
            };
        };
    };
    add("equal/sofia", ALL_LINES, on_two_sessions(true));
    add("different/sofia", ALL_LINES, on_two_sessions(false));

    const auto search_for = [](const char* encoding, bool found) {
        sdp_rtpmap_t wanted = {};
        wanted.rm_size = sizeof wanted;
        wanted.rm_encoding = encoding;
        wanted.rm_rate = 8000;
        expect((find_codec(*Session(offer::make(offer::small)), wanted) != nullptr) == found,
               "sofia-sip's search");
        return on_session(
            [wanted](const sdp_session_t* session) { return find_codec(session, wanted); });
    };
    add("find_codec_hit/sofia", ALL_LINES, search_for("red", true));
    add("find_codec_miss/sofia", ALL_LINES, search_for("GSM", false));
    return true;
}

const bool added = add_all();

}  // namespace
