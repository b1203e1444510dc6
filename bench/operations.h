// What is measured of the library, with its floor and the literal renderer beside it. An operation
// is made for a number of lines, and then run as often as a program likes.

#ifndef QOVA_BENCH_OPERATIONS_H
#define QOVA_BENCH_OPERATIONS_H

#include <iterator>
#include <string>

#include "expect.h"
#include "literal_renderer.h"
#include "offer.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "replay.h"
#include "socket/address.h"

namespace operations {

// ONE_OBJECT: the cost has nothing to do with the number of lines.
enum Extent { ALL_LINES, ONE_OBJECT };

// Makes the compiler believe that somebody looks at a value.
template <class T>
void keep(const T& value) {
    asm volatile("" : : "r"(&value) : "memory");
}

// An operation that does something with an unchanging offer.
template <class Use>
auto on_offer(Use use) {
    return [use](int lines) { return [use, source = offer::make(lines)] { keep(use(source)); }; };
}

// An operation that changes the offer in place.
template <class Edit>
auto on_changing_offer(Edit edit) {
    return [edit](int lines) {
        return [edit, target = offer::make(lines)]() mutable {
            edit(target);
            keep(target);
        };
    };
}

inline auto comparison(bool equal) {
    return [equal](int lines) {
        const offer::Pair made(lines, equal);
        expect((made.left == made.right) == equal, "equality");
        return [pair = offer::Pair(lines, equal)] { keep(pair.left == pair.right); };
    };
}

inline IPAddress new_address() {
    IPAddress address;
    IPAddress::Parse("192.0.2.1", address);
    return address;
}

// Calls visit(name, extent, make) for each operation; make(lines)() is the operation.
template <class Visit>
void for_each(Visit visit) {
    using Offer = const QOVA_Capability&;

    visit("copy_and_free/qova", ALL_LINES,
          on_offer([](Offer source) { return QOVA_Capability(source); }));
    visit("copy_and_free/floor", ALL_LINES, [](int lines) {
        const QOVA_Capability source = offer::make(lines);
        return [replay = Replay([&] { keep(QOVA_Capability(source)); })]() mutable { replay(); };
    });
    visit("assignment/qova", ALL_LINES, [](int lines) {
        return [source = offer::make(lines), target = QOVA_Capability()]() mutable {
            target = source;
            keep(target);
        };
    });
    visit("assignment/floor", ALL_LINES, [](int lines) {
        const QOVA_Capability source = offer::make(lines);
        QOVA_Capability target;
        return [replay = Replay([&] { target = source; })]() mutable { replay(); };
    });
    visit("clone/qova", ALL_LINES, on_offer([](Offer source) {
              for (const QOVA_Media* media : source.filteredMedia) {
                  const QOVA_Media* const copy = media->clone();
                  keep(*copy);
                  delete copy;
              }
              return 0;
          }));

    visit("equal/qova", ALL_LINES, comparison(true));
    visit("different/qova", ALL_LINES, comparison(false));

    visit("find_codec_hit/qova", ALL_LINES,
          on_offer([](Offer source) { return source.find(offer::last_codec); }));
    visit("find_codec_miss/qova", ALL_LINES,
          on_offer([](Offer source) { return source.find(offer::no_codec); }));
    visit("find_mf_hit/qova", ALL_LINES,
          on_offer([](Offer source) { return source.find_mf(offer::last_codec); }));
    visit("find_mf_miss/qova", ALL_LINES,
          on_offer([](Offer source) { return source.find_mf(offer::no_codec); }));
    visit("find_transport_hit/qova", ALL_LINES,
          on_offer([](Offer source) { return source.find(offer::last_transport); }));
    visit("find_transport_miss/qova", ALL_LINES,
          on_offer([](Offer source) { return source.find(offer::no_transport); }));
    visit("find_type_hit/qova", ALL_LINES, on_offer([](Offer source) {
              return source.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_ACCEPTED);
          }));
    visit("find_type_miss/qova", ALL_LINES, on_offer([](Offer source) {
              return source.find(QOVA_Media::MT_DATA, QOVA_Media::MS_ACCEPTED);
          }));
    visit("is_mute_hit/qova", ALL_LINES, [](int lines) {
        QOVA_Capability source = offer::make(lines);
        offer::last_audio(source)->rcvPort = 0;
        return [source] { keep(source.isMute()); };
    });
    visit("is_mute_miss/qova", ALL_LINES, on_offer([](Offer source) { return source.isMute(); }));

