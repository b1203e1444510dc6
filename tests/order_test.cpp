// How a media and a capability call the objects that they own, and in which order. Callers can
// observe all of these calls, because the objects can be of their own classes.

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>

#include "building_blocks.h"
#include "derived.h"
#include "rows.h"

namespace {

using Amrwb = Freed<Sdp::Sdp_Amrwb_Param>;
using Opus = Freed<Sdp::Sdp_Opus_Param>;
using Crypto = Cloned<QOVA_Crypto>;
using Media = Cloned<QOVA_Media>;

class Order : public testing::Test {
protected:
    void give_address(QOVA_Media& media, const char* name) {
        qova::replace(media.address, std::make_unique<LoggedAddress>(journal, name));
    }

    LoggedAttribute& give_attribute(QOVA_Media& media, const char* name) {
        return qova::append(media.attributes, std::make_unique<LoggedAttribute>(journal, name));
    }

    void give_crypto(QOVA_Media& media, const char* name) {
        qova::append(media.cryptos, std::make_unique<Crypto>(journal, name));
    }

    Journal journal;
};

// ---- Copying and freeing a media ----

class MediaOrder : public Order {
protected:
    MediaOrder() {
        give_address(source, "address");
        give_attribute(source, "a1");
        give_attribute(source, "a2");
        source.amrwbParam->modeSet = {0, 1, 2};
        give_crypto(source, "c1");
        give_crypto(source, "c2");
    }

    std::unique_ptr<QOVA_Media> make_target() {
        auto target = std::make_unique<QOVA_Media>();
        give_address(*target, "old address");
        give_attribute(*target, "old a1");
        give_attribute(*target, "old a2");
        qova::replace(target->amrwbParam, std::make_unique<Amrwb>(journal, "old amrwb"));
        qova::replace(target->opusParam, std::make_unique<Opus>(journal, "old opus"));
        give_crypto(*target, "old c1");
        give_crypto(*target, "old c2");
        return target;
    }

    QOVA_Media source;
};

TEST_F(MediaOrder, CopyConstructor) {
    journal.count_allocations();
    const QOVA_Media copy(source);
    EXPECT_EQ(journal.text(),
              "copy address\n"
              "1 allocated\n"
              "clone a1\n"
              "2 allocated\n"  // a1 and its list node
              "clone a2\n"
              "7 allocated\n"  // a2 and its node; the AMR-WB parameters with three modes; Opus
              "clone c1\n"
              "2 allocated\n"
              "clone c2\n");
}

TEST_F(MediaOrder, Destructor) {
    make_target();
    EXPECT_EQ(journal.text(),
              "free old address\n"
              "free old a1\n"
              "free old a2\n"
              "free old amrwb\n"
              "free old opus\n"
              "free old c1\n"
              "free old c2\n");
}

TEST_F(MediaOrder, Assignment) {
    const std::unique_ptr<QOVA_Media> target = make_target();
    journal.count_allocations();
    *target = source;
    EXPECT_EQ(journal.text(),
              "free old a1\n"
              "free old a2\n"
              "free old c1\n"
              "free old c2\n"
              "free old address\n"
              "copy address\n"
              "1 allocated\n"
              "free old amrwb\n"
              "4 allocated\n"  // the AMR-WB parameters with three modes
              "free old opus\n"
              "1 allocated\n"
              "clone a1\n"
              "2 allocated\n"
              "clone a2\n"
              "2 allocated\n"
              "clone c1\n"
              "2 allocated\n"
              "clone c2\n");
}

// ---- What the owned objects see of their owner during an assignment ----

// Writes the target's fields when it is freed, copied or cloned.
template <class Base>
struct Watcher : Base {
    Watcher(const QOVA_Media& watched, std::string& written) : target(watched), seen(written) {}
    ~Watcher() override { look(); }

    void look() const {
        for (const unsigned field : {unsigned(target.mediaStatus), unsigned(target.mediaType),
                                     unsigned(target.sndPort), target.cryptoCount}) {
            seen += std::to_string(field);
        }
        seen += ' ';
    }

