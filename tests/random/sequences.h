// Random operations on three capabilities, some of them with failing allocations. The rules of the
// public headers must hold throughout. The same input selects the same operations with every
// compiler.

#ifndef QOVA_TESTS_RANDOM_SEQUENCES_H
#define QOVA_TESTS_RANDOM_SEQUENCES_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "allocations.h"
#include "building_blocks.h"
#include "derived.h"
#include "describe.h"

namespace sequences {

// ---- The rules of equality ----

template <class List, class Equal>
bool until_the_shorter_ends(const List& left, const List& right, Equal equal) {
    auto other = right.begin();
    return std::all_of(left.begin(), left.end(), [&](const auto& element) {
        return other == right.end() || equal(element, *other++);
    });
}

// Returns true if `right` is exactly of one class, and `left` of that or of a derived class.
template <class... Classes>
bool same_class(const QOVA_MediaAttribute* left, const QOVA_MediaAttribute* right) {
    return ((typeid(*right) == typeid(Classes) && dynamic_cast<const Classes*>(left)) || ...);
}

inline bool equal_attributes(const QOVA_MediaAttribute* left, const QOVA_MediaAttribute* right) {
    const auto own_fields = [](const std::string& dump) {
        return dump.substr(std::min(dump.find(' ', dump.find("attributeType=")), dump.size()));
    };
    return own_fields(describe(*left)) == own_fields(describe(*right)) &&
           same_class<QOVA_AudioAttribute, QOVA_VideoAttribute, QOVA_FaxAttribute,
                      QOVA_DataAttribute>(left, right);
}

inline bool equal_cryptos(const QOVA_Crypto* left, const QOVA_Crypto* right) {
    const auto equal_keys = [](const QOVA_CryptoKey& one, const QOVA_CryptoKey& other) {
        return one.lifetime == other.lifetime && one.mkiSize == other.mkiSize &&
               std::equal(std::begin(one.mki), std::end(one.mki), other.mki);
    };
    return typeid(*right) == typeid(QOVA_Crypto) && left->tag == right->tag &&
           left->algo == right->algo && until_the_shorter_ends(left->keys, right->keys, equal_keys);
}

inline bool equal_media(const QOVA_Media* left, const QOVA_Media* right) {
    const auto fields_and_address = [](const std::string& dump) {
        return dump.substr(dump.find(' '), dump.find("\namrwbParam") - dump.find(' '));
    };
    return fields_and_address(describe(*left)) == fields_and_address(describe(*right)) &&
           left->amrwbParam == right->amrwbParam && left->opusParam == right->opusParam &&
           until_the_shorter_ends(left->attributes, right->attributes, equal_attributes) &&
           until_the_shorter_ends(left->cryptos, right->cryptos, equal_cryptos);
}

inline bool equal(const QOVA_Capability& left, const QOVA_Capability& right) {
    return left.offer == right.offer && left.hold == right.hold &&
           left.silenceSuppSdp == right.silenceSuppSdp && left.passThrough == right.passThrough &&
           (!left.passThrough.empty() ||
            (left.filteredMedia.size() == right.filteredMedia.size() &&
             until_the_shorter_ends(left.filteredMedia, right.filteredMedia, equal_media)));
}

// ---- The sequences ----

// How often each operation ran, and how often each outcome occurred.
using Counts = std::map<std::string, unsigned>;

class Sequence {
public:
    Sequence(const unsigned char* data, std::size_t size, Counts& all)
        : at(data), end(data + size), counts(all) {}

    // Throws std::logic_error for a broken rule.
    void run() {
        using Operation = void (Sequence::*)(QOVA_Capability&, const QOVA_Capability&);
        static constexpr std::pair<const char*, Operation> operations[] = {
            {"append", &Sequence::append}, {"append", &Sequence::append},
            {"change", &Sequence::change}, {"copy", &Sequence::copy},
            {"assign", &Sequence::assign}, {"assign a media", &Sequence::assign_media},
            {"move", &Sequence::move},     {"reject or clear", &Sequence::reject_or_clear},
            {"search", &Sequence::search}, {"compare", &Sequence::compare}};
        std::array<std::string, 3> dumps;
        while (at != end) {
            const auto [name, operation] = operations[below(std::size(operations))];
            const std::size_t target = below(sides.size());
            const std::size_t source = below(sides.size());
            (this->*operation)(sides[target], sides[source]);
            ++counts[name];
            const bool only_looks =
                operation == &Sequence::search || operation == &Sequence::compare;
            for (std::size_t i = 0; i < sides.size(); ++i) {
                const std::string before = std::exchange(dumps[i], describe(sides[i], PLACES));
                expect((i == target && !only_looks) || before.empty() || dumps[i] == before,
                       dumps[i] + "\n-- changed from --\n" + before);
            }
        }
    }

private:
    // ---- Input: zeros follow the last byte ----

