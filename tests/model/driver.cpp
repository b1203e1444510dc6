#include "model/driver.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <list>
#include <memory>
#include <new>
#include <typeinfo>
#include <utility>
#include <variant>
#include <vector>

#include "allocations.h"
#include "literal_renderer.h"
#include "model/generator.h"
#include "model/model.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "socket/address.h"

namespace {

unsigned long long operation_count = 0;
unsigned long long failure_count = 0;

// What the library did otherwise than the model.
struct Difference {
    std::string what;
};

void expect(bool agreed, const char* what) {
    if (!agreed) {
        throw Difference{what};
    }
}

void expect_text(const std::string& text, const std::string& expected) {
    const std::string difference = literal::difference(text, expected);
    if (!difference.empty()) {
        throw Difference{difference};
    }
}

// The library's objects, member by member, against the model's values.

template <class Real, class Ideal>
void compare_members(Real& real, Ideal& ideal, const char* what) {
    expect(model::members(real) == model::members(ideal), what);
}

void compare(QOVA_MediaAttribute& real, model::Attribute& ideal) {
    compare_members(real, ideal, "a member of an attribute's base");
    std::visit(
        [&](auto& payload) {
            using Class = model::ClassFor<std::decay_t<decltype(payload)>>;
            expect(
                typeid(real) == (ideal.derived ? typeid(model::DerivedFrom<Class>) : typeid(Class)),
                "the class of an attribute");
            compare_members(static_cast<Class&>(real), payload, "a member of an attribute");
        },
        ideal.payload);
}

void compare(QOVA_Crypto& real, model::Crypto& ideal) {
    expect(typeid(real) ==
               (ideal.derived ? typeid(model::DerivedFrom<QOVA_Crypto>) : typeid(QOVA_Crypto)),
           "the class of a crypto line");
    compare_members(real, ideal, "a member of a crypto line");
    expect(std::equal(real.keys.begin(), real.keys.end(), ideal.keys.begin(), ideal.keys.end(),
                      [](QOVA_CryptoKey& left, model::Key& right) {
                          return model::members(left) == model::members(right) &&
                                 std::equal(right.mki.begin(), right.mki.end(), left.mki) &&
                                 std::equal(right.key.begin(), right.key.end(), left.key);
                      }),
           "a key entry");
}

template <class Parameters, class Ideal>
void compare_parameters(Parameters* real, Ideal& ideal) {
    expect((real == nullptr) == (ideal.identity == 0), "whether there is a parameter object");
    if (real != nullptr) {
        compare_members(*real, ideal, "a parameter");
    }
}

void compare(QOVA_Media& real, model::Media& ideal);

template <class RealList, class IdealList>
void compare_lists(const RealList& real, IdealList& ideal) {
    expect(real.size() == ideal.size(), "the length of a list");
    auto right = ideal.begin();
    for (auto* const left : real) {
        compare(*left, *right++);
    }
}

void compare(QOVA_Media& real, model::Media& ideal) {
    expect(typeid(real) ==
               (ideal.derived ? typeid(model::DerivedFrom<QOVA_Media>) : typeid(QOVA_Media)),
           "the class of a media");
    compare_members(real, ideal, "a member of a media");
    expect(real.address != nullptr && real.address->ToString() == ideal.address,
           "the address of a media");
    compare_lists(real.attributes, ideal.attributes);
    compare_parameters(real.amrwbParam, ideal.amr_wb);
    compare_parameters(real.opusParam, ideal.opus);
    compare_lists(real.cryptos, ideal.cryptos);
}

void compare(QOVA_Capability& real, model::Capability& ideal) {
    compare_members(real, ideal, "a member of a capability");
    compare_lists(real.filteredMedia, ideal.media);
}

// The same place in the library's list and in the model's.
template <class Real, class Ideal>
struct Both {
    Real& real;
    Ideal& ideal;
};
using Media = Both<QOVA_Media, model::Media>;
using Capability = Both<QOVA_Capability, model::Capability>;
using Attribute = Both<QOVA_MediaAttribute, model::Attribute>;
using Crypto = Both<QOVA_Crypto, model::Crypto>;

template <class Element>
Element* element(const std::list<Element*>& list, std::size_t place) {
    return *std::next(list.begin(), static_cast<std::ptrdiff_t>(place));
}

template <class Element>
const Element* element(const std::list<Element*>& list, const model::Place& place) {
    return place ? element(list, *place) : nullptr;
}

template <class Element>
void append(std::list<Element*>& list, std::unique_ptr<Element> object) {
    list.push_back(object.get());
    object.release();
}

template <class RealList, class IdealList>
void erase(RealList& real, IdealList& ideal, std::size_t place) {
    const auto node = std::next(real.begin(), static_cast<std::ptrdiff_t>(place));
    delete *node;
    real.erase(node);
    ideal.erase(ideal.begin() + static_cast<std::ptrdiff_t>(place));
}

class World {
public:
    World(const unsigned char* data, std::size_t size) : input(data, size) {
        for (auto& capability : reals) {
            capability = std::make_unique<QOVA_Capability>();
        }
    }

