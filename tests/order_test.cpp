// What a media and a capability ask of the objects they own, and in which order. Those classes may
// be other people's, so all of this can be seen from outside.

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

#include "allocations.h"
#include "building_blocks.h"
#include "rows.h"

namespace {

// What the doubles below were asked, one entry a line. Writing into it allocates nothing.
class Journal {
public:
    Journal() { entries.reserve(4096); }

    void write(const char* action, const std::string& who, const char* more = "") {
        if (counting) {
            const std::size_t allocated = allocations::made() - made_before;
            if (allocated != 0) {
                entries += std::to_string(allocated);
                entries += " allocated\n";
            }
        }
        entries += action;
        entries += who;
        entries += more;
        entries += '\n';
        made_before = allocations::made();
    }

    // From now on an entry says how many allocations were made since the one before.
    void count_allocations() {
        counting = true;
        made_before = allocations::made();
    }

    void clear() { entries.clear(); }

    const std::string& text() const { return entries; }

private:
    std::string entries;
    bool counting = false;
    std::size_t made_before = 0;
};

// Gives a double a name of at most 14 characters; a copy of "a" is called "a'".
class Named {
public:
    Named(Journal& the_journal, const char* the_name) : name(the_name), journal(the_journal) {}
    Named(const Named& other) : name(other.name + "'"), journal(other.journal) {}
    Named& operator=(const Named&) = delete;
    ~Named() = default;

    void log(const char* action, const char* more = "") const { journal.write(action, name, more); }

    const std::string name;

private:
    Journal& journal;
};

// A double that logs when it is freed ...
template <class Base>
class Freed : public Base {
public:
    Freed(Journal& journal, const char* name) : named(journal, name) {}
    Freed(const Freed&) = default;
    Freed& operator=(const Freed&) = delete;
    ~Freed() override { named.log("free "); }

    Named named;
};

using Amrwb = Freed<Sdp::Sdp_Amrwb_Param>;
using Opus = Freed<Sdp::Sdp_Opus_Param>;

// ... and one that logs when it is cloned, too.
template <class Base>
class Cloned : public Freed<Base> {
public:
    using Freed<Base>::Freed;

    Cloned* clone() const override {
        this->named.log("clone ");
        return new Cloned(*this);
    }
};

using Crypto = Cloned<QOVA_Crypto>;
using Media = Cloned<QOVA_Media>;

class Attribute : public Freed<QOVA_MediaAttribute> {
public:
    using Freed::Freed;

    Attribute* clone() const override {
        named.log("clone ");
        return new Attribute(*this);
    }
    operator const std::string() const override {
        named.log("text of ");
        return named.name;
    }
    bool operator==(const QOVA_MediaAttribute& other) const override {
        const std::string& other_name = dynamic_cast<const Attribute&>(other).named.name;
        named.log("compare ", (" with " + other_name).c_str());
        return equal;
    }

    bool equal = true;
};

class Address : public Freed<IPAddress> {
public:
    using Freed::Freed;

    INetAddress* Copy() const override {
        named.log("copy ");
        return new Address(*this);
    }
    std::string ToString() const override {
        named.log("text of ");
        return named.name;
    }
    bool IsEqual(const std::string& /*text*/) const override {
        named.log("is equal ");
        return !differs;
    }
    bool operator!=(const std::string& text) const override {
        named.log("differs ", (" from " + text).c_str());
        return differs;
    }
    int IsAny() const override {
        named.log("is any ");
        return any;
    }

    bool differs = false;
    int any = 0;
};

// Hands a new object to a media.
void give(QOVA_Media& media, Address* address) {
    delete media.address;
    media.address = address;
}

void give(QOVA_Media& media, Amrwb* parameters) {
    delete media.amrwbParam;
    media.amrwbParam = parameters;
}

void give(QOVA_Media& media, Opus* parameters) {
    delete media.opusParam;
    media.opusParam = parameters;
}

void give(QOVA_Media& media, Attribute* attribute) {
    media.attributes.push_back(attribute);
}

void give(QOVA_Media& media, Crypto* crypto) {
    media.cryptos.push_back(crypto);
}

// ---- Copying and freeing of a media ----

class MediaOrder : public testing::Test {
protected:
    MediaOrder() {
        give(source, new Address(journal, "address"));
        give(source, new Attribute(journal, "a1"));
        give(source, new Attribute(journal, "a2"));
        source.amrwbParam->modeSet = {0, 1, 2};
        give(source, new Crypto(journal, "c1"));
        give(source, new Crypto(journal, "c2"));
    }