    const QOVA_Media& target;
    std::string& seen;
};

template <class Base>
struct ClonedWatcher : Watcher<Base> {
    using Watcher<Base>::Watcher;
    Base* clone() const override {
        this->look();
        return new Base(*this);
    }
};

struct CopiedWatcher : Watcher<IPAddress> {
    using Watcher::Watcher;
    INetAddress* Copy() const override {
        look();
        return new IPAddress(*this);
    }
};

TEST(MediaFields, ChangeStepByStepInAnAssignment) {
    std::string seen;
    QOVA_Media target;
    QOVA_Media source;
    const auto watch = [&](QOVA_Media& media) {
        qova::replace(media.address, std::make_unique<CopiedWatcher>(target, seen));
        qova::append(media.attributes,
                     std::make_unique<ClonedWatcher<QOVA_DataAttribute>>(target, seen));
        qova::append(media.cryptos, std::make_unique<ClonedWatcher<QOVA_Crypto>>(target, seen));
    };
    watch(target);
    watch(source);
    qova::replace(target.amrwbParam, std::make_unique<Watcher<Sdp::Sdp_Amrwb_Param>>(target, seen));
    source.mediaStatus = QOVA_Media::MS_REJECTED;
    source.mediaType = QOVA_Media::MT_VIDEO;
    source.sndPort = 2;
    source.cryptoCount = 2;
    target = source;
    EXPECT_EQ(seen,
              "1000 1000 1000 "  // the attribute, the crypto line and the address are freed
              "2200 "            // the address is copied
              "2220 2220 "       // the AMR-WB parameters are freed, the attribute is cloned
              "2222 ");          // the crypto line is cloned
}

template <class Base, class Element>
struct Listed : Base {
    Listed(const std::list<Element*>& own, std::string& written) : list(own), sizes(written) {}
    ~Listed() override { sizes += std::to_string(list.size()); }

    const std::list<Element*>& list;
    std::string& sizes;
};

template <class Base, class Element>
void append_two(std::list<Element*>& list, std::string& sizes) {
    qova::append(list, std::make_unique<Listed<Base, Element>>(list, sizes));
    qova::append(list, std::make_unique<Listed<Base, Element>>(list, sizes));
}

TEST(OrderOfFreeing, IsEachElementThenItsListNode) {
    std::string sizes;
    {
        QOVA_Capability capability;
        append_two<QOVA_Media>(capability.filteredMedia, sizes);
        QOVA_Media media;
        append_two<QOVA_DataAttribute>(media.attributes, sizes);
        append_two<QOVA_Crypto>(media.cryptos, sizes);
    }
    EXPECT_EQ(sizes, "212121");
}

// ---- Comparing media ----

class MediaEqualityOrder : public Order {
protected:
    MediaEqualityOrder() {
        drop_parameters(left);
        drop_parameters(right);
        give_address(left, "left");
        give_address(right, "right");
        give_attribute(left, "left a2");
        give_attribute(right, "right a2");
    }

    QOVA_Media left;
    QOVA_Media right;
    LoggedAttribute& left_attribute = give_attribute(left, "left a1");
    LoggedAttribute& right_attribute = give_attribute(right, "right a1");
};

// Crypto lines of a derived class are never equal, but they are compared last.
TEST_F(MediaEqualityOrder, ComparesCryptoLinesLast) {
    EXPECT_TRUE(left == right);
    give_crypto(left, "left c1");
    give_crypto(right, "right c1");
    const std::string until_the_cryptos = journal.text();
    journal.clear();
    EXPECT_FALSE(left == right);
    EXPECT_EQ(until_the_cryptos,
              "text of right\n"
              "differs left from right\n"
              "compare left a1 with right a1\n"
              "compare left a2 with right a2\n");
    EXPECT_EQ(journal.text(), until_the_cryptos);
}

TEST_F(MediaEqualityOrder, StopsIfTheAddressDiffers) {
    dynamic_cast<LoggedAddress&>(*left.address).differs = true;
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n");
    EXPECT_TRUE(right == left);
}

TEST_F(MediaEqualityOrder, StopsAtAnUnequalAttribute) {
    left_attribute.equal = false;
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n"
              "compare left a1 with right a1\n");
    EXPECT_TRUE(right == left);
}

TEST_F(MediaEqualityOrder, HasNoShortcutForItself) {
    dynamic_cast<LoggedAddress&>(*left.address).differs = true;
    EXPECT_FALSE(left == left);
    EXPECT_EQ(journal.text(), "text of left\ndiffers left from left\n");
}

// If an address does not override operator!=, IsEqual decides.
TEST_F(MediaEqualityOrder, NegatesIsEqual) {
    struct EqualToAnything : IPAddress {
        bool IsEqual(const std::string& /*text*/) const override { return true; }
    };
    qova::replace(left.address, std::make_unique<EqualToAnything>());
    EXPECT_TRUE(left == right);
}

// Status and kind are compared before any call; the addresses are compared before all other fields.
class FieldInTheComparison : public MediaEqualityOrder,
                             public testing::WithParamInterface<TextRow<QOVA_Media>> {};

