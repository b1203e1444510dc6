// One media line: defaults, deep copies, partial equality, searches, the mute test and the log
// text. order_test.cpp covers the order in which a media touches what it owns.

#include "qova/media.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <typeinfo>

#include "allocations.h"
#include "building_blocks.h"
#include "derived.h"
#include "describe.h"
#include "equality.h"
#include "rows.h"

namespace {

using Media = QOVA_Media;
using Owned = std::unique_ptr<Media>;

TEST(MediaDefaults, AreAcceptedAndUnspecified) {
    EXPECT_EQ(describe(*Owned(new Media)),
              "QOVA_Media mediaStatus=1 mediaType=0 bsnd=1 brcv=1 sndPort=0 rcvPort=0 sndPort2=0"
              " rcvPort2=0 cryptoCount=0\n"
              "address: IPAddress 0.0.0.0\n"
              "amrwbParam: " +
                  describe(Sdp::Sdp_Amrwb_Param()) + "\nopusParam: " +
                  describe(Sdp::Sdp_Opus_Param()) + "\nattributes: 0\ncryptos: 0");
}

TEST(MediaDefaults, HaveTheirOwnAddress) {
    delete new Media;
    EXPECT_EQ(IPAddress::IpAddressAny.ToString(), "0.0.0.0");
    EXPECT_NE(Media().address, static_cast<const INetAddress*>(&IPAddress::IpAddressAny));
}

// ---- A change to each field of a full media: one table for copies and for equality ----

constexpr Change<Media> compared_fields[] = {
    {"mediaStatus", flip_highest_bit<&Media::mediaStatus>},
    {"mediaType", flip_highest_bit<&Media::mediaType>},
    {"address", [](Media& m) { set_address(m, "10.0.0.2"); }},
    {"bsnd", flip_highest_bit<&Media::bsnd>},
    {"brcv", flip_highest_bit<&Media::brcv>},
    {"sndPort", flip_highest_bit<&Media::sndPort>},
    {"rcvPort", flip_highest_bit<&Media::rcvPort>},
    {"sndPort2", flip_highest_bit<&Media::sndPort2>},
    {"rcvPort2", flip_highest_bit<&Media::rcvPort2>},
    {"cryptoCount", flip_highest_bit<&Media::cryptoCount>},
    {"firstAttribute", [](Media& m) { m.find(CODEC_G711_ULAW)->framing = 21; }},
    {"laterAttribute", [](Media& m) { m.find(FT_T38_UDPTL)->errCorr = 2; }},
    {"orderOfAttributes", [](Media& m) { m.attributes.reverse(); }},
    {"cryptoLine", [](Media& m) { m.cryptos.front()->tag = 9; }},
};

constexpr Change<Media> fields_left_out[] = {
    {"statusOfAnAttribute", [](Media& m) { m.attributes.front()->status = Media::MS_REJECTED; }},
    {"attributeType", [](Media& m) { m.attributes.front()->attributeType = Media::AT_NIL; }},
    {"keyMaterial", [](Media& m) { m.cryptos.front()->keys.front().key[0] ^= 1; }},
    {"lengthOfTheAttributes", [](Media& m) { append_audio(m, CODEC_G729); }},
    {"lengthOfTheCryptoLines", [](Media& m) { append_crypto(m, 3); }},
};

// ---- Copies ----

// The library never makes media with null pointers, but it frees such media.
void put_nulls(Media& media) {
    drop_parameters(media);
    qova::replace(media.address, std::unique_ptr<INetAddress>());
    media.attributes.push_back(nullptr);
    media.cryptos.push_back(nullptr);
}

void leave(Media& /*media*/) {}

template <void (*prepare)(Media& target)>
Owned assign(const Media& source) {
    auto target = std::make_unique<Media>();
    prepare(*target);
    EXPECT_EQ(&(*target = source), target.get());
    return target;
}

constexpr CopyPath<Media> paths[] = {
    {"Constructor", [](const Media& source) { return std::make_unique<Media>(source); }},
    {"Clone", [](const Media& source) { return Owned(source.clone()); }},
    {"AssignmentToADefault", assign<leave>},
    {"AssignmentToAFull", assign<fill>},
    {"AssignmentToNullPointers", assign<put_nulls>},
};

class MediaCopy : public testing::TestWithParam<CopyPath<Media>> {
protected:
    static Owned copy(const Media& source) { return GetParam().copy(source); }