    // A media of the default values that owns doubles.
    std::unique_ptr<QOVA_Media> make_target() {
        auto target = std::make_unique<QOVA_Media>();
        give(*target, new Address(journal, "old address"));
        give(*target, new Attribute(journal, "old a1"));
        give(*target, new Attribute(journal, "old a2"));
        give(*target, new Amrwb(journal, "old amrwb"));
        give(*target, new Opus(journal, "old opus"));
        give(*target, new Crypto(journal, "old c1"));
        give(*target, new Crypto(journal, "old c2"));
        return target;
    }

    Journal journal;
    QOVA_Media source;
};

TEST_F(MediaOrder, CopyConstructorTakesAddressAttributesParametersAndCryptoLines) {
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

TEST_F(MediaOrder, CloneDoesWhatTheCopyConstructorDoes) {
    journal.clear();
    const std::unique_ptr<QOVA_Media> copy(source.clone());
    EXPECT_EQ(journal.text(),
              "copy address\n"
              "clone a1\n"
              "clone a2\n"
              "clone c1\n"
              "clone c2\n");
}

TEST_F(MediaOrder, DestructorFreesAddressAttributesParametersAndCryptoLines) {
    std::unique_ptr<QOVA_Media> media = make_target();
    media.reset();
    EXPECT_EQ(journal.text(),
              "free old address\n"
              "free old a1\n"
              "free old a2\n"
              "free old amrwb\n"
              "free old opus\n"
              "free old c1\n"
              "free old c2\n");
}

TEST_F(MediaOrder, AssignmentFreesListsAndAddressFirstAndEachParameterObjectBeforeItsCopy) {
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

TEST_F(MediaOrder, SelfAssignmentAsksNothingOfAnyone) {
    const QOVA_Media& same = source;
    source = same;
    EXPECT_EQ(journal.text(), "");
}

// ---- Comparing media ----

class MediaEqualityOrder : public testing::Test {
protected:
    MediaEqualityOrder() {
        for (QOVA_Media* const media : {&left, &right}) {
            drop_parameters(*media);
        }
        give(left, left_address);
        give(right, right_address);
        give(left, left_attribute);
        give(right, right_attribute);
        give(left, new Attribute(journal, "left a2"));
        give(right, new Attribute(journal, "right a2"));
    }

    Journal journal;
    QOVA_Media left;
    QOVA_Media right;
    Address* const left_address = new Address(journal, "left");
    Address* const right_address = new Address(journal, "right");
    Attribute* const left_attribute = new Attribute(journal, "left a1");
    Attribute* const right_attribute = new Attribute(journal, "right a1");
};

TEST_F(MediaEqualityOrder, AsksForTheOtherAddressTextThenThisAddressThenTheseAttributes) {
    EXPECT_TRUE(left == right);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n"
              "compare left a1 with right a1\n"
              "compare left a2 with right a2\n");
}

// Without an override, differing is the negation of being equal.
TEST_F(MediaEqualityOrder, ReachesTheAddressesOwnEqualityThroughTheInequality) {
    struct Plain : IPAddress {
        bool IsEqual(const std::string& text) const override {
            asked = text;
            return equal;
        }
        mutable std::string asked;
        bool equal = true;
    };
    delete left.address;
    auto* const plain = new Plain;
    left.address = plain;
    EXPECT_TRUE(left == right);
    EXPECT_EQ(plain->asked, "right");
    plain->equal = false;
    EXPECT_FALSE(left == right);
}

TEST_F(MediaEqualityOrder, TakesTheWordOfThisAddressAndStops) {
    left_address->differs = true;
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n");
    EXPECT_TRUE(right == left);
}

TEST_F(MediaEqualityOrder, TakesTheWordOfTheseAttributesAndStopsAtTheFirstUnequal) {
    left_attribute->equal = false;
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n"
              "compare left a1 with right a1\n");
    EXPECT_TRUE(right == left);
}

TEST_F(MediaEqualityOrder, StopsWhereTheShorterListEnds) {
    give(left, new Attribute(journal, "left a3"));
    EXPECT_TRUE(left == right);
    EXPECT_TRUE(right == left);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n"
              "compare left a1 with right a1\n"
              "compare left a2 with right a2\n"
              "text of left\n"
              "differs right from left\n"
              "compare right a1 with left a1\n"
              "compare right a2 with left a2\n");
}