TEST_P(FieldInTheComparison, PrecedesTheAttributes) {
    GetParam().value(right);
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(), GetParam().text);
}

constexpr const char* nobody = "";
constexpr const char* addresses = "text of right\ndiffers left from right\n";

constexpr TextRow<QOVA_Media> fields[] = {
    {"mediaStatus", flip_highest_bit<&QOVA_Media::mediaStatus>, nobody},
    {"mediaType", flip_highest_bit<&QOVA_Media::mediaType>, nobody},
    {"bsnd", flip_highest_bit<&QOVA_Media::bsnd>, addresses},
    {"brcv", flip_highest_bit<&QOVA_Media::brcv>, addresses},
    {"sndPort", flip_highest_bit<&QOVA_Media::sndPort>, addresses},
    {"rcvPort", flip_highest_bit<&QOVA_Media::rcvPort>, addresses},
    {"sndPort2", flip_highest_bit<&QOVA_Media::sndPort2>, addresses},
    {"rcvPort2", flip_highest_bit<&QOVA_Media::rcvPort2>, addresses},
    {"amrwbParam", [](QOVA_Media& m) { m.amrwbParam = new Sdp::Sdp_Amrwb_Param; }, addresses},
    {"opusParam", [](QOVA_Media& m) { m.opusParam = new Sdp::Sdp_Opus_Param; }, addresses},
    {"cryptoCount", flip_highest_bit<&QOVA_Media::cryptoCount>, addresses},
};
INSTANTIATE_TEST_SUITE_P(Media, FieldInTheComparison, testing::ValuesIn(fields), name_of_row);

// ---- Mute test and text of a media ----

class MediaQuestions : public Order {
protected:
    MediaQuestions() { give_address(media, "address"); }

    QOVA_Media media;
};

// Even without a receive port, which alone makes a media mute.
TEST_F(MediaQuestions, MuteTestCallsTheAddressOnce) {
    EXPECT_TRUE(media.isMute());
    EXPECT_EQ(journal.text(), "is any address\n");
}

TEST_F(MediaQuestions, MuteTestAcceptsAnyNonzero) {
    media.rcvPort = 5000;
    EXPECT_FALSE(media.isMute());
    for (const int answer : {1, -1, 65536}) {
        dynamic_cast<LoggedAddress&>(*media.address).any = answer;
        EXPECT_TRUE(media.isMute()) << answer;
    }
}

TEST_F(MediaQuestions, TextCallsEachObjectOnce) {
    give_attribute(media, "a1");
    give_attribute(media, "a2");
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @address/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :a1a2\t   Crypto attributes (0) :\n");
    EXPECT_EQ(journal.text(),
              "text of address\n"
              "text of a1\n"
              "text of a2\n");
}

// ---- Capability ----

class CapabilityOrder : public Order {
protected:
    CapabilityOrder() {
        append(capability, "m1", "m1 address", "m1 a1");
        append(capability, "m2", "m2 address", "m2 a1");
    }

    void append(QOVA_Capability& to, const char* name, const char* address, const char* attribute) {
        auto& media = qova::append(to.filteredMedia, std::make_unique<Media>(journal, name));
        media.mediaType = QOVA_Media::MT_AUDIO;
        give_address(media, address);
        give_attribute(media, attribute);
    }

    QOVA_Capability capability;
};

TEST_F(CapabilityOrder, CopyConstructorClonesTheMedia) {
    const QOVA_Capability copy(capability);
    EXPECT_EQ(journal.text(),
              "clone m1\n"
              "copy m1 address\n"
              "clone m1 a1\n"
              "clone m2\n"
              "copy m2 address\n"
              "clone m2 a1\n");
}

TEST_F(CapabilityOrder, AssignmentFreesThenCopies) {
    QOVA_Capability target;
    append(target, "old m1", "old m1 address", "old m1 a1");
    append(target, "old m2", "old m2 address", "old m2 a1");
    journal.clear();
    target = capability;
    EXPECT_EQ(journal.text(),
              "free old m1\n"
              "free old m1 address\n"
              "free old m1 a1\n"
              "free old m2\n"
              "free old m2 address\n"
              "free old m2 a1\n"
              "copy m1 address\n"
              "clone m1 a1\n"
              "copy m2 address\n"
              "clone m2 a1\n");
}