    std::size_t below(std::size_t bound) { return (at == end ? 0U : *at++) % bound; }
    bool one_in(std::size_t count) { return below(count) == 1; }

    // Only a few different values, so that searches and comparisons often succeed.
    template <class Number>
    Number any() {
        static constexpr long long numbers[] = {0, 1, 2, 3, 6666, 32000, 65535, -1};
        return static_cast<Number>(numbers[below(std::is_enum_v<Number> ? 4 : std::size(numbers))]);
    }

    IPAddress any_address() {
        static constexpr const char* texts[] = {"0.0.0.0", "192.0.2.1", "2001:db8:1:2:3:4:5:6789"};
        return ip(texts[below(std::size(texts))]);
    }

    // Null if the list is empty.
    template <class Element>
    Element* any_of(std::list<Element*> list) {
        list.resize(std::min(list.size(), 1 + below(4)));
        return list.empty() ? nullptr : list.back();
    }

    template <class Number>
    void set(Number& field) {
        field = any<Number>();
    }
    void set(bool& flag) { flag = !flag; }
    void set(std::string& text) { text.assign(one_in(4) ? 30 + below(2) : 0, 'x'); }
    void set(INetAddress*& owned) {
        qova::replace(owned, std::make_unique<IPAddress>(any_address()));
    }

    template <class... Fields>
    void set_one(Fields&... fields) {
        std::size_t chosen = below(sizeof...(fields));
        ((chosen-- == 0 ? set(fields) : void()), ...);
    }

    // ---- Checks ----

    static void expect(bool holds, const std::string& broken) {
        if (!holds) {
            throw std::logic_error(broken);
        }
    }

    static void expect_same(const std::string& actual, const std::string& expected) {
        expect(actual == expected, actual + "\n-- instead of --\n" + expected);
    }