    ~World() {
        for (std::size_t i = 0; i < count; ++i) {
            if (reals[i] != nullptr) {
                clear(i);
            }
        }
    }

    World(const World&) = delete;
    World& operator=(const World&) = delete;

    // Returns the first difference, or nothing.
    std::string run();

    // After a difference nobody knows who owns what.
    void leak() {
        for (auto& capability : reals) {
            capability.release();
        }
    }

private:
    static constexpr std::size_t count = 3;
    static constexpr std::size_t longest_list = 5;

    struct Operation {
        const char* name;
        void (World::*carry_out)();
    };
    static const Operation operations[];

    model::Bytes input;
    std::array<std::unique_ptr<QOVA_Capability>, count> reals;
    std::array<model::Capability, count> ideals;
    std::size_t failing_allocation = 0;  // 0: none
    allocations::Failure::Extent failure_extent = allocations::Failure::ONCE;

    // --- choosing ---

    std::size_t some_place() { return input.below(count); }

    Capability at(std::size_t place) { return {*reals[place], ideals[place]}; }
    Capability some_capability() { return at(some_place()); }

    static Media media_at(const Capability& capability, std::size_t place) {
        return {*element(capability.real.filteredMedia, place), capability.ideal.media[place]};
    }

    // Makes a media where there is none.
    Media some_media() {
        const Capability capability = some_capability();
        if (capability.ideal.media.empty()) {
            add_media(capability);
        }
        return media_at(capability, input.below(capability.ideal.media.size()));
    }

    static Attribute attribute_at(const Media& media, std::size_t place) {
        return {*element(media.real.attributes, place), media.ideal.attributes[place]};
    }

    Attribute some_attribute() {
        const Media media = some_media();
        if (media.ideal.attributes.empty()) {
            add_attribute(media);
        }
        return attribute_at(media, input.below(media.ideal.attributes.size()));
    }

    static Crypto crypto_at(const Media& media, std::size_t place) {
        return {*element(media.real.cryptos, place), media.ideal.cryptos[place]};
    }

    Crypto some_crypto() {
        const Media media = some_media();
        if (media.ideal.cryptos.empty()) {
            add_crypto(media);
        }
        return crypto_at(media, input.below(media.ideal.cryptos.size()));
    }

    // --- parameter objects: the last media that holds one frees it ---

    template <class Parameters>
    bool shared(Parameters model::Media::*parameters, model::Identity identity) const {
        std::size_t holders = 0;
        for (const model::Capability& capability : ideals) {
            for (const model::Media& media : capability.media) {
                holders += (media.*parameters).identity == identity ? 1U : 0U;
            }
        }
        return holders > 1;
    }

    // Frees the object unless another media holds it too.
    template <class Object, class Parameters>
    void drop(Object*& object, const Media& media, Parameters model::Media::*parameters) {
        Parameters& ideal = media.ideal.*parameters;
        if (!shared(parameters, ideal.identity)) {
            delete object;
        }
        object = nullptr;
        ideal = Parameters();
    }

    // Leaves to the media only what it alone holds, so that it may be freed or assigned to.
    void let_go(const Media& media) {
        if (shared(&model::Media::amr_wb, media.ideal.amr_wb.identity)) {
            drop(media.real.amrwbParam, media, &model::Media::amr_wb);
        }
        if (shared(&model::Media::opus, media.ideal.opus.identity)) {
            drop(media.real.opusParam, media, &model::Media::opus);
        }
    }

    void let_go(const Capability& capability) {
        for (std::size_t i = 0; i < capability.ideal.media.size(); ++i) {
            let_go(media_at(capability, i));
        }
    }