    Owned source = full<Media>();
    const std::string full_description = describe(*source);
};
INSTANTIATE_TEST_SUITE_P(By, MediaCopy, testing::ValuesIn(paths), name_of_row);

TEST_P(MediaCopy, HasEveryMember) {
    EXPECT_EQ(describe(*copy(*source)), full_description);
    EXPECT_EQ(describe(*source), full_description);
}

TEST_P(MediaCopy, HasTheDefaults) {
    EXPECT_EQ(describe(*copy(Media())), describe(Media()));
}

// Detects a member that is copied from its neighbour.
TEST_P(MediaCopy, HasEachChangedField) {
    for (const Change<Media>& change : compared_fields) {
        const Owned changed = full<Media>();
        change.apply(*changed);
        EXPECT_EQ(describe(*copy(*changed)), describe(*changed)) << change.name;
    }
}

void scramble(Media& media) {
    media.sndPort = 1;
    set_address(media, "192.0.2.1");
    media.amrwbParam->modeSet.clear();
    media.opusParam->maxPtime = 1;
    media.find(CODEC_G711_ULAW)->framing = 99;
    qova::erase(media.attributes, media.attributes.begin());
    media.cryptos.front()->keys.clear();
}

TEST_P(MediaCopy, IsIndependentOfItsSource) {
    const Owned result = copy(*source);
    scramble(*source);
    EXPECT_EQ(describe(*result), full_description);
    source.reset();
    EXPECT_EQ(describe(*result), full_description);
}

TEST_P(MediaCopy, LeavesItsSourceUnchanged) {
    Owned result = copy(*source);
    scramble(*result);
    result.reset();
    EXPECT_EQ(describe(*source), full_description);
}

TEST_P(MediaCopy, IsPlainWithoutACloneOverride) {
    EXPECT_EQ(describe(*copy(*full<WithoutClone<Media>>())), full_description);
}

TEST_P(MediaCopy, KeepsTheClassesOfItsElements) {
    fill(qova::append<Derived<QOVA_VideoAttribute>>(source->attributes));
    qova::append<OwnAttribute>(source->attributes);
    fill(qova::append<Derived<QOVA_Crypto>>(source->cryptos));
    EXPECT_EQ(describe(*copy(*source)), describe(*source));
}

TEST(MediaAssignment, ToItselfDoesNothing) {
    const Owned media = full<Media>();
    const std::string before = describe(*media, PLACES);
    const Media& same = *media;
    EXPECT_EQ(&(*media = same), media.get());
    EXPECT_EQ(describe(*media, PLACES), before);
}

TEST(MediaDestructor, AcceptsNullPointers) {
    Media media;
    put_nulls(media);
}

// ---- Equality. Parameter objects are compared by identity, so most media here have none ----

class MediaField : public testing::TestWithParam<Change<Media>> {
protected:
    MediaField() {
        drop_parameters(*a);
        drop_parameters(*b);
    }

    const Owned a = full<Media>();
    const Owned b = full<Media>();
};

class ComparedField : public MediaField {};

TEST_P(ComparedField, MakesMediaUnequal) {
    expect_equal(*a, *b);
    GetParam().apply(*b);
    expect_unequal(*a, *b);
}
INSTANTIATE_TEST_SUITE_P(MediaEquality, ComparedField, testing::ValuesIn(compared_fields),
                         name_of_row);

class FieldLeftOut : public MediaField {};

TEST_P(FieldLeftOut, LeavesMediaEqual) {
    GetParam().apply(*b);
    expect_equal(*a, *b);
}
INSTANTIATE_TEST_SUITE_P(MediaEquality, FieldLeftOut, testing::ValuesIn(fields_left_out),
                         name_of_row);

class MediaEquality : public testing::Test {
protected:
    MediaEquality() {
        drop_parameters(a);
        drop_parameters(b);
    }

