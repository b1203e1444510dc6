#include "operations.h"

#include <iterator>
#include <list>
#include <memory>

#include "literal_renderer.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "replay.h"
#include "socket/address.h"

namespace {

using namespace operations;
using Audio = QOVA_AudioAttribute;
using Capability = QOVA_Capability;
using Fax = QOVA_FaxAttribute;
using Media = QOVA_Media;

// ---- the floor of a search: a bare walk, which reads the same members and asks no class ----
// It makes the same two calls as the library: of the offer's search, and of each line's.

template <class Attribute, class Value>
[[gnu::noinline]] Attribute* walk(const Media& line, Value Attribute::*member, Value value) {
    for (QOVA_MediaAttribute* payload : line.attributes) {
        auto* const attribute = static_cast<Attribute*>(payload);
        if (attribute->*member == value) {
            return attribute;
        }
    }
    return nullptr;
}

template <class Attribute, class Value>
[[gnu::noinline]] std::pair<Media*, Attribute*> walk(const Capability& offer,
                                                     Media::e_MediaType type,
                                                     Value Attribute::*member, Value value) {
    for (Media* line : offer.filteredMedia) {
        if (line->mediaType == type) {
            if (Attribute* const found = walk(*line, member, value)) {
                return {line, found};
            }
        }
    }
    return {};
}

std::list<Media*> walk(const Capability& offer, Media::e_MediaType type,
                       Media::e_MediaStatus status) {
    std::list<Media*> found;
    for (Media* line : offer.filteredMedia) {
        if (line->mediaType == type && line->mediaStatus == status) {
            found.push_back(line);
        }
    }
    return found;
}

// ---- operations ----

// One that does something with one offer, time and again.
template <class Use>
auto on_offer(Use use) {
    return [use](int lines) { return repeat([use, offer = offer::make(lines)] { use(*offer); }); };
}

// One that only makes something of an offer.
template <class Use>
auto from_offer(Use use) {
    return on_offer([use](const Capability& offer) { keep(use(offer)); });
}

// An assignment to an offer that was assigned before, or its floor.
Run assignment(int lines, bool floor) {
    const auto assign = [source = offer::make(lines), target = std::make_shared<Capability>()] {
        *target = *source;
        keep(*target);
    };
    if (!floor) {
        return repeat(assign);
    }
    return repeat([replay = std::make_shared<Replay>(assign)] { (*replay)(); });
}

Run copy_floor(int lines) {
    const auto copy = [source = offer::make(lines)] {
        const Capability made(*source);
        keep(made);
    };
    return repeat([replay = std::make_shared<Replay>(copy)] { (*replay)(); });
}

const Media& audio_of(const Capability& offer) {
    return *offer.filteredMedia.front();
}

const Media& fax_of(const Capability& offer) {
    return **std::next(offer.filteredMedia.begin());
}

UDPAddr new_address() {
    IPAddress address;
    IPAddress::Parse("192.0.2.1", address);
    return {address, 0};
}

}  // namespace