    // Gives the media the parameter objects without which it must not be copied or rendered.
    void make_whole(const Media& media) {
        if (media.real.amrwbParam == nullptr) {
            media.real.amrwbParam = new Sdp::Sdp_Amrwb_Param;
            media.ideal.amr_wb.identity = model::fresh_identity();
        }
        if (media.real.opusParam == nullptr) {
            media.real.opusParam = new Sdp::Sdp_Opus_Param;
            media.ideal.opus.identity = model::fresh_identity();
        }
    }

    void make_whole(const Capability& capability) {
        for (std::size_t i = 0; i < capability.ideal.media.size(); ++i) {
            make_whole(media_at(capability, i));
        }
    }

    // --- failing allocations ---

    // Makes a call, under the failure that was asked for. Returns whether it went through.
    template <class Call>
    bool attempt(Call call) {
        bool failed = false;
        bool refused = false;
        const std::size_t before = allocations::made();
        {
            const allocations::Failure failure(failing_allocation, failure_extent);
            try {
                call();
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            refused = allocations::Failure::consumed();
        }
        expect(failed == refused, failed ? "a failure without a cause" : "a failure was swallowed");
        if (failed) {
            failing_allocation = 0;
            ++failure_count;
        } else if (failing_allocation != 0) {
            failing_allocation -= allocations::made() - before;
        }
        return !failed;
    }

    // As attempt(), for calls that change nothing: what fails leaves no block behind.
    template <class Call>
    bool attempt_unchanging(Call call) {
        const std::size_t before = allocations::live();
        const bool succeeded = attempt(call);
        expect(succeeded || allocations::live() == before, "a failed operation leaks");
        return succeeded;
    }

    static bool renderable(const QOVA_Capability& capability) {
        return std::all_of(capability.filteredMedia.begin(), capability.filteredMedia.end(),
                           [](const QOVA_Media* media) { return renderable(*media); });
    }

    static bool renderable(const QOVA_Media& media) {
        return media.address != nullptr && media.amrwbParam != nullptr &&
               media.opusParam != nullptr;
    }

    void clear(std::size_t place) {
        let_go(at(place));
        reals[place] = std::make_unique<QOVA_Capability>();
        ideals[place] = model::Capability();
    }

    // --- building ---

    void add_media(const Capability& capability) {
        model::Media ideal = model::any_media(input);
        std::unique_ptr<QOVA_Media> real;
        if (!attempt_unchanging([&] { real = model::make_default<QOVA_Media>(ideal.derived); })) {
            real = model::make_default<QOVA_Media>(ideal.derived);
        }
        model::fill(*real, ideal);
        append(capability, std::move(real), ideal);
    }

    void append(const Capability& capability, std::unique_ptr<QOVA_Media> real,
                const model::Media& ideal) {
        if (capability.ideal.media.size() == longest_list) {
            let_go(media_at(capability, 0));
            erase(capability.real.filteredMedia, capability.ideal.media, 0);
        }
        ::append(capability.real.filteredMedia, std::move(real));
        capability.ideal.media.push_back(ideal);
    }

    template <class Real, class Ideal>
    static void append(std::list<Real*>& reals, std::unique_ptr<Real> real,
                       std::vector<Ideal>& ideals, const Ideal& ideal) {
        if (ideals.size() >= longest_list) {
            erase(reals, ideals, 0);
        }
        ::append(reals, std::move(real));
        ideals.push_back(ideal);
    }

    void add_attribute(const Media& media) {
        const model::Attribute ideal = model::any_attribute(input);
        append(media.real.attributes, model::make(ideal), media.ideal.attributes, ideal);
    }

    void add_crypto(const Media& media) {
        const model::Crypto ideal = model::any_crypto(input);
        append(media.real.cryptos, model::make(ideal), media.ideal.cryptos, ideal);
    }

    // Edits change one member.

    template <class Object>
    void edit(const Object& object) {
        input.set_one(model::members(object.ideal));
        model::set_members(object.real, object.ideal);
    }

    void edit(const Attribute& attribute) {
        if (input.flag()) {
            input.set_one(model::members(attribute.ideal));
        } else {
            std::visit([this](auto& payload) { input.set_one(model::members(payload)); },
                       attribute.ideal.payload);
        }
        model::fill(attribute.real, attribute.ideal);
    }

    void edit(const Crypto& crypto) {
        std::vector<model::Key>& keys = crypto.ideal.keys;
        if (keys.size() == longest_list) {
            keys.pop_back();
        } else if (keys.empty() || input.below(4) == 0) {
            keys.emplace_back();
        }
        model::Key& key = keys[input.below(keys.size())];
        input.set_one(std::tuple_cat(
            model::members(crypto.ideal), model::members(key),
            std::tie(key.mki[input.below(key.mki.size())], key.key[input.below(key.key.size())])));
        model::fill(crypto.real, crypto.ideal);
    }

    // One change somewhere in a copy that borrows parameter objects, or none.
    void alter(const Capability& capability) {
        if (capability.ideal.media.empty() || input.below(4) == 0) {
            edit(capability);
            return;
        }
        const std::size_t place = input.below(capability.ideal.media.size());
        const Media media = media_at(capability, place);
        const std::size_t attributes = media.ideal.attributes.size();
        const std::size_t cryptos = media.ideal.cryptos.size();
        const std::size_t choice = input.below(10);
        if (choice == 0) {
            set_address(media, input.address());
        } else if (choice == 8) {
            media.real.amrwbParam = nullptr;
            media.ideal.amr_wb = model::AmrWb();
        } else if (choice == 9) {
            media.real.opusParam = nullptr;
            media.ideal.opus = model::Opus();
        } else if (choice == 1) {
            give_back(media.real);
            erase(capability.real.filteredMedia, capability.ideal.media, place);
        } else if (choice == 2 && attributes != 0) {
            erase(media.real.attributes, media.ideal.attributes, attributes - 1);
        } else if (choice == 3 && cryptos != 0) {
            erase(media.real.cryptos, media.ideal.cryptos, cryptos - 1);
        } else if (choice < 6 && attributes != 0) {
            edit(attribute_at(media, input.below(attributes)));
        } else if (choice < 7 && cryptos != 0) {
            edit(crypto_at(media, input.below(cryptos)));
        } else {
            edit(media);
        }
    }

    static void set_address(const Media& media, const std::string& address) {
        model::set_address(media.real, address);
        media.ideal.address = address;
    }

    // --- the operations ---

    void edit_capability() { edit(some_capability()); }

    void add_media() { add_media(some_capability()); }

    void remove_media() {
        const Capability capability = some_capability();
        if (!capability.ideal.media.empty()) {
            const std::size_t place = input.below(capability.ideal.media.size());
            let_go(media_at(capability, place));
            erase(capability.real.filteredMedia, capability.ideal.media, place);
        }
    }

    void edit_media() { edit(some_media()); }

    void change_address() {
        const Media media = some_media();
        set_address(media, input.address());
    }

    void add_attribute() { add_attribute(some_media()); }

    void remove_attribute() {
        const Media media = some_media();
        if (!media.ideal.attributes.empty()) {
            erase(media.real.attributes, media.ideal.attributes,
                  input.below(media.ideal.attributes.size()));
        }
    }

    void edit_attribute() { edit(some_attribute()); }

    void add_crypto() { add_crypto(some_media()); }

    void remove_crypto() {
        const Media media = some_media();
        if (!media.ideal.cryptos.empty()) {
            erase(media.real.cryptos, media.ideal.cryptos, input.below(media.ideal.cryptos.size()));
        }
    }

    void edit_crypto() { edit(some_crypto()); }

    // Edits the parameter object of a media, which is a new one where another media holds it too.
    template <class Object, class Parameters>
    void edit_parameters(Object* QOVA_Media::*object, Parameters model::Media::*parameters) {
        const Media media = some_media();
        if (shared(parameters, (media.ideal.*parameters).identity)) {
            drop(media.real.*object, media, parameters);
        }
        make_whole(media);
        edit(Both<Object, Parameters>{*(media.real.*object), media.ideal.*parameters});
    }

    void edit_amr_wb() { edit_parameters(&QOVA_Media::amrwbParam, &model::Media::amr_wb); }
    void edit_opus() { edit_parameters(&QOVA_Media::opusParam, &model::Media::opus); }

    // One object for two media, null for one, or a new object.
    template <class Object, class Parameters>
    void exchange(Object* QOVA_Media::*object, Parameters model::Media::*parameters) {
        const Media media = some_media();
        const Media other = some_media();
        switch (input.below(3)) {
            case 0:
                // An object that both hold already stays.
                if (media.real.*object != other.real.*object) {
                    drop(media.real.*object, media, parameters);
                    media.real.*object = other.real.*object;
                    media.ideal.*parameters = other.ideal.*parameters;
                }
                break;
            case 1:
                drop(media.real.*object, media, parameters);
                break;
            default:
                drop(media.real.*object, media, parameters);
                media.real.*object = new Object;
                (media.ideal.*parameters).identity = model::fresh_identity();
        }
    }

    void exchange_amr_wb() { exchange(&QOVA_Media::amrwbParam, &model::Media::amr_wb); }
    void exchange_opus() { exchange(&QOVA_Media::opusParam, &model::Media::opus); }

    void copy_capability() {
        const std::size_t source = some_place();
        const std::size_t target = some_place();
        make_whole(at(source));
        std::unique_ptr<QOVA_Capability> copy;
        if (attempt_unchanging([&] { copy = std::make_unique<QOVA_Capability>(*reals[source]); })) {
            model::Capability ideal = model::copied(ideals[source]);
            let_go(at(target));
            reals[target] = std::move(copy);
            ideals[target] = std::move(ideal);
        }
    }

    void assign_capability() {
        const std::size_t source = some_place();
        assign(source, some_place());
    }

    void assign_capability_to_itself() {
        const std::size_t place = some_place();
        assign(place, place);
    }

    void assign(std::size_t source, std::size_t target) {
        make_whole(at(source));
        let_go(at(target));
        const auto assignment = [&] {
            expect(&(*reals[target] = *reals[source]) == reals[target].get(),
                   "the result of an assignment");
        };
        if (!attempt(assignment)) {
            ideals[target] = model::Capability();
            if (renderable(*reals[target])) {
                expect(!std::string(*reals[target]).empty(), "the text of a half assigned target");
            }
            if (input.flag()) {
                reals[target] = std::make_unique<QOVA_Capability>();
                return;
            }
            assignment();
        }
        model::assign(ideals[target], ideals[source]);
    }

    void copy_media() {
        const Media source = some_media();
        make_whole(source);
        std::unique_ptr<QOVA_Media> copy;
        if (attempt_unchanging([&] { copy = std::make_unique<QOVA_Media>(source.real); })) {
            const model::Media ideal = model::copied(source.ideal);
            append(some_capability(), std::move(copy), ideal);
        }
    }

    void clone_media() {
        const Media source = some_media();
        make_whole(source);
        std::unique_ptr<QOVA_Media> copy;
        if (attempt_unchanging([&] { copy.reset(source.real.clone()); })) {
            const model::Media ideal = model::cloned(source.ideal);
            append(some_capability(), std::move(copy), ideal);
        }
    }

    void assign_media() {
        // The first choice stays where it is: the second makes a media only where there is none.
        const Media target = some_media();
        const Media source = some_media();
        assign(target, source);
    }

    void assign_media_to_itself() {
        const Media media = some_media();
        assign(media, media);
    }

    void assign(const Media& target, const Media& source) {
        make_whole(source);
        if (&target.real != &source.real) {
            let_go(target);
        }
        const auto assignment = [&] {
            expect(&(target.real = source.real) == &target.real, "the result of an assignment");
        };
        if (!attempt(assignment)) {
            if (renderable(target.real)) {
                expect(!std::string(target.real).empty(), "the text of a half assigned target");
            }
            assignment();
        }
        model::assign(target.ideal, source.ideal);
    }

    void clone_attribute() {
        const auto source = some_attribute();
        std::unique_ptr<QOVA_MediaAttribute> copy;
        if (attempt_unchanging([&] { copy.reset(source.real.clone()); })) {
            const model::Attribute ideal = source.ideal;
            const Media media = some_media();
            append(media.real.attributes, std::move(copy), media.ideal.attributes, ideal);
        }
    }

    void copy_crypto() {
        const auto source = some_crypto();
        std::unique_ptr<QOVA_Crypto> copy;
        const bool virtually = input.flag();
        if (attempt_unchanging([&] {
                if (virtually) {
                    copy.reset(source.real.clone());
                } else {
                    copy = std::make_unique<QOVA_Crypto>(source.real);
                }
            })) {
            model::Crypto ideal = source.ideal;
            ideal.derived = ideal.derived && virtually;
            const Media media = some_media();
            append(media.real.cryptos, std::move(copy), media.ideal.cryptos, ideal);
        }
    }

    template <class Real, class Ideal>
    void compare_with_model(const Both<Real, Ideal>& left, const Both<Real, Ideal>& right) {
        bool equal = false;
        if (attempt_unchanging([&] { equal = left.real == right.real; })) {
            expect(equal == model::equal(left.ideal, right.ideal), "equality");
        }
    }

    void compare_capabilities() {
        const Capability left = some_capability();
        compare_with_model(left, some_capability());
    }

    // A copy that borrows the parameter objects of its source equals it, until it is altered.
    void compare_with_altered_copy() {
        const Capability source = some_capability();
        make_whole(source);
        if (input.flag()) {
            source.real.passThrough = source.ideal.pass_through = "";
        }
        // After a difference it leaks, as it must not free what it borrowed.
        auto* const real = new QOVA_Capability(source.real);
        model::Capability ideal = model::copied(source.ideal);
        const Capability copy = {*real, ideal};
        for (std::size_t i = 0; i < ideal.media.size(); ++i) {
            const Media lender = media_at(source, i);
            const Media borrower = media_at(copy, i);
            delete borrower.real.amrwbParam;
            delete borrower.real.opusParam;
            borrower.real.amrwbParam = lender.real.amrwbParam;
            borrower.real.opusParam = lender.real.opusParam;
            borrower.ideal.amr_wb = lender.ideal.amr_wb;
            borrower.ideal.opus = lender.ideal.opus;
        }
        alter(copy);
        compare_with_model(source, copy);
        compare_with_model(copy, source);
        for (QOVA_Media* const media : real->filteredMedia) {
            give_back(*media);
        }
        delete real;
    }

    static void give_back(QOVA_Media& borrower) {
        borrower.amrwbParam = nullptr;
        borrower.opusParam = nullptr;
    }

    void compare_media() {
        const Media left = some_media();
        compare_with_model(left, some_media());
    }

    void compare_attributes() {
        const auto left = some_attribute();
        if (input.flag()) {
            compare_with_model(left, some_attribute());
            return;
        }
        model::Attribute ideal = left.ideal;
        const auto real = model::make(ideal);
        edit(Attribute{*real, ideal});
        compare_with_model(left, {*real, ideal});
    }

    void compare_cryptos() {
        const auto left = some_crypto();
        compare_with_model(left, some_crypto());
    }

    void search_capability() {
        const Capability capability = some_capability();
        const std::list<QOVA_Media*>& media = capability.real.filteredMedia;
        const int wanted = input.number();
        const auto codec = static_cast<QOVA_Codec>(wanted);
        const auto transport = static_cast<QOVA_FaxTransport>(wanted);
        QOVA_Media* with_codec = nullptr;
        QOVA_Media* with_transport = nullptr;
        QOVA_AudioAttribute* with_tones = nullptr;
        bool mute = false;
        expect(attempt([&] {
                   with_codec = capability.real.find(codec);
                   with_transport = capability.real.find(transport);
                   with_tones = capability.real.find_mf(codec);
                   mute = capability.real.isMute();
               }),
               "a search allocates");
        expect(with_codec == element(media, model::find_codec(capability.ideal, wanted)),
               "find(QOVA_Codec)");
        expect(with_transport == element(media, model::find_transport(capability.ideal, wanted)),
               "find(QOVA_FaxTransport)");
        const auto tones = model::find_tone_codec(capability.ideal, wanted);
        expect(
            with_tones == (tones ? element(element(media, tones->first)->attributes, tones->second)
                                 : nullptr),
            "find_mf");
        expect(mute == model::is_mute(capability.ideal), "isMute");
    }

    void search_media_of_capability() {
        const Capability capability = some_capability();
        const int type = input.number();
        const int status = input.number();
        std::list<QOVA_Media*> found;
        if (attempt_unchanging([&] {
                found = capability.real.find(static_cast<QOVA_Media::e_MediaType>(type),
                                             static_cast<QOVA_Media::e_MediaStatus>(status));
            })) {
            std::list<QOVA_Media*> expected;
            for (const std::size_t place : model::find_media(capability.ideal, type, status)) {
                expected.push_back(element(capability.real.filteredMedia, place));
            }
            expect(found == expected, "find(e_MediaType, e_MediaStatus)");
        }
    }

    void search_media() {
        const Media media = some_media();
        const std::list<QOVA_MediaAttribute*>& attributes = media.real.attributes;
        const int wanted = input.number();
        const int status = input.number();
        const auto codec = static_cast<QOVA_Codec>(wanted);
        const auto transport = static_cast<QOVA_FaxTransport>(wanted);
        QOVA_AudioAttribute* with_codec = nullptr;
        QOVA_FaxAttribute* with_transport = nullptr;
        QOVA_AudioAttribute* with_tones = nullptr;
        QOVA_MediaAttribute* with_type = nullptr;
        bool mute = false;
        expect(attempt([&] {
                   with_codec = media.real.find(codec);
                   with_transport = media.real.find(transport);
                   with_tones = media.real.find_mf(codec);
                   with_type = media.real.find(static_cast<QOVA_Media::e_AttributeType>(wanted),
                                               static_cast<QOVA_Media::e_MediaStatus>(status));
                   mute = media.real.isMute();
               }),
               "a search allocates");
        expect(with_codec == element(attributes, model::find_codec(media.ideal, wanted)),
               "find(QOVA_Codec)");
        expect(with_transport == element(attributes, model::find_transport(media.ideal, wanted)),
               "find(QOVA_FaxTransport)");
        expect(with_tones == element(attributes, model::find_tone_codec(media.ideal, wanted)),
               "find_mf");
        expect(with_type == element(attributes, model::find_attribute(media.ideal, wanted, status)),
               "find(e_AttributeType, e_MediaStatus)");
        expect(mute == model::is_mute(media.ideal), "isMute");
    }

    void reject_media() {
        const Capability capability = some_capability();
        const int type = input.number();
        expect(attempt([&] {
                   capability.real.rejectMedia(static_cast<QOVA_Media::e_MediaType>(type));
               }),
               "rejectMedia allocates");
        model::reject(capability.ideal, type);
    }

    void clear_directions() {
        const Capability capability = some_capability();
        expect(attempt([&] { capability.real.ClearMediaDirection(); }),
               "ClearMediaDirection allocates");
        model::clear_directions(capability.ideal);
    }

    void move() {
        const std::size_t place = some_place();
        const std::string text = input.address();
        const unsigned short audio_port = input.port();
        const unsigned short fax_port = input.port();
        const bool to_public = input.flag();
        IPAddress ip;
        expect(IPAddress::Parse(text, ip), "an address is not read");
        const UDPAddr address(ip, input.port());
        QOVA_Capability& real = *reals[place];
        if (attempt([&] {
                if (to_public) {
                    real.setPublicAddrPort(address, audio_port, fax_port);
                } else {
                    real.setLocalAddrPort(address, audio_port, fax_port);
                }
            })) {
            const auto ideal_move = to_public ? model::move_to_public : model::move_to_local;
            ideal_move(ideals[place], text, audio_port, fax_port);
            return;
        }
        if (renderable(real)) {
            expect(!std::string(real).empty(), "the text of a half moved capability");
        }
        // One media is without an address now.
        if (input.flag()) {
            clear(place);
        } else {
            assign((place + 1) % count, place);
        }
    }

    template <class Real, class Ideal>
    void render(const Both<Real, Ideal>& object) {
        std::string text;
        if (attempt_unchanging([&] {
                const std::string whole(object.real);
                text = whole;
            })) {
            expect_text(text, literal::text(object.real));
        }
    }

    void render_capability() {
        const Capability capability = some_capability();
        make_whole(capability);
        render(capability);
    }

    void render_media() {
        const Media media = some_media();
        make_whole(media);
        render(media);
    }

    void render_attribute() { render(some_attribute()); }
    void render_crypto() { render(some_crypto()); }

    void name_values() {
        const int value = input.number();
        const auto codec = static_cast<QOVA_Codec>(value);
        const auto direction = static_cast<QOVA_EarlyMedia>(value);
        const auto type = static_cast<QOVA_Media::e_MediaType>(value);
        const auto status = static_cast<QOVA_Media::e_MediaStatus>(value);
        const auto suite = static_cast<g_crypto_suite>(value);
        expect_text(ToString(codec), literal::name(codec));
        expect_text(ToString(direction), literal::name(direction));
        expect_text(QOVA_Media::ToString(type), literal::name(type));
        expect_text(QOVA_Media::ToString(status), literal::name(status));
        expect_text(Sdp::CryptoParser::enumToAlgo(suite), literal::name(suite));
    }

    // One of the library's next allocations fails.
    void ask_for_failure() {
        failing_allocation = 1 + input.below(16);
        failure_extent =
            input.flag() ? allocations::Failure::FROM_THERE_ON : allocations::Failure::ONCE;
    }

    // --- comparing all ---

    void compare_all() {
        struct Holder {
            const void* object;
            model::Identity identity;
        };
        Holder holders[2][count * longest_list];
        std::size_t held = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const Capability capability = at(i);
            compare(capability.real, capability.ideal);
            auto ideal = capability.ideal.media.begin();
            for (const QOVA_Media* const media : capability.real.filteredMedia) {
                holders[0][held] = {media->amrwbParam, ideal->amr_wb.identity};
                holders[1][held] = {media->opusParam, ideal->opus.identity};
                ++held;
                ++ideal;
            }
        }
        for (const auto& kind : holders) {
            for (std::size_t i = 0; i < held; ++i) {
                for (std::size_t j = 0; j < i; ++j) {
                    expect((kind[i].object == kind[j].object) ==
                               (kind[i].identity == kind[j].identity),
                           "the identity of a parameter object");
                }
            }
        }
    }
};

const World::Operation World::operations[] = {
    {"edit a capability", &World::edit_capability},
    {"add a media", &World::add_media},
    {"remove a media", &World::remove_media},
    {"edit a media", &World::edit_media},
    {"change an address", &World::change_address},
    {"add an attribute", &World::add_attribute},
    {"remove an attribute", &World::remove_attribute},
    {"edit an attribute", &World::edit_attribute},
    {"add a crypto line", &World::add_crypto},
    {"remove a crypto line", &World::remove_crypto},
    {"edit a crypto line", &World::edit_crypto},
    {"edit AMR-WB parameters", &World::edit_amr_wb},
    {"edit Opus parameters", &World::edit_opus},
    {"exchange AMR-WB parameters", &World::exchange_amr_wb},
    {"exchange Opus parameters", &World::exchange_opus},
    {"copy a capability", &World::copy_capability},
    {"assign a capability", &World::assign_capability},
    {"assign a capability to itself", &World::assign_capability_to_itself},
    {"copy a media", &World::copy_media},
    {"clone a media", &World::clone_media},
    {"assign a media", &World::assign_media},
    {"assign a media to itself", &World::assign_media_to_itself},
    {"clone an attribute", &World::clone_attribute},
    {"copy a crypto line", &World::copy_crypto},
    {"compare capabilities", &World::compare_capabilities},
    {"compare with an altered copy", &World::compare_with_altered_copy},
    {"compare media", &World::compare_media},
    {"compare attributes", &World::compare_attributes},
    {"compare crypto lines", &World::compare_cryptos},
    {"search a capability", &World::search_capability},
    {"search the media of a capability", &World::search_media_of_capability},
    {"search a media", &World::search_media},
    {"reject a media", &World::reject_media},
    {"clear directions", &World::clear_directions},
    {"move", &World::move},
    {"render a capability", &World::render_capability},
    {"render a media", &World::render_media},
    {"render an attribute", &World::render_attribute},
    {"render a crypto line", &World::render_crypto},
    {"name values", &World::name_values},
    {"ask for a failure", &World::ask_for_failure},
};

std::string World::run() {
    while (!input.empty()) {
        const Operation& operation = operations[input.below(std::size(operations))];
        try {
            (this->*operation.carry_out)();
            ++operation_count;
            compare_all();
        } catch (const Difference& difference) {
            return std::string(operation.name) + ": " + difference.what;
        }
    }
    return "";
}

}  // namespace

std::string model_driver::run(const unsigned char* data, std::size_t size) {
    const std::size_t before = allocations::live();
    {
        World world(data, size);
        std::string difference = world.run();
        if (!difference.empty()) {
            world.leak();
            return difference;
        }
    }
    return allocations::live() == before ? "" : "blocks are still alive at the end";
}

unsigned long long model_driver::operations() {
    return operation_count;
}

unsigned long long model_driver::failed_operations() {
    return failure_count;
}