// A line of a derived class is unequal to every other, but it is the last to be looked at.
TEST_F(MediaEqualityOrder, ComesToTheCryptoLinesLast) {
    give(left, new Crypto(journal, "left c1"));
    give(right, new Crypto(journal, "right c1"));
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(),
              "text of right\n"
              "differs left from right\n"
              "compare left a1 with right a1\n"
              "compare left a2 with right a2\n");
}

// Where a field stands in the comparison is told by whom it has asked by then: nobody before kind
// and status, the addresses before all else.
class FieldInTheComparison : public MediaEqualityOrder,
                             public testing::WithParamInterface<Row<void (*)(QOVA_Media&)>> {};

TEST_P(FieldInTheComparison, DecidesBeforeTheAttributesAreAsked) {
    GetParam().value(right);
    EXPECT_FALSE(left == right);
    EXPECT_EQ(journal.text(), GetParam().text);
}

constexpr const char* nobody = "";
constexpr const char* addresses = "text of right\ndiffers left from right\n";

constexpr Row<void (*)(QOVA_Media&)> fields[] = {
    {"mediaStatus", [](QOVA_Media& m) { m.mediaStatus = QOVA_Media::MS_REJECTED; }, nobody},
    {"mediaType", [](QOVA_Media& m) { m.mediaType = QOVA_Media::MT_FAX; }, nobody},
    {"bsnd", [](QOVA_Media& m) { m.bsnd = false; }, addresses},
    {"brcv", [](QOVA_Media& m) { m.brcv = false; }, addresses},
    {"sndPort", [](QOVA_Media& m) { m.sndPort = 1; }, addresses},
    {"rcvPort", [](QOVA_Media& m) { m.rcvPort = 1; }, addresses},
    {"sndPort2", [](QOVA_Media& m) { m.sndPort2 = 1; }, addresses},
    {"rcvPort2", [](QOVA_Media& m) { m.rcvPort2 = 1; }, addresses},
    {"amrwbParam", [](QOVA_Media& m) { m.amrwbParam = new Sdp::Sdp_Amrwb_Param; }, addresses},
    {"opusParam", [](QOVA_Media& m) { m.opusParam = new Sdp::Sdp_Opus_Param; }, addresses},
    {"cryptoCount", [](QOVA_Media& m) { m.cryptoCount = 1; }, addresses},
};

INSTANTIATE_TEST_SUITE_P(Media, FieldInTheComparison, testing::ValuesIn(fields), name_of_row);

// ---- Mute test, searches and text of a media ----

TEST(MediaMuteOrder, AsksTheAddressOnceAndTakesAnyNonzeroAnswer) {
    Journal journal;
    QOVA_Media media;
    media.rcvPort = 5000;
    auto* const address = new Address(journal, "address");
    give(media, address);
    EXPECT_FALSE(media.isMute());
    EXPECT_EQ(journal.text(), "is any address\n");
    for (const int answer : {1, -1, 2, 256, 65536}) {
        address->any = answer;
        EXPECT_TRUE(media.isMute()) << answer;
    }
}

// The address comes first, whatever the port says.
TEST(MediaMuteOrder, AsksTheAddressAlsoWithoutAReceivePort) {
    Journal journal;
    QOVA_Media media;
    give(media, new Address(journal, "address"));
    EXPECT_TRUE(media.isMute());
    EXPECT_EQ(journal.text(), "is any address\n");
}

TEST(MediaTextOrder, AsksTheAddressThenEachAttributeOnce) {
    Journal journal;
    QOVA_Media media;
    give(media, new Attribute(journal, "a1"));
    give(media, new Attribute(journal, "a2"));
    give(media, new Address(journal, "address"));
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @address/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :a1a2\t   Crypto attributes (0) :\n");
    EXPECT_EQ(journal.text(),
              "text of address\n"
              "text of a1\n"
              "text of a2\n");
}

// ---- Capability ----