    Media a;
    Media b;
};

TEST(MediaEqualityByIdentity, EqualsItselfNotACopy) {
    const Owned media = full<Media>();
    expect_equal(*media, *media);
    const Media copy(*media);
    expect_unequal(*media, copy);
}

TEST_F(MediaEquality, ComparesParametersByIdentity) {
    Sdp::Sdp_Amrwb_Param amrwb;
    Sdp::Sdp_Opus_Param opus;
    a.amrwbParam = b.amrwbParam = &amrwb;
    a.opusParam = b.opusParam = &opus;
    expect_equal(a, b);

    Sdp::Sdp_Amrwb_Param same_amrwb;
    b.amrwbParam = &same_amrwb;
    expect_unequal(a, b);
    b.amrwbParam = &amrwb;

    Sdp::Sdp_Opus_Param same_opus;
    b.opusParam = &same_opus;
    expect_unequal(a, b);

    a.amrwbParam = b.amrwbParam = nullptr;
    a.opusParam = b.opusParam = nullptr;
}

TEST_F(MediaEquality, ComparesAddressesNotSpellings) {
    set_address(a, "2001:db8::1");
    set_address(b, "2001:0DB8:0:0:0:0:0:1");
    expect_equal(a, b);
}

TEST_F(MediaEquality, UsesTheWholeAddressText) {
    struct Exact : OwnAddress {
        using OwnAddress::OwnAddress;
        bool IsEqual(const std::string& other) const override { return other == text; }
    };
    qova::replace(a.address, std::make_unique<Exact>(std::string("a\0b", 3)));
    qova::replace(b.address, std::make_unique<Exact>(std::string("a\0b", 3)));
    expect_equal(a, b);
}

TEST_F(MediaEquality, IgnoresExtraAttributes) {
    append_audio(a, CODEC_G711_ALAW);
    append_fax(a, FT_T38_TCP);
    expect_equal(a, b);
    append_audio(b, CODEC_G711_ALAW);
    expect_equal(a, b);
    append_audio(b, CODEC_G723);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, IgnoresExtraCryptoLines) {
    append_crypto(a, 1);
    append_crypto(a, 2);
    expect_equal(a, b);
    append_crypto(b, 1);
    expect_equal(a, b);
    append_crypto(b, 3);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, ComparesBothListsSeparately) {
    append_audio(a, CODEC_G711_ALAW);
    append_crypto(a, 1);
    append_crypto(b, 2);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, CanBeFalseForItself) {
    qova::append<OwnAttribute>(a.attributes);
    EXPECT_FALSE(a == a);
}

// Only the line on the right must be exactly a QOVA_Crypto.
TEST_F(MediaEquality, IsAsymmetricWithDerivedLines) {
    qova::append<Derived<QOVA_Crypto>>(a.cryptos);
    append_crypto(b, 0);
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(b == a);
}

// ---- Searches ----

class MediaSearch : public testing::Test {
protected:
    Media media;
};

TEST_F(MediaSearch, FindsNothingInAnEmptyList) {
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
    EXPECT_EQ(media.find_mf(CODEC_NIL), nullptr);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
    EXPECT_EQ(media.find(Media::AT_NIL, Media::MS_UNKNOWN), nullptr);
}

TEST_F(MediaSearch, SeparatesCodecFromToneCodec) {
    const auto& g729 = append_audio(media, CODEC_G729, CODEC_G711_ALAW);
    const auto& alaw = append_audio(media, CODEC_G711_ALAW, payload_type(101));
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &alaw);
    EXPECT_EQ(media.find_mf(CODEC_G711_ALAW), &g729);
    EXPECT_EQ(media.find(payload_type(101)), nullptr);
    EXPECT_EQ(media.find_mf(payload_type(101)), &alaw);
    EXPECT_EQ(media.find_mf(CODEC_G729), nullptr);
}

TEST_F(MediaSearch, FindsValuesWithoutEnumerator) {
    append_audio(media, CODEC_G729, CODEC_G723);
    const auto& nil = append_audio(media, CODEC_NIL, CODEC_NIL);
    const auto& negative = append_audio(media, payload_type(-5), payload_type(-6));
    EXPECT_EQ(media.find(CODEC_NIL), &nil);
    EXPECT_EQ(media.find(payload_type(-5)), &negative);
    EXPECT_EQ(media.find_mf(payload_type(-6)), &negative);
}

TEST_F(MediaSearch, ByTransportFindsAFaxAttribute) {
    append_fax(media, FT_T38_TCP);
    const auto& udptl = append_fax(media, FT_T38_UDPTL);
    EXPECT_EQ(media.find(FT_T38_UDPTL), &udptl);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
}

TEST_F(MediaSearch, ReturnsTheFirstMatch) {
    append_audio(media, CODEC_OPUS);
    auto& first = append_audio(media, CODEC_G729, CODEC_G722);
    append_audio(media, CODEC_G729, CODEC_G722);
    auto& first_fax = append_fax(media, FT_T38_TCP);
    append_fax(media, FT_T38_TCP);
    first.attributeType = first_fax.attributeType = Media::AT_AUDIO;
    EXPECT_EQ(media.find(CODEC_G729), &first);
    EXPECT_EQ(media.find_mf(CODEC_G722), &first);
    EXPECT_EQ(media.find(FT_T38_TCP), &first_fax);
    EXPECT_EQ(media.find(Media::AT_AUDIO, Media::MS_UNKNOWN), &first);
}