TEST_F(CapabilityOrder, AssignmentSetsSomeFlagsFirst) {
    struct Watcher : QOVA_Media {
        Watcher(const QOVA_Capability& watched, bool& result) : target(watched), copied(result) {}
        ~Watcher() override {
            copied = target.marked && target.offer && target.hold && target.spare1 == 1 &&
                     target.silenceSuppSdp && target.passThrough.empty() && target.spare2 == 0 &&
                     target.spare3 == 0;
        }

        const QOVA_Capability& target;
        bool& copied;
    };
    bool copied = false;
    QOVA_Capability target;
    qova::append(target.filteredMedia, std::make_unique<Watcher>(target, copied));
    capability.marked = capability.offer = capability.hold = capability.silenceSuppSdp = true;
    capability.passThrough = "text";
    capability.spare1 = capability.spare2 = capability.spare3 = 1;
    target = capability;
    EXPECT_TRUE(copied);
}

TEST_F(CapabilityOrder, DestructorFreesTheMedia) {
    {
        QOVA_Capability other;
        append(other, "o1", "o1 address", "o1 a1");
        append(other, "o2", "o2 address", "o2 a1");
        journal.clear();
    }
    EXPECT_EQ(journal.text(),
              "free o1\n"
              "free o1 address\n"
              "free o1 a1\n"
              "free o2\n"
              "free o2 address\n"
              "free o2 a1\n");
}

TEST_F(CapabilityOrder, TextIsMediaByMedia) {
    const std::string text = capability;
    EXPECT_EQ(journal.text(),
              "text of m1 address\n"
              "text of m1 a1\n"
              "text of m2 address\n"
              "text of m2 a1\n");
}

TEST_F(CapabilityOrder, MuteTestCallsAudioMediaOnly) {
    capability.filteredMedia.front()->mediaType = QOVA_Media::MT_VIDEO;
    EXPECT_TRUE(capability.isMute());
    EXPECT_EQ(journal.text(), "is any m2 address\n");
}

// ---- Comparing capabilities ----

class CapabilityEqualityOrder : public CapabilityOrder {
protected:
    CapabilityEqualityOrder() {
        append(other, "o1", "o1 address", "o1 a1");
        append(other, "o2", "o2 address", "o2 a1");
        for (const QOVA_Capability* const side : {&capability, &other}) {
            for (QOVA_Media* const media : side->filteredMedia) {
                drop_parameters(*media);
            }
        }
    }

    QOVA_Capability other;
};

TEST_F(CapabilityEqualityOrder, IsMediaByMedia) {
    EXPECT_TRUE(capability == other);
    EXPECT_EQ(journal.text(),
              "text of o1 address\n"
              "differs m1 address from o1 address\n"
              "compare m1 a1 with o1 a1\n"
              "text of o2 address\n"
              "differs m2 address from o2 address\n"
              "compare m2 a1 with o2 a1\n");
}

TEST_F(CapabilityEqualityOrder, StopsAtUnequalMedia) {
    dynamic_cast<LoggedAddress&>(*capability.filteredMedia.front()->address).differs = true;
    EXPECT_FALSE(capability == other);
    EXPECT_EQ(journal.text(),
              "text of o1 address\n"
              "differs m1 address from o1 address\n");
}

TEST_F(CapabilityEqualityOrder, ComparesMediaLast) {
    for (bool QOVA_Capability::*const flag :
         {&QOVA_Capability::offer, &QOVA_Capability::hold, &QOVA_Capability::silenceSuppSdp}) {
        other.*flag = true;
        EXPECT_FALSE(capability == other);
        other.*flag = false;
    }

    capability.passThrough = "text";
    EXPECT_FALSE(capability == other);
    EXPECT_FALSE(other == capability);
    other.passThrough = "text";
    EXPECT_TRUE(capability == other);
    capability.passThrough = other.passThrough = "";

    append(other, "o3", "o3 address", "o3 a1");
    EXPECT_FALSE(capability == other);
    EXPECT_FALSE(other == capability);
    EXPECT_EQ(journal.text(), "");
}

// ---- Port plans ----

TEST_F(CapabilityOrder, MovesFreeAndCloneMediaByMedia) {
    const UDPAddr to(LoggedAddress(journal, "to"), 5060);  // holds "to'"
    for (const auto move :
         {&QOVA_Capability::setPublicAddrPort, &QOVA_Capability::setLocalAddrPort}) {
        QOVA_Capability moved(capability);
        journal.clear();
        (moved.*move)(to, 40000, 7000);
        EXPECT_EQ(journal.text(),
                  "free m1 address'\n"
                  "copy to'\n"
                  "free m2 address'\n"
                  "copy to'\n");
    }
}

}  // namespace