    // Runs an operation, sometimes with a failing allocation. Returns true if it succeeds.
    template <class Run>
    bool attempt(Run run) {
        bool failed = false;
        const std::size_t nth = one_in(3) ? 1 + below(40) : 0;
        try {
            const allocations::Failure failure(nth);
            run();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        expect(failed == allocations::Failure::consumed(),
               "bad_alloc without a failed allocation, or the reverse");
        counts["failed allocation"] += failed ? 1U : 0U;
        return !failed;
    }

    // ---- Operations ----

    // Shortens the list to at most three elements, then appends a filled object of one class.
    template <class... Classes, class Element>
    void append_one(std::list<Element*>& list) {
        for (const std::size_t kept = below(4); list.size() > kept;) {
            qova::erase(list, std::prev(list.end()));
        }
        std::size_t chosen = below(sizeof...(Classes));
        attempt([&] { ((chosen-- == 0 ? fill(qova::append<Classes>(list)) : void()), ...); });
    }

    void append(QOVA_Capability& target, const QOVA_Capability& /*source*/) {
        QOVA_Media* const media = any_of(target.filteredMedia);
        if (media == nullptr || one_in(3)) {
            append_one<QOVA_Media, Derived<QOVA_Media>>(target.filteredMedia);
            if (QOVA_Media* const changed = any_of(target.filteredMedia)) {
                set(changed->mediaType);
                set(changed->mediaStatus);
            }
        } else if (one_in(3)) {
            append_one<QOVA_Crypto, Derived<QOVA_Crypto>>(media->cryptos);
        } else {
            append_one<QOVA_AudioAttribute, QOVA_VideoAttribute, QOVA_FaxAttribute,
                       QOVA_DataAttribute, Derived<QOVA_AudioAttribute>>(media->attributes);
        }
    }

    void change(QOVA_Capability& target, const QOVA_Capability& /*source*/) {
        QOVA_Media* const media = any_of(target.filteredMedia);
        if (media == nullptr || one_in(8)) {
            set_one(target.marked, target.offer, target.passThrough, target.hold, target.spare1,
                    target.spare2, target.spare3, target.silenceSuppSdp);
            return;
        }
        QOVA_Crypto* const crypto = any_of(media->cryptos);
        auto* const audio = dynamic_cast<QOVA_AudioAttribute*>(any_of(media->attributes));
        if (crypto != nullptr && one_in(4)) {
            crypto->keys.resize(1 + below(4));
            QOVA_CryptoKey& key = crypto->keys.back();
            set_one(crypto->tag, crypto->algo, key.mkiSize, key.mki[7], key.key[45]);
        } else if (audio != nullptr) {
            set_one(audio->status, audio->attributeType, audio->codec, audio->echo, audio->mf);
        } else {
            set_one(media->mediaStatus, media->mediaType, media->address, media->bsnd, media->brcv,
                    media->sndPort, media->rcvPort, media->rcvPort2, media->cryptoCount);
        }
    }

    void copy(QOVA_Capability& target, const QOVA_Capability& source) {
        std::unique_ptr<QOVA_Capability> made;
        if (attempt([&] { made = std::make_unique<QOVA_Capability>(source); })) {
            expect_same(describe(*made), describe(source));
            target.filteredMedia.swap(made->filteredMedia);
        }
    }

    // The description of a plain copy, because assignment makes no objects of derived classes.
    static std::string plain(const QOVA_Media& media) {
        const QOVA_Media copy(media);
        return describe(copy);
    }

    // After a failure, the target holds only some of the media.
    void assign(QOVA_Capability& target, const QOVA_Capability& source) {
        const bool done = attempt([&] { target = source; });
        const auto fields = [](const std::string& dump) { return dump.substr(0, dump.find('\n')); };
        expect(!done || fields(describe(target)) == fields(describe(source)), "other fields");
        const std::size_t size = &target == &source ? 0 : source.filteredMedia.size();
        expect(done ? target.filteredMedia.size() == size : target.filteredMedia.size() < size,
               "too few or too many media");
        auto media = source.filteredMedia.begin();
        for (const QOVA_Media* const assigned : target.filteredMedia) {
            expect_same(describe(*assigned), plain(**media++));
        }
    }

    void assign_media(QOVA_Capability& target, const QOVA_Capability& source) {
        QOVA_Media* const media = any_of(target.filteredMedia);
        const QOVA_Media* const other = any_of(source.filteredMedia);
        if (media == nullptr || other == nullptr) {
            return;
        }
        const bool again = one_in(2);
        if (!attempt([&] { *media = *other; })) {  // its address or parameters may be null
            if (!again) {
                target.filteredMedia.remove(media);
                delete media;
                return;
            }
            *media = *other;
        }
        expect_same(plain(*media), plain(*other));
    }

    // Moves to the public plan, and back to the local plan at another address.
    void move(QOVA_Capability& target, const QOVA_Capability& /*source*/) {
        const auto audio = any<unsigned short>();
        const auto fax = any<unsigned short>();
        const UDPAddr there(any_address(), 1);
        const UDPAddr back(any_address(), 2);
        const QOVA_Capability before(target);
        const auto expect_moved = [&](const UDPAddr& to, int audio_shift, int fax_shift) {
            const QOVA_Capability expected(before);
            for (QOVA_Media* const media : expected.filteredMedia) {
                if (media->mediaStatus == QOVA_Media::MS_REJECTED) {
                    continue;
                }
                set_address(*media, to.ipAddress->ToString().c_str());
                const int shift = media->mediaType == QOVA_Media::MT_AUDIO ? audio_shift
                                  : media->mediaType == QOVA_Media::MT_FAX ? fax_shift
                                                                           : 0;
                for (auto* const port :
                     {&media->sndPort, &media->rcvPort, &media->sndPort2, &media->rcvPort2}) {
                    *port = static_cast<unsigned short>(*port + shift);
                }
            }
            expect_same(describe(target), describe(expected));
        };
        if (!attempt([&] { target.setPublicAddrPort(there, audio, fax); })) {
            target = before;  // the address of a media is null
            return;
        }
        expect_moved(there, audio - 32000, fax - 6666);
        target.setLocalAddrPort(back, audio, fax);
        expect_moved(back, 0, 0);
    }

    void reject_or_clear(QOVA_Capability& target, const QOVA_Capability& /*source*/) {
        const bool reject = one_in(2);
        const auto type = reject ? any<QOVA_Media::e_MediaType>() : QOVA_Media::MT_AUDIO;
        const QOVA_Capability expected(target);
        reject ? target.rejectMedia(type) : target.ClearMediaDirection();
        for (QOVA_Media* const media : expected.find(type, QOVA_Media::MS_UNKNOWN)) {
            if (reject) {
                media->sndPort = media->rcvPort = 0;
                break;
            }
            media->bsnd = media->brcv = false;
        }
        expect_same(describe(target), describe(expected));
    }

    template <class List>
    static List reversed(List list) {
        list.reverse();
        return list;
    }

    // Visits the lists from back to front, so that the last match found is the first in the list.
    void search(QOVA_Capability& target, const QOVA_Capability& /*source*/) {
        const auto codec = any<QOVA_Codec>();
        const auto transport = any<QOVA_FaxTransport>();
        const auto kind = any<QOVA_Media::e_AttributeType>();
        const auto type = any<QOVA_Media::e_MediaType>();
        const auto status = any<QOVA_Media::e_MediaStatus>();
        const auto fits = [=](auto own) { return status == 0 || own == status; };
        QOVA_Media *with_codec = nullptr, *with_fax = nullptr;
        QOVA_AudioAttribute* with_mf = nullptr;
        bool is_mute = false;
        std::list<QOVA_Media*> all;
        for (QOVA_Media* const media : reversed(target.filteredMedia)) {
            const bool is_audio = media->mediaType == QOVA_Media::MT_AUDIO;
            const bool is_fax = media->mediaType == QOVA_Media::MT_FAX;
            QOVA_AudioAttribute* of_codec = nullptr;
            QOVA_MediaAttribute* of_kind = nullptr;
            for (QOVA_MediaAttribute* const any : reversed(media->attributes)) {
                auto* const audio = dynamic_cast<QOVA_AudioAttribute*>(any);
                auto* const fax = is_fax ? dynamic_cast<QOVA_FaxAttribute*>(any) : nullptr;
                of_codec = audio != nullptr && audio->codec == codec ? audio : of_codec;
                with_mf = is_audio && audio != nullptr && audio->mf == codec ? audio : with_mf;
                with_fax = fax != nullptr && fax->transport == transport ? media : with_fax;
                of_kind = any->attributeType == kind && fits(any->status) ? any : of_kind;
            }
            const bool mute = media->address->IsAny() != 0 || media->rcvPort == 0;
            expect(media->find(codec) == of_codec && media->find(kind, status) == of_kind &&
                       media->isMute() == mute,
                   "search");
            ++counts[of_codec == nullptr ? "not found" : "found"];
            with_codec = is_audio && of_codec != nullptr ? media : with_codec;
            is_mute = is_mute || (is_audio && mute);
            all.insert(all.begin(), media->mediaType == type && fits(media->mediaStatus), media);
        }
        expect(target.find(codec) == with_codec && target.find_mf(codec) == with_mf &&
                   target.find(transport) == with_fax && target.isMute() == is_mute &&
                   target.find(type, status) == all,
               "search");
    }

    // Parameter objects are compared by identity, so most pairs of media share them temporarily.
    void compare(QOVA_Capability& target, const QOVA_Capability& source) {
        QOVA_Capability other(one_in(4) ? source : target);
        one_in(4) ? append(other, source) : change(other, source);
        auto partner = target.filteredMedia.begin();
        for (QOVA_Media* const media : other.filteredMedia) {
            drop_parameters(*media);
            if (partner != target.filteredMedia.end()) {
                media->amrwbParam = one_in(16) ? nullptr : (*partner)->amrwbParam;
                media->opusParam = one_in(16) ? nullptr : (*partner)->opusParam;
                ++partner;
            }
        }
        const auto agrees = [&](const QOVA_Capability& left, const QOVA_Capability& right) {
            const bool expected = equal(left, right);
            ++counts[expected ? "equal" : "unequal"];
            bool result = expected;
            attempt([&] { result = left == right; });
            return result == expected;
        };
        const bool both_agree = agrees(target, other) && agrees(other, target);
        for (QOVA_Media* const media : other.filteredMedia) {
            media->amrwbParam = nullptr;
            media->opusParam = nullptr;
        }
        expect(both_agree, describe(target) + "\n-- compared with --\n" + describe(other));
    }

    const unsigned char* at;
    const unsigned char* const end;
    Counts& counts;
    std::array<QOVA_Capability, 3> sides;
};

}  // namespace sequences

#endif