// The numbers agree; the classes do not.
TEST_F(MediaSearch, SkipsNullElementsAndOtherClasses) {
    media.attributes.push_back(nullptr);
    qova::append<QOVA_DataAttribute>(media.attributes).type = 1;
    qova::append<OwnAttribute>(media.attributes);
    const auto& fax = append_fax(media, FT_T38_UDPTL);
    media.attributes.push_back(nullptr);
    const auto& audio = append_audio(media, CODEC_G711_ALAW, CODEC_G711_ULAW);
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G711_ULAW), &audio);
    EXPECT_EQ(media.find(FT_T38_UDPTL), &fax);
    EXPECT_EQ(media.find(FT_T38_TCP), nullptr);
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
}

TEST_F(MediaSearch, FindsDerivedClassesInListOrder) {
    auto& fax = qova::append<Derived<QOVA_FaxAttribute>>(media.attributes);
    fax.transport = FT_T38_TCP;
    auto& audio = qova::append<Derived<QOVA_AudioAttribute>>(media.attributes);
    audio.codec = CODEC_OPUS;
    audio.mf = CODEC_G722;
    append_audio(media, CODEC_OPUS, CODEC_G722);
    EXPECT_EQ(media.find(CODEC_OPUS), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G722), &audio);
    EXPECT_EQ(media.find(FT_T38_TCP), &fax);
    EXPECT_EQ(media.find(FT_T38_UDPTL), nullptr);
}

TEST_F(MediaSearch, FindsOnlyAPublicSiblingBase) {
    struct Private : OwnAttribute, private QOVA_AudioAttribute {};
    struct Public : OwnAttribute, QOVA_AudioAttribute {};
    qova::append(media.attributes, std::unique_ptr<OwnAttribute>(new Private));
    const OwnAttribute& own =
        qova::append(media.attributes, std::unique_ptr<OwnAttribute>(new Public));
    EXPECT_EQ(media.find(CODEC_NIL), &dynamic_cast<const QOVA_AudioAttribute&>(own));
}

// The type is the field attributeType, not the class.
TEST_F(MediaSearch, ByTypeAndStatusRequiresBoth) {
    auto& rejected = append_fax(media, FT_T38_UDPTL);
    rejected.attributeType = Media::AT_AUDIO;
    rejected.status = Media::MS_REJECTED;
    auto& other_type = append_audio(media, CODEC_G729);
    other_type.attributeType = Media::AT_FAX;
    other_type.status = Media::MS_ACCEPTED;
    auto& accepted = append_audio(media, CODEC_G729);
    accepted.attributeType = Media::AT_AUDIO;
    accepted.status = Media::MS_ACCEPTED;
    EXPECT_EQ(media.find(Media::AT_AUDIO, Media::MS_ACCEPTED), &accepted);
    EXPECT_EQ(media.find(Media::AT_AUDIO, Media::MS_REJECTED), &rejected);
    EXPECT_EQ(media.find(Media::AT_AUDIO, Media::MS_MODIFIED), nullptr);
    EXPECT_EQ(media.find(Media::AT_VIDEO, Media::MS_ACCEPTED), nullptr);
}

TEST_F(MediaSearch, ByTypeAndUnknownMatchesAnyStatus) {
    auto& video = qova::append<QOVA_VideoAttribute>(media.attributes);
    video.attributeType = Media::AT_VIDEO;
    video.status = Media::MS_REJECTED;
    EXPECT_EQ(media.find(Media::AT_VIDEO, Media::MS_UNKNOWN), &video);
    // But an attribute of unknown status matches no other status.
    video.status = Media::MS_UNKNOWN;
    EXPECT_EQ(media.find(Media::AT_VIDEO, Media::MS_ACCEPTED), nullptr);
}

// ---- Mute test ----

TEST(MuteMedia, HasTheAnyAddressOrNoReceivePort) {
    Media media;
    EXPECT_TRUE(media.isMute());
    set_address(media, "10.0.0.1");
    EXPECT_TRUE(media.isMute());
    media.rcvPort = 5000;
    EXPECT_FALSE(media.isMute());
    set_address(media, "::");
    EXPECT_TRUE(media.isMute());
}

TEST(MuteMedia, IgnoresOtherPortsAndDirections) {
    const Owned media = full<Media>();
    media->sndPort = media->sndPort2 = media->rcvPort2 = 0;
    media->bsnd = media->brcv = false;
    EXPECT_FALSE(media->isMute());
}