class CapabilityOrder : public testing::Test {
protected:
    // Appends a media called `name` whose address and attribute are doubles too.
    static Media& append(QOVA_Capability& capability, Journal& journal, const char* name,
                         const char* address, const char* attribute) {
        auto* const media = new Media(journal, name);
        capability.filteredMedia.push_back(media);
        media->mediaType = QOVA_Media::MT_AUDIO;
        give(*media, new Address(journal, address));
        give(*media, new Attribute(journal, attribute));
        return *media;
    }

    Journal journal;
    QOVA_Capability capability;
    Media& first = append(capability, journal, "m1", "m1 address", "m1 a1");
    Media& second = append(capability, journal, "m2", "m2 address", "m2 a1");
    Media& third = append(capability, journal, "m3", "m3 address", "m3 a1");
};

TEST_F(CapabilityOrder, CopyConstructorClonesTheMediaInListOrder) {
    const QOVA_Capability copy(capability);
    EXPECT_EQ(journal.text(),
              "clone m1\n"
              "copy m1 address\n"
              "clone m1 a1\n"
              "clone m2\n"
              "copy m2 address\n"
              "clone m2 a1\n"
              "clone m3\n"
              "copy m3 address\n"
              "clone m3 a1\n");
}

TEST_F(CapabilityOrder, AssignmentFreesAllMediaThenCopiesPlainOnes) {
    QOVA_Capability target;
    append(target, journal, "old m1", "old m1 address", "old m1 a1");
    append(target, journal, "old m2", "old m2 address", "old m2 a1");
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
              "clone m2 a1\n"
              "copy m3 address\n"
              "clone m3 a1\n");
}

TEST_F(CapabilityOrder, SelfAssignmentFreesTheMediaAndCopiesNone) {
    const QOVA_Capability& same = capability;
    capability = same;
    EXPECT_EQ(journal.text(),
              "free m1\n"
              "free m1 address\n"
              "free m1 a1\n"
              "free m2\n"
              "free m2 address\n"
              "free m2 a1\n"
              "free m3\n"
              "free m3 address\n"
              "free m3 a1\n");
}

TEST_F(CapabilityOrder, DestructorFreesTheMediaInListOrder) {
    {
        QOVA_Capability other;
        append(other, journal, "other m1", "o1 address", "o1 a1");
        append(other, journal, "other m2", "o2 address", "o2 a1");
        journal.clear();
    }
    EXPECT_EQ(journal.text(),
              "free other m1\n"
              "free o1 address\n"
              "free o1 a1\n"
              "free other m2\n"
              "free o2 address\n"
              "free o2 a1\n");
}

TEST_F(CapabilityOrder, AssignmentCopiesFlagsBeforeItFreesTheMedia) {
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
    target.filteredMedia.push_back(new Watcher(target, copied));
    capability.marked = true;
    capability.offer = true;
    capability.passThrough = "text";
    capability.hold = true;
    capability.spare1 = 1;
    capability.spare2 = 2;
    capability.spare3 = 3;
    capability.silenceSuppSdp = true;
    target = capability;
    EXPECT_TRUE(copied);
}

TEST_F(CapabilityOrder, TextAsksTheMediaInListOrder) {
    const std::string text = capability;
    EXPECT_EQ(journal.text(),
              "text of m1 address\n"
              "text of m1 a1\n"
              "text of m2 address\n"
              "text of m2 a1\n"
              "text of m3 address\n"
              "text of m3 a1\n");
}

TEST_F(CapabilityOrder, MuteTestAsksAudioMediaOnly) {
    for (QOVA_Media* const media : capability.filteredMedia) {
        media->rcvPort = 5000;
    }
    second.mediaType = QOVA_Media::MT_VIDEO;
    dynamic_cast<Address&>(*second.address).any = 1;
    EXPECT_FALSE(capability.isMute());
    EXPECT_EQ(journal.text(),
              "is any m1 address\n"
              "is any m3 address\n");
}

// ---- Comparing capabilities ----

class CapabilityEqualityOrder : public CapabilityOrder {
protected:
    CapabilityEqualityOrder() {
        append(other, journal, "o1", "o1 address", "o1 a1");
        append(other, journal, "o2", "o2 address", "o2 a1");
        append(other, journal, "o3", "o3 address", "o3 a1");
        for (const QOVA_Capability* const side : {&capability, &other}) {
            for (QOVA_Media* const media : side->filteredMedia) {
                drop_parameters(*media);
            }
        }
    }