    visit("reject_hit/qova", ALL_LINES, on_changing_offer([](QOVA_Capability& target) {
              target.rejectMedia(QOVA_Media::MT_AUDIO);
          }));
    visit("reject_miss/qova", ALL_LINES, on_changing_offer([](QOVA_Capability& target) {
              target.rejectMedia(QOVA_Media::MT_DATA);
          }));
    visit("clear_directions/qova", ALL_LINES,
          on_changing_offer([](QOVA_Capability& target) { target.ClearMediaDirection(); }));
    visit("set_public/qova", ALL_LINES,
          on_changing_offer([to = UDPAddr(new_address(), 0)](QOVA_Capability& target) {
              target.setPublicAddrPort(to, 40000, 7000);
          }));
    visit("set_local/qova", ALL_LINES,
          on_changing_offer([to = UDPAddr(new_address(), 0)](QOVA_Capability& target) {
              target.setLocalAddrPort(to, 40000, 7000);
          }));

    visit("text/qova", ALL_LINES,
          on_offer([](Offer source) { return static_cast<std::string>(source); }));
    visit("text/literal", ALL_LINES, on_offer([](Offer source) { return literal::text(source); }));

    // The searches of one audio line, and the fax line.
    const auto on_audio = [](auto use) {
        return on_offer([use](Offer source) { return use(*source.filteredMedia.front()); });
    };
    const auto on_fax = [](auto use) {
        return on_offer(
            [use](Offer source) { return use(**std::next(source.filteredMedia.begin())); });
    };
    using Media = const QOVA_Media&;
    visit("media_find_codec_hit/qova", ONE_OBJECT,
          on_audio([](Media media) { return media.find(offer::last_codec); }));
    visit("media_find_codec_miss/qova", ONE_OBJECT,
          on_audio([](Media media) { return media.find(offer::no_codec); }));
    visit("media_find_mf_hit/qova", ONE_OBJECT,
          on_audio([](Media media) { return media.find_mf(offer::last_codec); }));
    visit("media_find_mf_miss/qova", ONE_OBJECT,
          on_audio([](Media media) { return media.find_mf(offer::no_codec); }));
    visit("media_find_transport_hit/qova", ONE_OBJECT,
          on_fax([](Media media) { return media.find(offer::last_transport); }));
    visit("media_find_transport_miss/qova", ONE_OBJECT,
          on_fax([](Media media) { return media.find(offer::no_transport); }));
    visit("media_find_type_hit/qova", ONE_OBJECT, on_audio([](Media media) {
              return media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_ACCEPTED);
          }));
    visit("media_find_type_miss/qova", ONE_OBJECT, on_audio([](Media media) {
              return media.find(QOVA_Media::AT_DATA, QOVA_Media::MS_ACCEPTED);
          }));

    // The text of every smaller level.
    const auto text_of = [](const auto& object) { return static_cast<std::string>(object); };
    const auto literal_of = [](const auto& object) { return literal::text(object); };
    const auto of_crypto = [](auto use) {
        return [use](Media media) { return use(*media.cryptos.front()); };
    };
    const auto of_attribute = [](auto use) {
        return [use](Media media) { return use(*media.attributes.front()); };
    };
    visit("text_of_media/qova", ONE_OBJECT, on_audio(text_of));
    visit("text_of_media/literal", ONE_OBJECT, on_audio(literal_of));
    visit("text_of_crypto/qova", ONE_OBJECT, on_audio(of_crypto(text_of)));
    visit("text_of_crypto/literal", ONE_OBJECT, on_audio(of_crypto(literal_of)));
    visit("text_of_audio/qova", ONE_OBJECT, on_audio(of_attribute(text_of)));
    visit("text_of_audio/literal", ONE_OBJECT, on_audio(of_attribute(literal_of)));
    visit("text_of_fax/qova", ONE_OBJECT, on_fax(of_attribute(text_of)));
    visit("text_of_fax/literal", ONE_OBJECT, on_fax(of_attribute(literal_of)));
}

}  // namespace operations

#endif