// ---- Log text ----

const std::string header = "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n";

TEST(MediaText, FullMedia) {
    EXPECT_EQ(std::string(*full<Media>()),
              "\t-> media(Audio)/Modified @2001:db8:1111:2222:3333:4444:5555:6666"
              "/snd=4000~4001/rcv=5000~5001/bsnd=0/brcv=1"
              " AMR-WB(payload-type=97; octet-align=1; mode-set=0,1,2; mode-change-period=3; "
              "mode-change-capability=4; mode-change-neighbor=5; crc=6; robust-sorting=7; "
              "interleaving=8; channels=9; max-red=10)"
              " opus(maxplaybackrate=16000; sprop-maxcapturerate=48000; maxaveragebitrate=20000; "
              "stereo=1; cbr=1; useinbandfec=1; usedtx=1; maxptime=60; sprop-stereo=1)\n"
              "\t   Attributes :"
              "\t\t -> G711ulaw / Modified / framing=20 / vad=1 / echo=1 / mxFraming=40 / MF=101\n"
              "\t\t -> fax / transport=T38udptl / red=3 / depth=4 / mxRate=14400\n"
              "\t\t    rateMgt=LocalTCF / fillBit=1 / transMMR=1 / transJBIG=1\n"
              "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=5\n"
              "\t\t -> video : not implemented\n"
              "\t\t -> Data / type=NIL\n"
              "\t   Crypto attributes (5) :\n"
              "\t\ttag=4294967295, algo=AES_CM_128_HMAC_SHA1_80"
              ", key=(lifetime=1048576 / mki=10000000 / mkiSize=1)"
              ", key=(lifetime=2097152 / mki=20000000 / mkiSize=1)"
              ", key=(lifetime=4294967295 / mki=30000000 / mkiSize=1)\n");
}

TEST(MediaText, HasBothHeadersOnOneLine) {
    EXPECT_EQ(std::string(Media()), header + "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, ShowsCryptoCountNotListLength) {
    Media media;
    media.cryptoCount = 4294967295U;
    append_crypto(media, 7);
    append_crypto(media, 8);
    EXPECT_EQ(std::string(media), header +
                                      "\t   Attributes :\t   Crypto attributes (4294967295) :\n"
                                      "\t\ttag=7, algo=NIL\n"
                                      "\t\ttag=8, algo=NIL\n");
}

TEST(MediaText, PrintsPortsAndDirections) {
    Media media;
    media.brcv = false;
    media.sndPort = 65535;
    media.sndPort2 = 65534;
    media.rcvPort = 32768;
    media.rcvPort2 = 40000;
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=65535~65534/rcv=32768~40000/bsnd=1/brcv=0\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, HasTheWholeTextOfTheAddress) {
    for (const std::string& text :
         {std::string("a\0b", 3), std::string(), std::string(5000, 'x')}) {
        Media media;
        qova::replace(media.address, std::make_unique<OwnAddress>(text));
        EXPECT_EQ(std::string(media), "\t-> media(Nil)/Accepted @" + text +
                                          "/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
                                          "\t   Attributes :\t   Crypto attributes (0) :\n");
    }
}

TEST(MediaText, HasTheWholeTextOfADerivedAttribute) {
    Media media;
    qova::append<OwnText<QOVA_AudioAttribute>>(media.attributes);
    qova::append<OwnText<QOVA_VideoAttribute>>(media.attributes);
    qova::append<OwnText<QOVA_FaxAttribute>>(media.attributes);
    qova::append<OwnText<QOVA_DataAttribute>>(media.attributes);
    qova::append<OwnAttribute>(media.attributes).text = std::string("a\0b", 3);
    qova::append<WithoutClone<QOVA_VideoAttribute>>(media.attributes);
    EXPECT_EQ(std::string(media), header + "\t   Attributes :" + own_text + own_text + own_text +
                                      own_text + std::string("a\0b", 3) +
                                      "\t\t -> video : not implemented\n"
                                      "\t   Crypto attributes (0) :\n");
}

// Unlike an attribute's, the conversion of a crypto line is not virtual.
TEST(MediaText, HasTheBaseTextOfADerivedCryptoLine) {
    Media media;
    qova::append<OwnText<QOVA_Crypto>>(media.cryptos);
    EXPECT_EQ(std::string(media), header +
                                      "\t   Attributes :\t   Crypto attributes (0) :\n"
                                      "\t\ttag=0, algo=NIL\n");
}

}  // namespace