    QOVA_Capability other;
};

TEST_F(CapabilityEqualityOrder, AsksTheMediaPairByPair) {
    EXPECT_TRUE(capability == other);
    EXPECT_EQ(journal.text(),
              "text of o1 address\n"
              "differs m1 address from o1 address\n"
              "compare m1 a1 with o1 a1\n"
              "text of o2 address\n"
              "differs m2 address from o2 address\n"
              "compare m2 a1 with o2 a1\n"
              "text of o3 address\n"
              "differs m3 address from o3 address\n"
              "compare m3 a1 with o3 a1\n");
}

TEST_F(CapabilityEqualityOrder, StopsAtTheFirstUnequalPair) {
    dynamic_cast<Address&>(*second.address).differs = true;
    EXPECT_FALSE(capability == other);
    EXPECT_EQ(journal.text(),
              "text of o1 address\n"
              "differs m1 address from o1 address\n"
              "compare m1 a1 with o1 a1\n"
              "text of o2 address\n"
              "differs m2 address from o2 address\n");
}

TEST_F(CapabilityEqualityOrder, AsksNoMediaWhenTheirNumbersDiffer) {
    append(other, journal, "o4", "o4 address", "o4 a1");
    EXPECT_FALSE(capability == other);
    EXPECT_FALSE(other == capability);
    EXPECT_EQ(journal.text(), "");
}

TEST_F(CapabilityEqualityOrder, AsksNoMediaWhenThereIsAText) {
    capability.passThrough = other.passThrough = "the same";
    EXPECT_TRUE(capability == other);
    other.passThrough = "another";
    EXPECT_FALSE(capability == other);
    other.passThrough = "";
    EXPECT_FALSE(capability == other);
    EXPECT_FALSE(other == capability);
    EXPECT_EQ(journal.text(), "");
}

TEST_F(CapabilityEqualityOrder, AsksNoMediaWhenAFlagDiffers) {
    for (bool QOVA_Capability::*const flag :
         {&QOVA_Capability::offer, &QOVA_Capability::hold, &QOVA_Capability::silenceSuppSdp}) {
        other.*flag = true;
        EXPECT_FALSE(capability == other);
        EXPECT_FALSE(other == capability);
        other.*flag = false;
    }
    EXPECT_EQ(journal.text(), "");
}

// ---- Port plans ----

using PortMove = void (QOVA_Capability::*)(const UDPAddr&, unsigned short, unsigned short);

class PortPlanOrder : public CapabilityOrder, public testing::WithParamInterface<PortMove> {
protected:
    PortPlanOrder() { journal.clear(); }

    void move() { (capability.*GetParam())(to, 40000, 7000); }

    const UDPAddr to = UDPAddr(Address(journal, "to"), 5060);  // holds "to'"
};

const auto name_of_plan = [](const auto& plan) {
    return plan.param == &QOVA_Capability::setPublicAddrPort ? "Public" : "Local";
};
INSTANTIATE_TEST_SUITE_P(To, PortPlanOrder,
                         testing::Values(&QOVA_Capability::setPublicAddrPort,
                                         &QOVA_Capability::setLocalAddrPort),
                         name_of_plan);

TEST_P(PortPlanOrder, FreesAndClonesMediaByMedia) {
    move();
    EXPECT_EQ(journal.text(),
              "free m1 address\n"
              "copy to'\n"
              "free m2 address\n"
              "copy to'\n"
              "free m3 address\n"
              "copy to'\n");
}

TEST_P(PortPlanOrder, DoesNotTouchRejectedMedia) {
    second.mediaStatus = QOVA_Media::MS_REJECTED;
    move();
    EXPECT_EQ(journal.text(),
              "free m1 address\n"
              "copy to'\n"
              "free m3 address\n"
              "copy to'\n");
}

TEST_P(PortPlanOrder, ClonesForANullAddressToo) {
    delete first.address;
    first.address = nullptr;
    journal.clear();
    move();
    EXPECT_EQ(journal.text(),
              "copy to'\n"
              "free m2 address\n"
              "copy to'\n"
              "free m3 address\n"
              "copy to'\n");
}

}  // namespace
