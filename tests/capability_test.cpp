// The capability of one side of a call: copies, partial equality, searches, bulk edits, port plans
// and the log text. order_test.cpp covers the order in which it touches its media.

#include "qova/capability.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <list>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <typeinfo>

#include "building_blocks.h"
#include "derived.h"
#include "describe.h"
#include "equality.h"
#include "grouping_locale.h"
#include "rows.h"

namespace {

using Capability = QOVA_Capability;
using Media = QOVA_Media;
using MediaList = std::list<QOVA_Media*>;
using Owned = std::unique_ptr<Capability>;

// Send and receive ports, then the second ones.
using Ports = std::array<int, 4>;

Ports ports_of(const Media& media) {
    return {media.sndPort, media.rcvPort, media.sndPort2, media.rcvPort2};
}

void set_ports(Media& media, const Ports& ports) {
    media.sndPort = static_cast<unsigned short>(ports[0]);
    media.rcvPort = static_cast<unsigned short>(ports[1]);
    media.sndPort2 = static_cast<unsigned short>(ports[2]);
    media.rcvPort2 = static_cast<unsigned short>(ports[3]);
}

TEST(CapabilityDefaults, AreEmptyAndFalse) {
    EXPECT_EQ(describe(*Owned(new Capability)),
              "QOVA_Capability marked=0 offer=0 hold=0 spare1=0 spare2=0 spare3=0 silenceSuppSdp=0"
              " passThrough=\"\"\n"
              "filteredMedia: 0");
}

// ---- The flags: how copies, equality and the log text treat each ----

struct Flag {
    const char* name;
    void (*set)(Capability& capability);
    bool compared;
    const char* text;  // the log text of an otherwise empty capability
};

void PrintTo(const Flag& flag, std::ostream* out) {
    *out << flag.name;
}

constexpr Flag flags[] = {
    {"marked", flip_highest_bit<&Capability::marked>, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)'"},
    {"offer", flip_highest_bit<&Capability::offer>, true,
     "Capability(offer, Not Hold, silenceSuppSdp=no)"},
    {"hold", flip_highest_bit<&Capability::hold>, true,
     "Capability(answer, Hold, silenceSuppSdp=no)"},
    {"spare1", flip_highest_bit<&Capability::spare1>, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
    {"spare2", flip_highest_bit<&Capability::spare2>, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
    {"spare3", flip_highest_bit<&Capability::spare3>, false,
     "Capability(answer, Not Hold, silenceSuppSdp=no)"},
    {"silenceSuppSdp", flip_highest_bit<&Capability::silenceSuppSdp>, true,
     "Capability(answer, Not Hold, silenceSuppSdp=yes)"},
};

class CapabilityFlag : public testing::TestWithParam<Flag> {
protected:
    CapabilityFlag() { GetParam().set(with); }

    Capability with;
    Capability without;
};
INSTANTIATE_TEST_SUITE_P(Each, CapabilityFlag, testing::ValuesIn(flags), name_of_row);

TEST_P(CapabilityFlag, IsCopied) {
    const Capability copy(with);
    EXPECT_EQ(describe(copy), describe(with));
    const Owned target = full<Capability>();
    *target = with;
    EXPECT_EQ(describe(*target), describe(with));
    *target = without;
    EXPECT_EQ(describe(*target), describe(without));
}

TEST_P(CapabilityFlag, IsComparedOrIgnored) {
    for (const char* const text : {"", "the same"}) {
        with.passThrough = without.passThrough = text;
        if (GetParam().compared) {
            expect_unequal(with, without);
        } else {
            expect_equal(with, without);
        }
    }
}

TEST_P(CapabilityFlag, IsPrintedOrOmitted) {
    EXPECT_EQ(std::string(with), GetParam().text);
}

// ---- Copies ----

template <void (*prepare)(Capability& target)>
Owned assign(const Capability& source) {
    auto target = std::make_unique<Capability>();
    prepare(*target);
    EXPECT_EQ(&(*target = source), target.get());
    return target;
}

void leave(Capability& /*capability*/) {}

constexpr CopyPath<Capability> paths[] = {
    {"Constructor", [](const Capability& source) { return std::make_unique<Capability>(source); }},
    {"AssignmentToAnEmpty", assign<leave>},
    {"AssignmentToAFull", assign<fill>},
};

class CapabilityCopy : public testing::TestWithParam<CopyPath<Capability>> {
protected:
    static Owned copy(const Capability& source) { return GetParam().copy(source); }

    Owned source = full<Capability>();
    const std::string full_description = describe(*source);
};
INSTANTIATE_TEST_SUITE_P(By, CapabilityCopy, testing::ValuesIn(paths), name_of_row);

TEST_P(CapabilityCopy, HasEveryMember) {
    EXPECT_EQ(describe(*copy(*source)), full_description);
    EXPECT_EQ(describe(*source), full_description);
}

TEST_P(CapabilityCopy, HasTheDefaults) {
    EXPECT_EQ(describe(*copy(Capability())), describe(Capability()));
}

TEST_P(CapabilityCopy, HasTheWholePassThroughText) {
    source->passThrough = std::string("a\0b\n\xFF\0", 6);
    EXPECT_EQ(copy(*source)->passThrough, source->passThrough);
}

void scramble(Capability& capability) {
    capability.passThrough[0] = 'X';
    capability.find(CODEC_G711_ULAW)->attributes.front()->status = Media::MS_REJECTED;
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    qova::erase(capability.filteredMedia, capability.filteredMedia.begin());
}

TEST_P(CapabilityCopy, IsIndependentOfItsSource) {
    const Owned result = copy(*source);
    scramble(*source);
    EXPECT_EQ(describe(*result), full_description);
    source.reset();
    EXPECT_EQ(describe(*result), full_description);
}

TEST_P(CapabilityCopy, LeavesItsSourceUnchanged) {
    Owned result = copy(*source);
    scramble(*result);
    result.reset();
    EXPECT_EQ(describe(*source), full_description);
}

TEST(CopyOfDerivedMedia, IsPlainOnlyAfterAssignment) {
    Capability source;
    append_media<Derived<Media>>(source, Media::MT_VIDEO);
    const Capability copy(source);
    EXPECT_EQ(describe(copy), describe(source));
    Capability target;
    target = source;
    const Media& media = *target.filteredMedia.front();
    EXPECT_EQ(typeid(media), typeid(Media));
    EXPECT_EQ(std::string(target), std::string(source));
}

// There is no guard against self-assignment, and programs can observe that.
TEST(CapabilityAssignment, ToItselfFreesTheMedia) {
    const Owned capability = full<Capability>();
    const Owned expected = full<Capability>();
    for (auto media = expected->filteredMedia.begin(); media != expected->filteredMedia.end();) {
        media = qova::erase(expected->filteredMedia, media);
    }
    const Capability& same = *capability;
    EXPECT_EQ(&(*capability = same), capability.get());
    EXPECT_EQ(describe(*capability), describe(*expected));
}

// ---- Equality ----

class CapabilityEquality : public testing::Test {
protected:
    // Appends a media that can equal another.
    static Media& append_comparable(Capability& capability, Media::e_MediaType type) {
        return drop_parameters(append_media(capability, type));
    }

    Capability a;
    Capability b;
};

TEST_F(CapabilityEquality, IsTrueIfEmptyOrTheSame) {
    expect_equal(a, b);
    fill(a);
    a.passThrough.clear();
    expect_equal(a, a);
}

TEST_F(CapabilityEquality, CanBeFalseForItself) {
    qova::append<OwnAttribute>(append_comparable(a, Media::MT_AUDIO).attributes);
    EXPECT_FALSE(a == a);
}

TEST_F(CapabilityEquality, PassThroughTextHidesMedia) {
    a.passThrough = b.passThrough = "the same";
    append_media(a, Media::MT_AUDIO);
    expect_equal(a, b);
    append_media(b, Media::MT_FAX);
    expect_equal(a, b);
}

TEST_F(CapabilityEquality, ComparesWholePassThrough) {
    a.passThrough = std::string("a\0b", 3);
    for (const std::string& other :
         {std::string("a\0c", 3), std::string("a"), std::string("a\0b\0", 4), std::string()}) {
        b.passThrough = other;
        expect_unequal(a, b);
    }
    b.passThrough = a.passThrough;
    expect_equal(a, b);
}

TEST_F(CapabilityEquality, ComparesTheMediaPairByPair) {
    for (Capability* const capability : {&a, &b}) {
        append_comparable(*capability, Media::MT_AUDIO);
        append_comparable(*capability, Media::MT_FAX);
    }
    expect_equal(a, b);
    for (Media* const media : b.filteredMedia) {
        media->rcvPort = 1;
        expect_unequal(a, b);
        media->rcvPort = 0;
    }
    b.filteredMedia.reverse();
    expect_unequal(a, b);
}

// Unlike the lists within a media.
TEST_F(CapabilityEquality, ComparesTheNumberOfMedia) {
    append_comparable(a, Media::MT_AUDIO);
    expect_unequal(a, b);
    append_comparable(b, Media::MT_AUDIO);
    append_comparable(b, Media::MT_AUDIO);
    expect_unequal(a, b);
}

// The copies of the media have their own parameter objects, which are compared by identity.
TEST_F(CapabilityEquality, IsFalseForACopyWithMedia) {
    b = a;
    expect_equal(a, b);
    append_media(a, Media::MT_AUDIO);
    b = a;
    expect_unequal(a, b);
    a.passThrough = b.passThrough = "text";
    expect_equal(a, b);
}

// ---- Searches ----

TEST(EmptyCapability, FindsNothing) {
    const Capability capability;
    EXPECT_EQ(capability.find(Media::MT_NIL, Media::MS_UNKNOWN), MediaList());
    EXPECT_EQ(capability.find(CODEC_NIL), nullptr);
    EXPECT_EQ(capability.find(FT_NIL), nullptr);
    EXPECT_EQ(capability.find_mf(CODEC_NIL), nullptr);
    EXPECT_FALSE(capability.isMute());
}

class CapabilitySearch : public testing::Test {
protected:
    Capability capability;
};

TEST_F(CapabilitySearch, ByKindAndStatusReturnsAll) {
    auto& accepted = append_media(capability, Media::MT_AUDIO);
    auto& fax = append_media(capability, Media::MT_FAX);
    auto& rejected = append_media(capability, Media::MT_AUDIO, Media::MS_REJECTED);
    auto& unknown = append_media(capability, Media::MT_AUDIO, Media::MS_UNKNOWN);
    auto& last = append_media(capability, Media::MT_AUDIO);
    EXPECT_EQ(capability.find(Media::MT_AUDIO, Media::MS_ACCEPTED), (MediaList{&accepted, &last}));
    EXPECT_EQ(capability.find(Media::MT_AUDIO, Media::MS_REJECTED), MediaList{&rejected});
    EXPECT_EQ(capability.find(Media::MT_FAX, Media::MS_ACCEPTED), MediaList{&fax});
    EXPECT_EQ(capability.find(Media::MT_FAX, Media::MS_REJECTED), MediaList());
    EXPECT_EQ(capability.find(Media::MT_NIL, Media::MS_UNKNOWN), MediaList());
    // MS_UNKNOWN matches any status.
    EXPECT_EQ(capability.find(Media::MT_AUDIO, Media::MS_UNKNOWN),
              (MediaList{&accepted, &rejected, &unknown, &last}));
}

TEST_F(CapabilitySearch, ByCodecReturnsTheFirstMedia) {
    append_audio(append_media(capability, Media::MT_AUDIO), CODEC_G723);
    auto& first = append_media(capability, Media::MT_AUDIO);
    append_audio(first, CODEC_OPUS);
    append_audio(first, CODEC_G729);
    append_audio(append_media(capability, Media::MT_AUDIO), CODEC_G729);
    EXPECT_EQ(capability.find(CODEC_G729), &first);
    EXPECT_EQ(capability.find(CODEC_G711_ALAW), nullptr);
}

TEST_F(CapabilitySearch, ByToneCodecReturnsTheFirst) {
    append_audio(append_media(capability, Media::MT_AUDIO), CODEC_G722, CODEC_G723);
    auto& audio = append_media(capability, Media::MT_AUDIO);
    append_audio(audio, CODEC_G722, CODEC_G729);
    const auto& first = append_audio(audio, CODEC_NIL, CODEC_G722);
    append_audio(append_media(capability, Media::MT_AUDIO), CODEC_NIL, CODEC_G722);
    EXPECT_EQ(capability.find_mf(CODEC_G722), &first);
    EXPECT_EQ(capability.find_mf(CODEC_OPUS), nullptr);
}

TEST_F(CapabilitySearch, ByTransportReturnsTheFirst) {
    append_fax(append_media(capability, Media::MT_FAX), FT_T38_TCP);
    auto& first = append_media(capability, Media::MT_FAX);
    append_fax(first, FT_T38_UDPTL);
    append_fax(append_media(capability, Media::MT_FAX), FT_T38_UDPTL);
    EXPECT_EQ(capability.find(FT_T38_UDPTL), &first);
    EXPECT_EQ(capability.find(FT_NIL), nullptr);
}

TEST_F(CapabilitySearch, IgnoresOtherKindsOfMedia) {
    for (const int type : {0, 1, 2, 3, 4}) {
        auto& media = append_media(capability, static_cast<Media::e_MediaType>(type));
        if (type != Media::MT_AUDIO) {
            append_audio(media, CODEC_G729, CODEC_G729);
        }
        if (type != Media::MT_FAX) {
            append_fax(media, FT_T38_UDPTL);
        }
    }
    EXPECT_EQ(capability.find(CODEC_G729), nullptr);
    EXPECT_EQ(capability.find_mf(CODEC_G729), nullptr);
    EXPECT_EQ(capability.find(FT_T38_UDPTL), nullptr);
}

TEST_F(CapabilitySearch, FindsRejectedMediaToo) {
    auto& audio = append_media(capability, Media::MT_AUDIO, Media::MS_REJECTED);
    const auto& attribute = append_audio(audio, CODEC_G729, CODEC_G722);
    auto& fax = append_media(capability, Media::MT_FAX, Media::MS_REJECTED);
    append_fax(fax, FT_T38_TCP);
    EXPECT_EQ(capability.find(CODEC_G729), &audio);
    EXPECT_EQ(capability.find_mf(CODEC_G722), &attribute);
    EXPECT_EQ(capability.find(FT_T38_TCP), &fax);
}

TEST(MuteCapability, HasAMuteAudioMedia) {
    Capability capability;
    append_media(capability, Media::MT_VIDEO);
    append_media(capability, Media::MT_FAX);
    EXPECT_FALSE(capability.isMute());
    for (int i = 0; i < 2; ++i) {
        auto& audio = append_media(capability, Media::MT_AUDIO);
        EXPECT_TRUE(capability.isMute());
        set_address(audio, "10.0.0.1");
        audio.rcvPort = 5000;
        EXPECT_FALSE(capability.isMute());
    }
}

// ---- Bulk edits ----

TEST(RejectMedia, ClearsFirstPortsOfTheFirst) {
    Capability capability;
    append_media(capability, Media::MT_FAX);
    auto& first = append_media(capability, Media::MT_AUDIO, Media::MS_MODIFIED);
    append_media(capability, Media::MT_AUDIO);
    for (Media* const media : capability.filteredMedia) {
        set_ports(*media, {1, 2, 3, 4});
    }
    const std::string before = describe(capability);
    // A second call does not reject the next media.
    capability.rejectMedia(Media::MT_AUDIO);
    capability.rejectMedia(Media::MT_AUDIO);
    EXPECT_EQ(ports_of(first), (Ports{0, 0, 3, 4}));
    set_ports(first, {1, 2, 3, 4});
    EXPECT_EQ(describe(capability), before) << "nothing else changes";
}

TEST(RejectMedia, ChangesNothingWithoutAMatch) {
    const Owned capability = full<Capability>();
    capability->rejectMedia(Media::MT_VIDEO);
    EXPECT_EQ(describe(*capability), describe(*full<Capability>()));
}

TEST(ClearMediaDirection, ChangesAudioMediaOnly) {
    Capability capability;
    for (const int type : {1, 0, 1, 2, 3, 4, 1}) {
        append_media(capability, static_cast<Media::e_MediaType>(type));
    }
    Capability expected(capability);
    for (Media* const media : expected.find(Media::MT_AUDIO, Media::MS_UNKNOWN)) {
        media->bsnd = media->brcv = false;
    }
    capability.ClearMediaDirection();
    EXPECT_EQ(describe(capability), describe(expected));
}

// ---- Port plans ----

class PortPlan : public testing::Test {
protected:
    Capability capability;
    Media& audio = append_media(capability, Media::MT_AUDIO);
    Media& fax = append_media(capability, Media::MT_FAX);
};

TEST_F(PortPlan, MovesToThePublicPlanAndBack) {
    set_ports(audio, {32000, 32001, 32002, 32003});
    set_ports(fax, {6666, 6667, 0, 0});

    capability.setPublicAddrPort(endpoint("192.0.2.1"), 40000, 7000);
    EXPECT_EQ(ports_of(audio), (Ports{40000, 40001, 40002, 40003}));
    EXPECT_EQ(ports_of(fax), (Ports{7000, 7001, 334, 334}));
    EXPECT_EQ(audio.address->ToString(), "192.0.2.1");

    capability.setLocalAddrPort(endpoint("2001:db8::1"), 40000, 7000);
    EXPECT_EQ(ports_of(audio), (Ports{32000, 32001, 32002, 32003}));
    EXPECT_EQ(ports_of(fax), (Ports{6666, 6667, 0, 0}));
    EXPECT_EQ(fax.address->ToString(), "2001:db8::1");
}

TEST_F(PortPlan, WrapsAround) {
    set_ports(audio, {32000, 100, 31000, 65535});
    set_ports(fax, {0, 0, 0, 0});
    capability.setPublicAddrPort(endpoint("192.0.2.1"), 1000, 6665);
    EXPECT_EQ(ports_of(audio), (Ports{1000, 34636, 0, 34535}));
    EXPECT_EQ(ports_of(fax), (Ports{65535, 65535, 65535, 65535}));
    capability.setLocalAddrPort(endpoint("192.0.2.1"), 1000, 6665);
    EXPECT_EQ(ports_of(audio), (Ports{32000, 100, 31000, 65535}));
    EXPECT_EQ(ports_of(fax), (Ports{0, 0, 0, 0}));
}

struct Move {
    const char* name;
    void (Capability::*move)(const UDPAddr&, unsigned short, unsigned short);
    int sign;  // of the shift
};

void PrintTo(const Move& move, std::ostream* out) {
    *out << move.name;
}

class EitherMove : public testing::TestWithParam<Move> {
protected:
    // Shifts audio ports by 5 or -5, fax ports by 7 or -7.
    void move() { (capability.*GetParam().move)(endpoint("2001:db8::1"), 32005, 6673); }

    static Ports shifted(const Ports& ports, int shift) {
        Ports result = {};
        for (std::size_t i = 0; i < ports.size(); ++i) {
            result[i] = static_cast<unsigned short>(ports[i] + GetParam().sign * shift);
        }
        return result;
    }

    Capability capability;
};
INSTANTIATE_TEST_SUITE_P(To, EitherMove,
                         testing::Values(Move{"Public", &Capability::setPublicAddrPort, 1},
                                         Move{"Local", &Capability::setLocalAddrPort, -1}),
                         name_of_row);

TEST_P(EitherMove, ShiftsThePortsOfAudioAndFaxOnly) {
    for (const int type : {0, 1, 2, 3, 4, 5}) {
        fill(append_media(capability, static_cast<Media::e_MediaType>(type)));
        capability.filteredMedia.back()->mediaType = static_cast<Media::e_MediaType>(type);
    }
    Capability expected(capability);
    for (Media* const media : expected.filteredMedia) {
        set_address(*media, "2001:db8::1");
        const int shift = media->mediaType == Media::MT_AUDIO ? 5
                          : media->mediaType == Media::MT_FAX ? 7
                                                              : 0;
        set_ports(*media, shifted(ports_of(*media), shift));
    }
    move();
    EXPECT_EQ(describe(capability), describe(expected));
}

TEST_P(EitherMove, SkipsOnlyRejectedMedia) {
    auto& rejected = append_media(capability, Media::MT_AUDIO, Media::MS_REJECTED);
    const std::string before = describe(rejected, PLACES);
    auto& next = append_media(capability, Media::MT_AUDIO, Media::MS_UNKNOWN);
    move();
    EXPECT_EQ(describe(rejected, PLACES), before);
    EXPECT_EQ(ports_of(next), shifted({0, 0, 0, 0}, 5));
    EXPECT_EQ(next.address->ToString(), "2001:db8::1");
}

TEST_P(EitherMove, GivesEachMediaItsOwnAddress) {
    auto& first = append_media(capability, Media::MT_AUDIO);
    qova::replace(first.address, std::unique_ptr<INetAddress>());  // null is replaced, too
    auto& second = append_media(capability, Media::MT_VIDEO);
    move();
    EXPECT_NE(first.address, second.address);
    EXPECT_EQ(first.address->ToString(), "2001:db8::1");
}

// ---- Log text ----

const std::string summary = "Capability(answer, Not Hold, silenceSuppSdp=no)";

TEST(CapabilityText, FullCapability) {
    const Owned capability = full<Capability>();
    *capability->filteredMedia.front() = Media();
    EXPECT_EQ(std::string(*capability),
              "Capability(offer, Hold, silenceSuppSdp=yes)'\n"
              "\tFiltered=\n"
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n"
              "\t-> media(Fax)/Rejected @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :"
              "\t\t -> fax / transport=T38tcp / red=0 / depth=0 / mxRate=0\n"
              "\t\t    rateMgt=NIL / fillBit=0 / transMMR=0 / transJBIG=0\n"
              "\t\t    mxBuffer=0/ mxDgram=0 / errCorr=0\n"
              "\t   Crypto attributes (0) :\n"
              "\n"
              "\tPass-through=\n"
              "m=application 5000 udp wb\r\n"
              "a=orient:portrait\r\n"
              "\n");
}

TEST(CapabilityText, HasNoNewlineWhenEmpty) {
    EXPECT_EQ(std::string(Capability()), summary);
}

TEST(CapabilityText, EndsWithTheLastMedia) {
    Capability capability;
    const std::string first = append_media(capability, Media::MT_AUDIO);
    const std::string last = append_media(capability, Media::MT_VIDEO);
    EXPECT_EQ(std::string(capability), summary + "\n\tFiltered=\n" + first + last);
}

TEST(CapabilityText, HasTheWholePassThroughText) {
    Capability capability;
    capability.passThrough = std::string("\0a\n\xFF\n\n", 6);
    EXPECT_EQ(std::string(capability),
              summary + "\n\tPass-through=\n" + std::string("\0a\n\xFF\n\n", 6) + "\n");
}

TEST(AllTexts, DoNotDependOnTheGlobalLocale) {
    const std::string text = *full<Capability>();
    const GroupingLocale grouping;
    std::ostringstream stream;
    stream << 49170;
    ASSERT_EQ(stream.str(), "49.170") << "the global locale does not group digits";
    EXPECT_EQ(std::string(*full<Capability>()), text);
}

// Key material stays out of the logs.
TEST(AllTexts, DoNotDependOnKeyMaterial) {
    const Owned capability = full<Capability>();
    const std::string text = *capability;
    for (QOVA_CryptoKey& key : capability->filteredMedia.front()->cryptos.front()->keys) {
        for (unsigned char& byte : key.key) {
            byte ^= 0xff;
            EXPECT_EQ(std::string(*capability), text);
        }
    }
}

}  // namespace