std::vector<Operation> operations::of_library() {
    std::vector<Operation> all;
    const auto add = [&all](const std::string& name, Extent extent, auto make) {
        all.push_back({name, extent, make});
    };

    add("copy_and_free/qova", ALL_LINES,
        from_offer([](const Capability& offer) { return Capability(offer); }));
    add("copy_and_free/floor", ALL_LINES, copy_floor);
    add("assignment/qova", ALL_LINES, [](int lines) { return assignment(lines, false); });
    add("assignment/floor", ALL_LINES, [](int lines) { return assignment(lines, true); });
    add("clone/qova", ALL_LINES, on_offer([](const Capability& offer) {
            for (const Media* media : offer.filteredMedia) {
                delete media->clone();
            }
        }));

    for (const bool equal : {true, false}) {
        add(equal ? "equal/qova" : "different/qova", ALL_LINES,
            on_two_offers(equal, [equal](const auto& left, const auto& right) {
                expect((*left == *right) == equal, "equality");
                return repeat([left, right] { keep(*left == *right); });
            }));
    }

    const auto add_search = [&add](const std::string& name, auto search, auto floor) {
        const auto offer = offer::make(offer::small);
        expect(search(*offer) == floor(*offer), "the floor of a search");
        add(name + "/qova", ALL_LINES, from_offer(search));
        add(name + "/floor", ALL_LINES, from_offer(floor));
    };
    for (const bool hit : {true, false}) {
        const std::string ending = hit ? "_hit" : "_miss";
        const auto codec = hit ? offer::last_codec : offer::no_codec;
        const auto transport = hit ? offer::last_transport : offer::no_transport;
        const auto type = hit ? Media::MT_AUDIO : Media::MT_DATA;
        const auto payload_type = hit ? Media::AT_AUDIO : Media::AT_DATA;
        add_search(
            "find_codec" + ending, [=](const Capability& offer) { return offer.find(codec); },
            [=](const Capability& offer) {
                return walk(offer, Media::MT_AUDIO, &Audio::codec, codec).first;
            });
        add_search(
            "find_mf" + ending, [=](const Capability& offer) { return offer.find_mf(codec); },
            [=](const Capability& offer) {
                return walk(offer, Media::MT_AUDIO, &Audio::mf, codec).second;
            });
        add_search(
            "find_transport" + ending,
            [=](const Capability& offer) { return offer.find(transport); },
            [=](const Capability& offer) {
                return walk(offer, Media::MT_FAX, &Fax::transport, transport).first;
            });
        add_search(
            "find_type" + ending,
            [=](const Capability& offer) { return offer.find(type, Media::MS_ACCEPTED); },
            [=](const Capability& offer) { return walk(offer, type, Media::MS_ACCEPTED); });
        add("is_mute" + ending + "/qova", ALL_LINES, [hit](int lines) {
            const auto offer = offer::make(lines);
            if (hit) {
                offer::last_of(Media::MT_AUDIO, *offer)->rcvPort = 0;
            }
            return repeat([offer] { keep(offer->isMute()); });
        });
        add("reject" + ending + "/qova", ALL_LINES,
            on_offer([=](Capability& offer) { offer.rejectMedia(type); }));

        add("media_find_type" + ending + "/qova", ONE_OBJECT,
            from_offer([=](const Capability& offer) {
                return audio_of(offer).find(payload_type, Media::MS_ACCEPTED);
            }));
    }

    add("clear_directions/qova", ALL_LINES,
        on_offer([](Capability& offer) { offer.ClearMediaDirection(); }));
    add("set_public/qova", ALL_LINES, on_offer([to = new_address()](Capability& offer) {
            offer.setPublicAddrPort(to, 40000, 7000);
        }));
    add("set_local/qova", ALL_LINES, on_offer([to = new_address()](Capability& offer) {
            offer.setLocalAddrPort(to, 40000, 7000);
        }));

    const auto add_text = [&add](const std::string& name, Extent extent, auto part) {
        add(name + "/qova", extent, from_offer([part](const Capability& offer) {
                return static_cast<std::string>(part(offer));
            }));
        add(name + "/literal", extent,
            from_offer([part](const Capability& offer) { return literal::text(part(offer)); }));
    };
    add_text(
        "text", ALL_LINES, [](const Capability& offer) -> auto& { return offer; });
    add_text("text_of_media", ONE_OBJECT, audio_of);
    add_text(
        "text_of_crypto", ONE_OBJECT,
        [](const Capability& offer) -> auto& { return *audio_of(offer).cryptos.front(); });
    add_text(
        "text_of_audio", ONE_OBJECT,
        [](const Capability& offer) -> auto& { return *audio_of(offer).attributes.front(); });
    add_text(
        "text_of_fax", ONE_OBJECT,
        [](const Capability& offer) -> auto& { return *fax_of(offer).attributes.front(); });
    return all;
}
