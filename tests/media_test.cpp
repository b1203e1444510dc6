// One media line: defaults, deep copies, partial equality, searches, the mute test and the log
// text. The order in which a media touches what it owns is the business of order_test.cpp.

#include "qova/media.h"

#include <gtest/gtest.h>

#include <cstring>
#include <list>
#include <memory>
#include <new>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "allocations.h"
#include "equality.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/crypto.h"
#include "rows.h"
#include "socket/address.h"

namespace {

template <typename... Arguments>
using Found = decltype(std::declval<const QOVA_Media&>().find(std::declval<Arguments>()...));
static_assert(std::is_same_v<Found<QOVA_Codec>, QOVA_AudioAttribute*>);
static_assert(std::is_same_v<Found<QOVA_FaxTransport>, QOVA_FaxAttribute*>);
static_assert(std::is_same_v<Found<QOVA_Media::e_AttributeType, QOVA_Media::e_MediaStatus>,
                             QOVA_MediaAttribute*>);
static_assert(std::is_same_v<decltype(&QOVA_Media::find_mf),
                             QOVA_AudioAttribute* (QOVA_Media::*)(QOVA_Codec) const>);
static_assert(std::has_virtual_destructor_v<QOVA_Media>);

// ---- Building blocks ----

// Appends to a media a new object, whose fields the caller then sets.
template <typename Attribute>
Attribute& append(QOVA_Media& media) {
    media.attributes.push_back(nullptr);
    auto* const attribute = new Attribute;
    media.attributes.back() = attribute;
    return *attribute;
}

QOVA_AudioAttribute& append_audio(QOVA_Media& media, QOVA_Codec codec, QOVA_Codec mf = CODEC_NIL) {
    auto& audio = append<QOVA_AudioAttribute>(media);
    audio.codec = codec;
    audio.mf = mf;
    return audio;
}

QOVA_FaxAttribute& append_fax(QOVA_Media& media, QOVA_FaxTransport transport) {
    auto& fax = append<QOVA_FaxAttribute>(media);
    fax.transport = transport;
    return fax;
}

QOVA_Crypto& append_crypto(QOVA_Media& media, unsigned int tag) {
    media.cryptos.push_back(nullptr);
    auto* const crypto = new QOVA_Crypto;
    media.cryptos.back() = crypto;
    crypto->tag = tag;
    return *crypto;
}

void append_key(QOVA_Crypto& crypto, unsigned int lifetime, unsigned char material) {
    QOVA_CryptoKey key = {};
    key.lifetime = lifetime;
    key.mkiSize = 2;
    key.mki[0] = 12;
    key.mki[1] = 3;
    std::memset(key.key, material, sizeof key.key);
    crypto.keys.push_back(key);
}

void set_address(QOVA_Media& media, const char* text) {
    IPAddress address;
    ASSERT_TRUE(IPAddress::Parse(text, address));
    INetAddress* const copy = address.Copy();
    delete media.address;
    media.address = copy;
}

// Every member differs from its default, and from every other member of its type.
void fill(QOVA_Media& media) {
    media.mediaStatus = QOVA_Media::MS_MODIFIED;
    media.mediaType = QOVA_Media::MT_AUDIO;
    auto& audio = append_audio(media, CODEC_G711_ALAW, static_cast<QOVA_Codec>(101));
    audio.status = QOVA_Media::MS_ACCEPTED;
    audio.attributeType = QOVA_Media::AT_AUDIO;
    audio.framing = 20;
    audio.echo = true;
    audio.mxFraming = 40;
    auto& video = append<QOVA_VideoAttribute>(media);
    video.status = QOVA_Media::MS_REJECTED;
    video.attributeType = QOVA_Media::AT_VIDEO;
    auto& fax = append_fax(media, FT_T38_UDPTL);
    fax.status = QOVA_Media::MS_MODIFIED;
    fax.attributeType = QOVA_Media::AT_FAX;
    fax.red = 3;
    fax.mxRate = 14400;
    fax.rateMgt = RM_TRFTCF;
    fax.mxBuffer = 2000;
    fax.mxDgram = 512;
    fax.errCorr = 1;
    auto& data = append<QOVA_DataAttribute>(media);
    data.status = QOVA_Media::MS_ACCEPTED;
    data.attributeType = QOVA_Media::AT_DATA;
    data.type = 7;
    set_address(media, "10.0.0.1");
    media.bsnd = false;
    media.brcv = true;
    media.sndPort = 4000;
    media.rcvPort = 5000;
    media.sndPort2 = 4001;
    media.rcvPort2 = 5001;
    media.amrwbParam->octetAlign = 1;
    media.amrwbParam->modeSet = {0, 2};
    media.amrwbParam->modeChangePeriod = 3;
    media.amrwbParam->modeChangeCapability = 4;
    media.amrwbParam->modeChangeNeighbor = 5;
    media.amrwbParam->crc = 6;
    media.amrwbParam->robustSorting = 7;
    media.amrwbParam->interleaving = 8;
    media.amrwbParam->channels = 9;
    media.amrwbParam->maxRed = 10;
    media.amrwbParam->payloadType = 97;
    media.opusParam->maxPlaybackRate = 16000;
    media.opusParam->spropMaxCaptureRate = 48000;
    media.opusParam->maxAverageBitrate = 20000;
    media.opusParam->stereo = true;
    media.opusParam->cbr = false;
    media.opusParam->useInbandFec = true;
    media.opusParam->useDtx = false;
    media.opusParam->maxPtime = 60;
    media.opusParam->spropStereo = true;
    media.cryptoCount = 5;
    auto& two_keys = append_crypto(media, 1);
    two_keys.algo = CS_AES_CM_128_HMAC_SHA1_80;
    append_key(two_keys, 1048576, 0xA1);
    append_key(two_keys, 0, 0xA2);
    append_crypto(media, 2).algo = CS_AES_CM_128_HMAC_SHA1_32;
}

// Differs in every member from what fill() makes.
void fill_otherwise(QOVA_Media& media) {
    media.mediaStatus = QOVA_Media::MS_REJECTED;
    media.mediaType = QOVA_Media::MT_FAX;
    append_fax(media, FT_T38_TCP).errCorr = 9;
    append_audio(media, CODEC_OPUS);
    set_address(media, "2001:db8::1");
    media.bsnd = true;
    media.brcv = false;
    media.sndPort = 14000;
    media.rcvPort = 15000;
    media.sndPort2 = 14001;
    media.rcvPort2 = 15001;
    media.amrwbParam->octetAlign = 0;
    media.amrwbParam->modeSet = {1, 2, 3};
    media.amrwbParam->modeChangePeriod = 23;
    media.amrwbParam->modeChangeCapability = 24;
    media.amrwbParam->modeChangeNeighbor = 25;
    media.amrwbParam->crc = 26;
    media.amrwbParam->robustSorting = 27;
    media.amrwbParam->interleaving = 28;
    media.amrwbParam->channels = 29;
    media.amrwbParam->maxRed = 30;
    media.amrwbParam->payloadType = 98;
    media.opusParam->maxPlaybackRate = 8000;
    media.opusParam->spropMaxCaptureRate = 24000;
    media.opusParam->maxAverageBitrate = 10000;
    media.opusParam->stereo = false;
    media.opusParam->cbr = true;
    media.opusParam->useInbandFec = false;
    media.opusParam->useDtx = true;
    media.opusParam->maxPtime = 20;
    media.opusParam->spropStereo = false;
    media.cryptoCount = 6;
    append_key(append_crypto(media, 3), 17, 0xB1);
}

const std::string text_of_filled =
    "\t-> media(Audio)/Modified @10.0.0.1/snd=4000~4001/rcv=5000~5001/bsnd=0/brcv=1"
    " AMR-WB(payload-type=97; octet-align=1; mode-set=0,2; mode-change-period=3; "
    "mode-change-capability=4; mode-change-neighbor=5; crc=6; robust-sorting=7; interleaving=8; "
    "channels=9; max-red=10)"
    " opus(maxplaybackrate=16000; sprop-maxcapturerate=48000; maxaveragebitrate=20000; stereo=1; "
    "useinbandfec=1; maxptime=60; sprop-stereo=1)\n"
    "\t   Attributes :"
    "\t\t -> G711alaw / Accepted / framing=20 / vad=0 / echo=1 / mxFraming=40 / MF=101\n"
    "\t\t -> video : not implemented\n"
    "\t\t -> fax / transport=T38udptl / red=3 / depth=0 / mxRate=14400\n"
    "\t\t    rateMgt=TRFTCF / fillBit=0 / transMMR=0 / transJBIG=0\n"
    "\t\t    mxBuffer=2000/ mxDgram=512 / errCorr=1\n"
    "\t\t -> Data / type=NIL\n"
    "\t   Crypto attributes (5) :\n"
    "\t\ttag=1, algo=AES_CM_128_HMAC_SHA1_80, key=(lifetime=1048576 / mki=123000000 / mkiSize=2)"
    ", key=(lifetime=0 / mki=123000000 / mkiSize=2)\n"
    "\t\ttag=2, algo=AES_CM_128_HMAC_SHA1_32\n";

const std::string text_of_default =
    "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
    "\t   Attributes :"
    "\t   Crypto attributes (0) :\n";

// ---- Defaults ----

TEST(DefaultMedia, IsAnAcceptedLineOfNoKind) {
    const QOVA_Media media;
    EXPECT_EQ(media.mediaStatus, QOVA_Media::MS_ACCEPTED);
    EXPECT_EQ(media.mediaType, QOVA_Media::MT_NIL);
}

TEST(DefaultMedia, HasBothDirectionsAndNoPorts) {
    const QOVA_Media media;
    EXPECT_TRUE(media.bsnd);
    EXPECT_TRUE(media.brcv);
    EXPECT_EQ(media.sndPort, 0);
    EXPECT_EQ(media.rcvPort, 0);
    EXPECT_EQ(media.sndPort2, 0);
    EXPECT_EQ(media.rcvPort2, 0);
}

TEST(DefaultMedia, HasEmptyLists) {
    const QOVA_Media media;
    EXPECT_TRUE(media.attributes.empty());
    EXPECT_TRUE(media.cryptos.empty());
    EXPECT_EQ(media.cryptoCount, 0U);
}

TEST(DefaultMedia, HasAnAnyAddressOfItsOwn) {
    const auto media = std::make_unique<QOVA_Media>();
    const QOVA_Media other;
    ASSERT_NE(media->address, nullptr);
    EXPECT_NE(media->address, other.address);
    EXPECT_NE(media->address, static_cast<const INetAddress*>(&IPAddress::IpAddressAny));
    const INetAddress& address = *media->address;
    EXPECT_EQ(typeid(address), typeid(IPAddress));
    EXPECT_EQ(media->address->ToString(), IPAddress::IpAddressAny.ToString());
    EXPECT_NE(media->address->IsAny(), 0);
}

TEST(DefaultMedia, LeavesTheStaticAddressUntouchedWhenItGoes) {
    const std::string before = IPAddress::IpAddressAny.ToString();
    { const QOVA_Media media; }
    EXPECT_EQ(IPAddress::IpAddressAny.ToString(), before);
    EXPECT_NE(IPAddress::IpAddressAny.IsAny(), 0);
}

TEST(DefaultMedia, HasParametersOfItsOwnWithEveryOneAbsent) {
    const QOVA_Media media;
    const QOVA_Media other;
    ASSERT_NE(media.amrwbParam, nullptr);
    ASSERT_NE(media.opusParam, nullptr);
    EXPECT_NE(media.amrwbParam, other.amrwbParam);
    EXPECT_NE(media.opusParam, other.opusParam);

    const Sdp::Sdp_Amrwb_Param& amrwb = *media.amrwbParam;
    EXPECT_EQ(amrwb.octetAlign, 255);
    EXPECT_TRUE(amrwb.modeSet.empty());
    EXPECT_EQ(amrwb.modeChangePeriod, 255);
    EXPECT_EQ(amrwb.modeChangeCapability, 255);
    EXPECT_EQ(amrwb.modeChangeNeighbor, 255);
    EXPECT_EQ(amrwb.crc, 255);
    EXPECT_EQ(amrwb.robustSorting, 255);
    EXPECT_EQ(amrwb.interleaving, 255);
    EXPECT_EQ(amrwb.channels, 255);
    EXPECT_EQ(amrwb.maxRed, 255);
    EXPECT_EQ(amrwb.payloadType, 0);

    const Sdp::Sdp_Opus_Param& opus = *media.opusParam;
    EXPECT_EQ(opus.maxPlaybackRate, 0);
    EXPECT_EQ(opus.spropMaxCaptureRate, 0);
    EXPECT_EQ(opus.maxAverageBitrate, 0);
    EXPECT_FALSE(opus.stereo);
    EXPECT_FALSE(opus.cbr);
    EXPECT_FALSE(opus.useInbandFec);
    EXPECT_FALSE(opus.useDtx);
    EXPECT_EQ(opus.maxPtime, 0);
    EXPECT_FALSE(opus.spropStereo);
}

TEST(DefaultMedia, IsMuteForItsPortWhateverItsAddress) {
    QOVA_Media media;
    EXPECT_TRUE(media.isMute());
    set_address(media, "10.0.0.1");
    EXPECT_TRUE(media.isMute());
}

// ---- Copies ----

void expect_copied(const Sdp::Sdp_Amrwb_Param& copy, const Sdp::Sdp_Amrwb_Param& source) {
    EXPECT_NE(&copy, &source);
    EXPECT_EQ(copy.octetAlign, source.octetAlign);
    EXPECT_EQ(copy.modeSet, source.modeSet);
    EXPECT_EQ(copy.modeChangePeriod, source.modeChangePeriod);
    EXPECT_EQ(copy.modeChangeCapability, source.modeChangeCapability);
    EXPECT_EQ(copy.modeChangeNeighbor, source.modeChangeNeighbor);
    EXPECT_EQ(copy.crc, source.crc);
    EXPECT_EQ(copy.robustSorting, source.robustSorting);
    EXPECT_EQ(copy.interleaving, source.interleaving);
    EXPECT_EQ(copy.channels, source.channels);
    EXPECT_EQ(copy.maxRed, source.maxRed);
    EXPECT_EQ(copy.payloadType, source.payloadType);
}

void expect_copied(const Sdp::Sdp_Opus_Param& copy, const Sdp::Sdp_Opus_Param& source) {
    EXPECT_NE(&copy, &source);
    EXPECT_EQ(copy.maxPlaybackRate, source.maxPlaybackRate);
    EXPECT_EQ(copy.spropMaxCaptureRate, source.spropMaxCaptureRate);
    EXPECT_EQ(copy.maxAverageBitrate, source.maxAverageBitrate);
    EXPECT_EQ(copy.stereo, source.stereo);
    EXPECT_EQ(copy.cbr, source.cbr);
    EXPECT_EQ(copy.useInbandFec, source.useInbandFec);
    EXPECT_EQ(copy.useDtx, source.useDtx);
    EXPECT_EQ(copy.maxPtime, source.maxPtime);
    EXPECT_EQ(copy.spropStereo, source.spropStereo);
}

void expect_copied(const QOVA_MediaAttribute& copy, const QOVA_MediaAttribute& source) {
    EXPECT_NE(&copy, &source);
    EXPECT_EQ(typeid(copy), typeid(source));
    EXPECT_EQ(copy.status, source.status);
    EXPECT_EQ(copy.attributeType, source.attributeType);
    expect_equal(copy, source);
}

void expect_copied(const QOVA_Crypto& copy, const QOVA_Crypto& source) {
    EXPECT_NE(&copy, &source);
    EXPECT_EQ(typeid(copy), typeid(source));
    EXPECT_EQ(copy.tag, source.tag);
    EXPECT_EQ(copy.algo, source.algo);
    ASSERT_EQ(copy.keys.size(), source.keys.size());
    auto copied = copy.keys.begin();
    for (const QOVA_CryptoKey& key : source.keys) {
        EXPECT_NE(&*copied, &key);
        EXPECT_EQ(copied->lifetime, key.lifetime);
        EXPECT_EQ(copied->mkiSize, key.mkiSize);
        EXPECT_EQ(std::memcmp(copied->mki, key.mki, sizeof key.mki), 0);
        EXPECT_EQ(std::memcmp(copied->key, key.key, sizeof key.key), 0);
        ++copied;
    }
}

template <typename Element>
void expect_copied(const std::list<Element*>& copies, const std::list<Element*>& sources) {
    ASSERT_EQ(copies.size(), sources.size());
    auto copied = copies.begin();
    for (const Element* const source : sources) {
        expect_copied(**copied, *source);
        ++copied;
    }
}

void expect_copied(const QOVA_Media& copy, const QOVA_Media& source) {
    EXPECT_EQ(typeid(copy), typeid(QOVA_Media));
    EXPECT_EQ(copy.mediaStatus, source.mediaStatus);
    EXPECT_EQ(copy.mediaType, source.mediaType);
    expect_copied(copy.attributes, source.attributes);
    const INetAddress& copied_address = *copy.address;
    const INetAddress& address = *source.address;
    EXPECT_NE(&copied_address, &address);
    EXPECT_EQ(typeid(copied_address), typeid(address));
    EXPECT_EQ(copy.address->ToString(), source.address->ToString());
    EXPECT_EQ(copy.bsnd, source.bsnd);
    EXPECT_EQ(copy.brcv, source.brcv);
    EXPECT_EQ(copy.sndPort, source.sndPort);
    EXPECT_EQ(copy.rcvPort, source.rcvPort);
    EXPECT_EQ(copy.sndPort2, source.sndPort2);
    EXPECT_EQ(copy.rcvPort2, source.rcvPort2);
    expect_copied(*copy.amrwbParam, *source.amrwbParam);
    expect_copied(*copy.opusParam, *source.opusParam);
    EXPECT_EQ(copy.cryptoCount, source.cryptoCount);
    expect_copied(copy.cryptos, source.cryptos);
}

std::unique_ptr<QOVA_Media> construct(const QOVA_Media& source) {
    return std::make_unique<QOVA_Media>(source);
}

std::unique_ptr<QOVA_Media> assign(const QOVA_Media& source) {
    auto target = std::make_unique<QOVA_Media>();
    fill_otherwise(*target);
    *target = source;
    return target;
}

std::unique_ptr<QOVA_Media> clone(const QOVA_Media& source) {
    return std::unique_ptr<QOVA_Media>(source.clone());
}

struct CopyPath {
    const char* name;
    std::unique_ptr<QOVA_Media> (*copy)(const QOVA_Media& source);
};

void PrintTo(const CopyPath& path, std::ostream* out) {
    *out << path.name;
}

class MediaCopy : public testing::TestWithParam<CopyPath> {
protected:
    static std::unique_ptr<QOVA_Media> copy(const QOVA_Media& source) {
        return GetParam().copy(source);
    }
};

INSTANTIATE_TEST_SUITE_P(Path, MediaCopy,
                         testing::Values(CopyPath{"Constructor", construct},
                                         CopyPath{"Assignment", assign}, CopyPath{"Clone", clone}),
                         name_of_row);

TEST_P(MediaCopy, TakesEveryMember) {
    QOVA_Media source;
    fill(source);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    expect_copied(*result, source);
}

TEST_P(MediaCopy, TakesEveryMemberOfAnotherMediaToo) {
    QOVA_Media source;
    fill_otherwise(source);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    expect_copied(*result, source);
}

TEST_P(MediaCopy, TakesTheDefaults) {
    const QOVA_Media source;
    const std::unique_ptr<QOVA_Media> result = copy(source);
    expect_copied(*result, source);
    EXPECT_EQ(std::string(*result), text_of_default);
}

TEST_P(MediaCopy, LeavesTheSourceAsItIs) {
    QOVA_Media source;
    fill(source);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    EXPECT_EQ(std::string(source), text_of_filled);
}

TEST_P(MediaCopy, DoesNotFollowItsSource) {
    QOVA_Media source;
    fill(source);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    source.mediaType = QOVA_Media::MT_DATA;
    source.sndPort = 1;
    source.cryptoCount = 99;
    set_address(source, "192.0.2.1");
    source.amrwbParam->modeSet.clear();
    source.amrwbParam->crc = 0;
    source.opusParam->maxPtime = 1;
    source.find(CODEC_G711_ALAW)->framing = 99;
    delete source.attributes.back();
    source.attributes.pop_back();
    source.cryptos.front()->keys.clear();
    source.cryptos.front()->tag = 99;
    EXPECT_EQ(std::string(*result), text_of_filled);
}

TEST_P(MediaCopy, DoesNotReachIntoItsSource) {
    QOVA_Media source;
    fill(source);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    result->mediaType = QOVA_Media::MT_DATA;
    result->sndPort = 1;
    result->cryptoCount = 99;
    set_address(*result, "192.0.2.1");
    result->amrwbParam->modeSet.clear();
    result->amrwbParam->crc = 0;
    result->opusParam->maxPtime = 1;
    result->find(CODEC_G711_ALAW)->framing = 99;
    delete result->attributes.back();
    result->attributes.pop_back();
    result->cryptos.front()->keys.clear();
    result->cryptos.front()->tag = 99;
    EXPECT_EQ(std::string(source), text_of_filled);
}

TEST_P(MediaCopy, OutlivesItsSource) {
    auto source = std::make_unique<QOVA_Media>();
    fill(*source);
    const std::unique_ptr<QOVA_Media> result = copy(*source);
    source.reset();
    EXPECT_EQ(std::string(*result), text_of_filled);
    EXPECT_EQ(result->cryptos.front()->keys.front().key[45], 0xA1);
}

TEST_P(MediaCopy, MayBeFreedBeforeItsSource) {
    QOVA_Media source;
    fill(source);
    copy(source).reset();
    EXPECT_EQ(std::string(source), text_of_filled);
}

// Copying does not look at the number of crypto lines, only at the member.
TEST_P(MediaCopy, TakesACryptoCountThatDoesNotAgreeWithTheList) {
    QOVA_Media source;
    source.cryptoCount = 4294967295U;
    EXPECT_EQ(copy(source)->cryptoCount, 4294967295U);
}

TEST_P(MediaCopy, IsAPlainMediaEvenOfADerivedOne) {
    struct Derived : QOVA_Media {};
    Derived source;
    fill(source);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    expect_copied(*result, source);
}

TEST_P(MediaCopy, KeepsTheClassOfDerivedAttributesAndCryptoLines) {
    struct Video : QOVA_VideoAttribute {
        Video* clone() const override { return new Video(*this); }
    };
    struct Crypto : QOVA_Crypto {
        Crypto* clone() const override { return new Crypto(*this); }
    };
    QOVA_Media source;
    append<Video>(source);
    source.cryptos.push_back(new Crypto);
    const std::unique_ptr<QOVA_Media> result = copy(source);
    const QOVA_MediaAttribute& attribute = *result->attributes.front();
    const QOVA_Crypto& crypto = *result->cryptos.front();
    EXPECT_EQ(typeid(attribute), typeid(Video));
    EXPECT_EQ(typeid(crypto), typeid(Crypto));
}

TEST_P(MediaCopy, LeaksNothingWhenAnAllocationFails) {
    QOVA_Media source;
    fill(source);
    for (const auto extent : {allocations::Failure::ONCE, allocations::Failure::FROM_THERE_ON}) {
        bool consumed = true;
        for (std::size_t nth = 1; consumed; ++nth) {
            const std::size_t before = allocations::live();
            std::unique_ptr<QOVA_Media> result;
            bool failed = false;
            {
                const allocations::Failure failure(nth, extent);
                try {
                    result = copy(source);
                } catch (const std::bad_alloc&) {
                    failed = true;
                }
                consumed = allocations::Failure::consumed();
            }
            ASSERT_EQ(failed, consumed) << "allocation " << nth;
            if (!failed) {
                EXPECT_GT(nth, 20U);
                expect_copied(*result, source);
            } else {
                ASSERT_EQ(allocations::live(), before) << "allocation " << nth;
            }
        }
    }
    EXPECT_EQ(std::string(source), text_of_filled);
}

TEST(MediaAssignment, ReturnsTheTarget) {
    QOVA_Media target;
    const QOVA_Media source;
    EXPECT_EQ(&(target = source), &target);
}

TEST(MediaAssignment, FreesWhatTheTargetOwned) {
    const QOVA_Media source;
    auto target = std::make_unique<QOVA_Media>();
    const std::size_t before = allocations::live();
    fill_otherwise(*target);
    *target = source;
    EXPECT_EQ(allocations::live(), before);
}

TEST(MediaAssignment, CanBeRepeated) {
    QOVA_Media first;
    fill(first);
    QOVA_Media second;
    fill_otherwise(second);
    QOVA_Media target;
    for (int i = 0; i < 3; ++i) {
        target = second;
        expect_copied(target, second);
        target = first;
        expect_copied(target, first);
    }
}

TEST(MediaAssignment, ToItselfChangesNothingAndFreesNothing) {
    QOVA_Media media;
    fill(media);
    const INetAddress* const address = media.address;
    const Sdp::Sdp_Amrwb_Param* const amrwb = media.amrwbParam;
    const Sdp::Sdp_Opus_Param* const opus = media.opusParam;
    const std::list<QOVA_MediaAttribute*> attributes = media.attributes;
    const std::list<QOVA_Crypto*> cryptos = media.cryptos;
    const std::size_t made = allocations::made();
    const std::size_t live = allocations::live();

    const QOVA_Media& same = media;
    EXPECT_EQ(&(media = same), &media);

    EXPECT_EQ(allocations::made(), made);
    EXPECT_EQ(allocations::live(), live);
    EXPECT_EQ(media.address, address);
    EXPECT_EQ(media.amrwbParam, amrwb);
    EXPECT_EQ(media.opusParam, opus);
    EXPECT_EQ(media.attributes, attributes);
    EXPECT_EQ(media.cryptos, cryptos);
    EXPECT_EQ(std::string(media), text_of_filled);
}

// Null stands nowhere in a media of the library's making, but freeing passes it over.
TEST(MediaAssignment, OverNullPointersFillsThem) {
    QOVA_Media target;
    delete target.address;
    target.address = nullptr;
    delete target.amrwbParam;
    target.amrwbParam = nullptr;
    delete target.opusParam;
    target.opusParam = nullptr;
    target.attributes.push_back(nullptr);
    append_audio(target, CODEC_G723);
    target.attributes.push_back(nullptr);
    target.cryptos.push_back(nullptr);
    append_crypto(target, 1);
    target.cryptos.push_back(nullptr);

    QOVA_Media source;
    fill(source);
    target = source;
    expect_copied(target, source);
}

TEST(MediaDestructor, PassesNullPointersOver) {
    const std::size_t before = allocations::live();
    {
        QOVA_Media media;
        delete media.address;
        media.address = nullptr;
        delete media.amrwbParam;
        media.amrwbParam = nullptr;
        delete media.opusParam;
        media.opusParam = nullptr;
        media.attributes.push_back(nullptr);
        append_audio(media, CODEC_G723);
        media.cryptos.push_back(nullptr);
        append_crypto(media, 1);
    }
    EXPECT_EQ(allocations::live(), before);
}

// Runs an assignment onto a filled target in which the n-th allocation fails, for every n, and
// hands the target to a check.
template <typename Check>
void for_every_failed_assignment(const QOVA_Media& source, Check check) {
    bool consumed = true;
    for (std::size_t nth = 1; consumed; ++nth) {
        auto target = std::make_unique<QOVA_Media>();
        fill_otherwise(*target);
        bool failed = false;
        {
            const allocations::Failure failure(nth);
            try {
                *target = source;
            } catch (const std::bad_alloc&) {
                failed = true;
            }
            consumed = allocations::Failure::consumed();
        }
        ASSERT_EQ(failed, consumed) << "allocation " << nth;
        if (failed) {
            check(std::move(target));
        } else {
            EXPECT_GT(nth, 15U) << "failures tried";
        }
    }
}

TEST(MediaAssignment, ThatFailedLeavesATargetThatCanBeDestroyed) {
    QOVA_Media source;
    fill(source);
    const std::size_t before = allocations::live();
    for_every_failed_assignment(source, [&](std::unique_ptr<QOVA_Media> target) {
        target.reset();
        EXPECT_EQ(allocations::live(), before);
    });
}

TEST(MediaAssignment, ThatFailedLeavesATargetThatCanBeAssignedAgain) {
    QOVA_Media source;
    fill(source);
    for_every_failed_assignment(source, [&](std::unique_ptr<QOVA_Media> target) {
        *target = source;
        expect_copied(*target, source);
        EXPECT_EQ(std::string(*target), text_of_filled);
    });
}

// ---- Equality ----

// Parameter objects are compared by identity, which would hide everything after them: here none
// of the media has any.
void drop_parameters(QOVA_Media& media) {
    delete media.amrwbParam;
    media.amrwbParam = nullptr;
    delete media.opusParam;
    media.opusParam = nullptr;
}

class MediaEquality : public testing::Test {
protected:
    MediaEquality() {
        drop_parameters(a);
        drop_parameters(b);
    }

    QOVA_Media a;
    QOVA_Media b;
};

// ... and here two filled ones without.
class FilledMediaEquality : public MediaEquality {
protected:
    FilledMediaEquality() {
        for (QOVA_Media* const media : {&a, &b}) {
            media->amrwbParam = new Sdp::Sdp_Amrwb_Param;
            media->opusParam = new Sdp::Sdp_Opus_Param;
            fill(*media);
            drop_parameters(*media);
        }
    }
};

TEST_F(MediaEquality, HoldsBetweenDefaults) {
    expect_equal(a, b);
}

TEST_F(FilledMediaEquality, HoldsBetweenMediaThatAgree) {
    expect_equal(a, b);
}

class ComparedField : public FilledMediaEquality,
                      public testing::WithParamInterface<Change<QOVA_Media>> {};

TEST_P(ComparedField, MakesMediaUnequal) {
    GetParam().apply(b);
    expect_unequal(a, b);
    GetParam().apply(a);
    expect_equal(a, b);
}

constexpr Change<QOVA_Media> compared_fields[] = {
    {"mediaStatus", [](QOVA_Media& media) { media.mediaStatus = QOVA_Media::MS_UNKNOWN; }},
    {"mediaStatusOutOfRange",
     [](QOVA_Media& media) { media.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(77); }},
    {"mediaType", [](QOVA_Media& media) { media.mediaType = QOVA_Media::MT_VIDEO; }},
    {"mediaTypeOutOfRange",
     [](QOVA_Media& media) { media.mediaType = static_cast<QOVA_Media::e_MediaType>(-1); }},
    {"address", [](QOVA_Media& media) { set_address(media, "10.0.0.2"); }},
    {"addressFamily", [](QOVA_Media& media) { set_address(media, "::ffff:10.0.0.1"); }},
    {"bsnd", [](QOVA_Media& media) { media.bsnd = true; }},
    {"brcv", [](QOVA_Media& media) { media.brcv = false; }},
    {"sndPort", [](QOVA_Media& media) { media.sndPort = 4000 + 256; }},
    {"rcvPort", [](QOVA_Media& media) { media.rcvPort = 5000 + 1; }},
    {"sndPort2", [](QOVA_Media& media) { media.sndPort2 = 4001 + 1; }},
    {"rcvPort2", [](QOVA_Media& media) { media.rcvPort2 = 5001 + 256; }},
    {"cryptoCount", [](QOVA_Media& media) { media.cryptoCount = 5 + 65536; }},
    {"firstAttribute", [](QOVA_Media& media) { media.find(CODEC_G711_ALAW)->framing = 21; }},
    {"laterAttribute", [](QOVA_Media& media) { media.find(FT_T38_UDPTL)->errCorr = 2; }},
    {"lastAttribute",
     [](QOVA_Media& media) {
         dynamic_cast<QOVA_DataAttribute&>(*media.attributes.back()).type = 8;
     }},
    {"orderOfAttributes", [](QOVA_Media& media) { media.attributes.reverse(); }},
    {"firstCryptoLine", [](QOVA_Media& media) { media.cryptos.front()->tag = 9; }},
    {"keyOfACryptoLine",
     [](QOVA_Media& media) { media.cryptos.front()->keys.back().lifetime = 9; }},
    {"lastCryptoLine", [](QOVA_Media& media) { media.cryptos.back()->algo = CS_NIL; }},
    {"orderOfCryptoLines", [](QOVA_Media& media) { media.cryptos.reverse(); }},
};

INSTANTIATE_TEST_SUITE_P(Media, ComparedField, testing::ValuesIn(compared_fields), name_of_row);

class FieldLeftOut : public FilledMediaEquality,
                     public testing::WithParamInterface<Change<QOVA_Media>> {};

TEST_P(FieldLeftOut, LeavesMediaEqual) {
    GetParam().apply(b);
    expect_equal(a, b);
}

constexpr Change<QOVA_Media> fields_left_out[] = {
    {"statusOfAnAttribute",
     [](QOVA_Media& media) { media.attributes.front()->status = QOVA_Media::MS_REJECTED; }},
    {"typeOfAnAttribute",
     [](QOVA_Media& media) { media.attributes.front()->attributeType = QOVA_Media::AT_NIL; }},
    {"keyMaterial", [](QOVA_Media& media) { media.cryptos.front()->keys.front().key[0] = 1; }},
    {"lengthOfTheAttributes", [](QOVA_Media& media) { append_audio(media, CODEC_G729); }},
    {"lengthOfTheCryptoLines", [](QOVA_Media& media) { append_crypto(media, 3); }},
    {"lengthOfAKeyList", [](QOVA_Media& media) { append_key(*media.cryptos.front(), 1, 0xA3); }},
    {"allKeysOfACryptoLine", [](QOVA_Media& media) { media.cryptos.front()->keys.clear(); }},
};

INSTANTIATE_TEST_SUITE_P(Media, FieldLeftOut, testing::ValuesIn(fields_left_out), name_of_row);

TEST(MediaEqualityByIdentity, HoldsWithItself) {
    QOVA_Media media;
    fill(media);
    expect_equal(media, media);
}

TEST(MediaEqualityByIdentity, HoldsWithItselfForADefaultMediaToo) {
    const QOVA_Media media;
    expect_equal(media, media);
}

TEST(MediaEqualityByIdentity, DoesNotHoldWithACopy) {
    QOVA_Media media;
    fill(media);
    const QOVA_Media copy(media);
    expect_unequal(media, copy);

    QOVA_Media target;
    target = media;
    expect_unequal(media, target);

    const std::unique_ptr<QOVA_Media> clone(media.clone());
    expect_unequal(media, *clone);
}

TEST(MediaEqualityByIdentity, DoesNotHoldBetweenTwoDefaults) {
    const QOVA_Media a;
    const QOVA_Media b;
    expect_unequal(a, b);
}

// An attribute whose class has no comparison equals nothing, itself included.
TEST(MediaEqualityByIdentity, DoesNotEvenHoldWithItselfWhenAnAttributeHasNoComparison) {
    struct Attribute : QOVA_MediaAttribute {
        Attribute* clone() const override { return new Attribute(*this); }
        operator const std::string() const override { return ""; }
    };
    QOVA_Media media;
    append<Attribute>(media);
    expect_unequal(media, media);
}

// Shares parameter objects between two media for as long as it lives.
class SharedParameters : public MediaEquality {
protected:
    ~SharedParameters() override {
        for (QOVA_Media* const media : {&a, &b}) {
            media->amrwbParam = nullptr;
            media->opusParam = nullptr;
        }
    }

    Sdp::Sdp_Amrwb_Param amrwb;
    Sdp::Sdp_Amrwb_Param same_amrwb;
    Sdp::Sdp_Opus_Param opus;
    Sdp::Sdp_Opus_Param same_opus;
};

TEST_F(SharedParameters, MakeMediaEqual) {
    a.amrwbParam = b.amrwbParam = &amrwb;
    a.opusParam = b.opusParam = &opus;
    expect_equal(a, b);
}

TEST_F(SharedParameters, MakeMediaEqualWhenOneOfThemIsNull) {
    a.amrwbParam = b.amrwbParam = &amrwb;
    expect_equal(a, b);
    a.amrwbParam = b.amrwbParam = nullptr;
    a.opusParam = b.opusParam = &opus;
    expect_equal(a, b);
}

TEST_F(SharedParameters, AreTheSameObjectsAndNotTheSameContents) {
    a.opusParam = b.opusParam = &opus;
    a.amrwbParam = &amrwb;
    b.amrwbParam = &same_amrwb;
    expect_unequal(a, b);

    b.amrwbParam = &amrwb;
    expect_equal(a, b);

    b.opusParam = &same_opus;
    expect_unequal(a, b);
}

TEST_F(SharedParameters, DifferFromNull) {
    a.amrwbParam = &amrwb;
    expect_unequal(a, b);
    a.amrwbParam = nullptr;
    a.opusParam = &opus;
    expect_unequal(a, b);
}

TEST_F(MediaEquality, ComparesAddressesByMeaningNotByObject) {
    set_address(a, "2001:db8::1");
    set_address(b, "2001:0DB8:0:0:0:0:0:1");
    expect_equal(a, b);
}

TEST_F(MediaEquality, IgnoresAttributesBeyondTheShorterList) {
    append_audio(a, CODEC_G711_ALAW);
    append_audio(b, CODEC_G711_ALAW);
    append_audio(b, CODEC_G729);
    append_fax(b, FT_T38_TCP);
    expect_equal(a, b);
}

TEST_F(MediaEquality, HoldsBetweenNoAttributesAndAny) {
    append_audio(a, CODEC_G711_ALAW);
    append_fax(a, FT_T38_TCP);
    expect_equal(a, b);
}

TEST_F(MediaEquality, SeesADifferenceWithinTheShorterList) {
    append_audio(a, CODEC_G711_ALAW);
    append_audio(a, CODEC_G729);
    append_audio(b, CODEC_G711_ALAW);
    append_audio(b, CODEC_G723);
    append_audio(b, CODEC_G729);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, TellsAttributesOfDifferentClassesApart) {
    append<QOVA_VideoAttribute>(a);
    append<QOVA_DataAttribute>(b);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, IgnoresCryptoLinesBeyondTheShorterList) {
    append_crypto(a, 1);
    append_crypto(b, 1);
    append_crypto(b, 2);
    expect_equal(a, b);
}

TEST_F(MediaEquality, HoldsBetweenNoCryptoLinesAndAny) {
    append_crypto(a, 1);
    append_crypto(a, 2);
    expect_equal(a, b);
}

TEST_F(MediaEquality, SeesADifferenceWithinTheShorterCryptoList) {
    append_crypto(a, 1);
    append_crypto(a, 2);
    append_crypto(b, 1);
    append_crypto(b, 3);
    append_crypto(b, 2);
    expect_unequal(a, b);
}

// The list that ends first must not end the comparison of the other one.
TEST_F(MediaEquality, ComparesCryptoLinesAlsoBehindAttributesThatEndEarly) {
    append_audio(a, CODEC_G711_ALAW);
    append_crypto(a, 1);
    append_crypto(b, 2);
    expect_unequal(a, b);
}

TEST_F(MediaEquality, DoesNotHoldForADerivedCryptoLineOnEitherSide) {
    struct Crypto : QOVA_Crypto {
        Crypto* clone() const override { return new Crypto(*this); }
    };
    a.cryptos.push_back(new Crypto);
    append_crypto(b, 0);
    // Only the line on the right is asked for its class.
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(b == a);
    EXPECT_FALSE(a == a);
}

// ---- Searches ----

// Derived from a concrete class: the searches find it as the concrete one.
struct DerivedAudio : QOVA_AudioAttribute {};
struct DerivedFax : QOVA_FaxAttribute {};

TEST(MediaSearch, FindsNothingInAnEmptyList) {
    const QOVA_Media media;
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
    EXPECT_EQ(media.find_mf(CODEC_NIL), nullptr);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
    EXPECT_EQ(media.find(QOVA_Media::AT_NIL, QOVA_Media::MS_UNKNOWN), nullptr);
}

TEST(MediaSearch, FindsAnAudioAttributeByItsCodec) {
    QOVA_Media media;
    append_audio(media, CODEC_G729);
    const auto& alaw = append_audio(media, CODEC_G711_ALAW);
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &alaw);
    EXPECT_EQ(media.find(CODEC_G723), nullptr);
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
}

TEST(MediaSearch, FindsDynamicPayloadTypesAndNumbersWithoutEnumerator) {
    QOVA_Media media;
    const auto& dynamic = append_audio(media, static_cast<QOVA_Codec>(101));
    const auto& negative = append_audio(media, static_cast<QOVA_Codec>(-5));
    EXPECT_EQ(media.find(static_cast<QOVA_Codec>(101)), &dynamic);
    EXPECT_EQ(media.find(static_cast<QOVA_Codec>(-5)), &negative);
}

TEST(MediaSearch, TakesTheNeutralCodecLikeAnyOther) {
    QOVA_Media media;
    append_audio(media, CODEC_G729, CODEC_G723);
    const auto& nil = append_audio(media, CODEC_NIL, CODEC_NIL);
    EXPECT_EQ(media.find(CODEC_NIL), &nil);
    EXPECT_EQ(media.find_mf(CODEC_NIL), &nil);
}

TEST(MediaSearch, GivesTiesToTheEarlierElement) {
    QOVA_Media media;
    append_audio(media, CODEC_OPUS);
    auto& first = append_audio(media, CODEC_G729, CODEC_G722);
    append_audio(media, CODEC_G729, CODEC_G722);
    auto& first_fax = append_fax(media, FT_T38_TCP);
    append_fax(media, FT_T38_TCP);
    first.attributeType = QOVA_Media::AT_AUDIO;
    first_fax.attributeType = QOVA_Media::AT_AUDIO;
    EXPECT_EQ(media.find(CODEC_G729), &first);
    EXPECT_EQ(media.find_mf(CODEC_G722), &first);
    EXPECT_EQ(media.find(FT_T38_TCP), &first_fax);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_UNKNOWN), &first);
}

TEST(MediaSearch, FindsByToneCodecAndByCodecIndependently) {
    QOVA_Media media;
    const auto& carried = append_audio(media, CODEC_G729, CODEC_G711_ALAW);
    const auto& alaw = append_audio(media, CODEC_G711_ALAW, static_cast<QOVA_Codec>(101));
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &alaw);
    EXPECT_EQ(media.find_mf(CODEC_G711_ALAW), &carried);
    EXPECT_EQ(media.find(static_cast<QOVA_Codec>(101)), nullptr);
    EXPECT_EQ(media.find_mf(static_cast<QOVA_Codec>(101)), &alaw);
    EXPECT_EQ(media.find_mf(CODEC_G729), nullptr);
}

TEST(MediaSearch, FindsAFaxAttributeByItsTransport) {
    QOVA_Media media;
    append_fax(media, FT_T38_TCP);
    const auto& udptl = append_fax(media, FT_T38_UDPTL);
    EXPECT_EQ(media.find(FT_T38_UDPTL), &udptl);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
}

// The numbers agree; the classes do not.
TEST(MediaSearch, SkipsAttributesOfOtherClasses) {
    QOVA_Media media;
    append<QOVA_VideoAttribute>(media);
    append<QOVA_DataAttribute>(media).type = 1;
    const auto& fax = append_fax(media, FT_T38_UDPTL);
    const auto& audio = append_audio(media, CODEC_G711_ALAW, CODEC_G711_ULAW);
    EXPECT_EQ(media.find(CODEC_G711_ALAW), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G711_ULAW), &audio);
    EXPECT_EQ(media.find(FT_T38_UDPTL), &fax);
    EXPECT_EQ(media.find(FT_T38_TCP), nullptr);
    EXPECT_EQ(media.find(FT_NIL), nullptr);
    EXPECT_EQ(media.find(CODEC_NIL), nullptr);
}

TEST(MediaSearch, FindsObjectsOfDerivedClasses) {
    QOVA_Media media;
    auto& fax = append<DerivedFax>(media);
    fax.transport = FT_T38_TCP;
    auto& audio = append<DerivedAudio>(media);
    audio.codec = CODEC_OPUS;
    audio.mf = CODEC_G722;
    EXPECT_EQ(media.find(CODEC_OPUS), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G722), &audio);
    EXPECT_EQ(media.find(FT_T38_TCP), &fax);
    EXPECT_EQ(media.find(CODEC_G722), nullptr);
    EXPECT_EQ(media.find_mf(CODEC_OPUS), nullptr);
    EXPECT_EQ(media.find(FT_T38_UDPTL), nullptr);
}

TEST(MediaSearch, GivesTiesToTheEarlierElementAlsoOfADerivedClass) {
    QOVA_Media media;
    auto& derived = append<DerivedAudio>(media);
    derived.codec = CODEC_OPUS;
    append_audio(media, CODEC_OPUS);
    EXPECT_EQ(media.find(CODEC_OPUS), &derived);
}

TEST(MediaSearch, ByClassPassesNullElementsOver) {
    QOVA_Media media;
    media.attributes.push_back(nullptr);
    const auto& audio = append_audio(media, CODEC_OPUS, CODEC_G722);
    media.attributes.push_back(nullptr);
    const auto& fax = append_fax(media, FT_T38_TCP);
    media.attributes.push_back(nullptr);
    EXPECT_EQ(media.find(CODEC_OPUS), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G722), &audio);
    EXPECT_EQ(media.find(FT_T38_TCP), &fax);
    EXPECT_EQ(media.find(CODEC_G723), nullptr);
    EXPECT_EQ(media.find_mf(CODEC_G723), nullptr);
    EXPECT_EQ(media.find(FT_T38_UDPTL), nullptr);
}

// The list is walked from both ends, with a slower way round what is not plainly of the class:
// every arrangement of matching, other, derived, foreign and null elements gives the first that
// matches.
TEST(MediaSearch, FindsTheFirstMatchInEveryArrangement) {
    enum Kind { NOTHING, FOREIGN, OTHER, MATCH, DERIVED_OTHER, DERIVED_MATCH, KINDS };
    const auto make = [](int kind) -> std::unique_ptr<QOVA_MediaAttribute> {
        if (kind == NOTHING) {
            return nullptr;
        }
        if (kind == FOREIGN) {
            return std::make_unique<QOVA_FaxAttribute>();
        }
        const bool is_derived = kind == DERIVED_OTHER || kind == DERIVED_MATCH;
        auto audio =
            is_derived ? std::make_unique<DerivedAudio>() : std::make_unique<QOVA_AudioAttribute>();
        audio->codec = kind == MATCH || kind == DERIVED_MATCH ? CODEC_OPUS : CODEC_G729;
        return audio;
    };
    constexpr int longest = 5;
    int arrangements = 1;
    for (int length = 0; length <= longest; ++length, arrangements *= KINDS) {
        for (int arrangement = 0; arrangement < arrangements; ++arrangement) {
            QOVA_Media media;
            const QOVA_MediaAttribute* first_match = nullptr;
            std::string kinds;
            for (int i = 0, rest = arrangement; i < length; ++i, rest /= KINDS) {
                const int kind = rest % KINDS;
                kinds += std::to_string(kind);
                media.attributes.push_back(make(kind).release());
                if (first_match == nullptr && (kind == MATCH || kind == DERIVED_MATCH)) {
                    first_match = media.attributes.back();
                }
            }
            ASSERT_EQ(media.find(CODEC_OPUS), first_match) << "kinds " << kinds;
        }
    }
}

TEST(MediaSearch, ByTypeAndStatusWantsBoth) {
    QOVA_Media media;
    auto& rejected = append_audio(media, CODEC_G711_ALAW);
    rejected.attributeType = QOVA_Media::AT_AUDIO;
    rejected.status = QOVA_Media::MS_REJECTED;
    auto& fax = append_fax(media, FT_T38_UDPTL);
    fax.attributeType = QOVA_Media::AT_FAX;
    fax.status = QOVA_Media::MS_ACCEPTED;
    auto& accepted = append_audio(media, CODEC_G729);
    accepted.attributeType = QOVA_Media::AT_AUDIO;
    accepted.status = QOVA_Media::MS_ACCEPTED;

    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_ACCEPTED), &accepted);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_REJECTED), &rejected);
    EXPECT_EQ(media.find(QOVA_Media::AT_FAX, QOVA_Media::MS_ACCEPTED), &fax);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_MODIFIED), nullptr);
    EXPECT_EQ(media.find(QOVA_Media::AT_VIDEO, QOVA_Media::MS_ACCEPTED), nullptr);
}

TEST(MediaSearch, ByTypeTakesTheUnknownStatusForAny) {
    QOVA_Media media;
    append<QOVA_VideoAttribute>(media).attributeType = QOVA_Media::AT_VIDEO;
    auto& rejected = append_audio(media, CODEC_G711_ALAW);
    rejected.attributeType = QOVA_Media::AT_AUDIO;
    rejected.status = QOVA_Media::MS_REJECTED;
    auto& unknown = append_audio(media, CODEC_G729);
    unknown.attributeType = QOVA_Media::AT_AUDIO;
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_UNKNOWN), &rejected);
    // An attribute of unknown status is not of any status.
    EXPECT_EQ(media.find(QOVA_Media::AT_VIDEO, QOVA_Media::MS_ACCEPTED), nullptr);
}

TEST(MediaSearch, ByTypeLooksAtTheFieldAndNotAtTheClass) {
    QOVA_Media media;
    append_audio(media, CODEC_G729).attributeType = QOVA_Media::AT_NIL;
    auto& fax = append_fax(media, FT_T38_TCP);
    fax.attributeType = QOVA_Media::AT_AUDIO;
    fax.status = QOVA_Media::MS_MODIFIED;
    auto& video = append<QOVA_VideoAttribute>(media);
    video.attributeType = static_cast<QOVA_Media::e_AttributeType>(99);
    EXPECT_EQ(media.find(QOVA_Media::AT_AUDIO, QOVA_Media::MS_MODIFIED), &fax);
    EXPECT_EQ(media.find(static_cast<QOVA_Media::e_AttributeType>(99), QOVA_Media::MS_UNKNOWN),
              &video);
}

TEST(MediaSearch, DoesNotAskForTheKindOrStatusOfTheMedia) {
    QOVA_Media media;
    media.mediaType = QOVA_Media::MT_FAX;
    media.mediaStatus = QOVA_Media::MS_REJECTED;
    const auto& audio = append_audio(media, CODEC_G729, CODEC_G722);
    EXPECT_EQ(media.find(CODEC_G729), &audio);
    EXPECT_EQ(media.find_mf(CODEC_G722), &audio);
}

TEST(MediaSearch, AllocatesNothing) {
    QOVA_Media media;
    fill(media);
    append<DerivedAudio>(media);
    const std::size_t made = allocations::made();
    const bool found = media.find(CODEC_G723) != nullptr || media.find_mf(CODEC_G723) != nullptr ||
                       media.find(FT_T38_TCP) != nullptr ||
                       media.find(QOVA_Media::AT_DATA, QOVA_Media::MS_REJECTED) != nullptr;
    EXPECT_EQ(allocations::made(), made);
    EXPECT_FALSE(found);
}

// ---- Mute test ----

class Muteness : public testing::Test {
protected:
    Muteness() {
        set_address(media, "10.0.0.1");
        media.rcvPort = 5000;
    }

    QOVA_Media media;
};

TEST_F(Muteness, IsNotThereWithAnAddressAndAReceivePort) {
    EXPECT_FALSE(media.isMute());
}

TEST_F(Muteness, ComesFromTheReceivePortZero) {
    media.sndPort = 4000;
    media.rcvPort2 = 5001;
    media.rcvPort = 0;
    EXPECT_TRUE(media.isMute());
}

TEST_F(Muteness, ComesFromTheAnyAddress) {
    set_address(media, "0.0.0.0");
    EXPECT_TRUE(media.isMute());
    set_address(media, "::");
    EXPECT_TRUE(media.isMute());
}

TEST_F(Muteness, ComesNeitherFromOtherPortsNorFromDirections) {
    media.sndPort = media.sndPort2 = media.rcvPort2 = 0;
    media.bsnd = media.brcv = false;
    EXPECT_FALSE(media.isMute());
}

TEST_F(Muteness, ComesNeitherFromKindNorFromStatus) {
    media.mediaType = QOVA_Media::MT_VIDEO;
    media.mediaStatus = QOVA_Media::MS_REJECTED;
    EXPECT_FALSE(media.isMute());
}

// ---- Log text ----

TEST(MediaText, OfADefaultMedia) {
    EXPECT_EQ(std::string(QOVA_Media()), text_of_default);
}

TEST(MediaText, OfAFilledMedia) {
    QOVA_Media media;
    fill(media);
    EXPECT_EQ(std::string(media), text_of_filled);
}

struct FixedText : QOVA_MediaAttribute {
    const char* text = "";

    FixedText* clone() const override { return new FixedText(*this); }
    operator const std::string() const override { return text; }
};

TEST(MediaText, PutsAttributeTextsDirectlyBehindTheColon) {
    QOVA_Media media;
    media.mediaType = QOVA_Media::MT_AUDIO;
    set_address(media, "10.0.0.1");
    media.sndPort = 4000;
    media.sndPort2 = 4001;
    media.rcvPort = 5000;
    media.rcvPort2 = 5001;
    media.brcv = false;
    append<FixedText>(media).text = "A1";
    append<FixedText>(media).text = "A2";
    EXPECT_EQ(std::string(media),
              "\t-> media(Audio)/Accepted @10.0.0.1/snd=4000~4001/rcv=5000~5001/bsnd=1/brcv=0\n"
              "\t   Attributes :A1A2\t   Crypto attributes (0) :\n");
}

TEST(MediaText, HasBothHeadersOnOneLineWithoutAttributes) {
    QOVA_Media media;
    media.mediaType = QOVA_Media::MT_VIDEO;
    EXPECT_EQ(std::string(media),
              "\t-> media(Video)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, ShowsTheCryptoCountAndNotTheNumberOfLines) {
    QOVA_Media media;
    media.cryptoCount = 4294967295U;
    append_crypto(media, 7);
    append_crypto(media, 8);
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (4294967295) :\n"
              "\t\ttag=7, algo=NIL\n"
              "\t\ttag=8, algo=NIL\n");
}

TEST(MediaText, ShowsNoCryptoLineWhenThereIsOnlyACount) {
    QOVA_Media media;
    media.cryptoCount = 2;
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (2) :\n");
}

TEST(MediaText, PrintsPortsUnsigned) {
    QOVA_Media media;
    media.sndPort = 65535;
    media.sndPort2 = 65534;
    media.rcvPort = 32768;
    media.rcvPort2 = 40000;
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=65535~65534/rcv=32768~40000/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, PrintsDirectionsAsDigits) {
    QOVA_Media media;
    media.bsnd = false;
    media.brcv = true;
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=0/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, PutsParametersDirectlyBehindTheDirections) {
    QOVA_Media media;
    media.brcv = false;
    media.amrwbParam->octetAlign = 1;
    media.amrwbParam->modeSet = {0, 2};
    media.opusParam->maxPlaybackRate = 48000;
    media.opusParam->stereo = true;
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=0"
              " AMR-WB(octet-align=1; mode-set=0,2) opus(maxplaybackrate=48000; stereo=1)\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n");
}

TEST(MediaText, ShowsNoKeyMaterial) {
    QOVA_Media media;
    auto& crypto = append_crypto(media, 1);
    append_key(crypto, 4294967295U, 'K');
    EXPECT_EQ(std::string(media),
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :\t   Crypto attributes (0) :\n"
              "\t\ttag=1, algo=NIL, key=(lifetime=4294967295 / mki=123000000 / mkiSize=2)\n");
}

TEST(MediaText, KeepsTheBytesOfAnAttributeText) {
    struct Bytes : FixedText {
        operator const std::string() const override { return {"a\0\xFF\n", 4}; }
    };
    QOVA_Media media;
    append<Bytes>(media);
    const std::string text = media;
    EXPECT_EQ(text,
              "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
              "\t   Attributes :" +
                  std::string("a\0\xFF\n", 4) + "\t   Crypto attributes (0) :\n");
}

TEST(MediaText, InsertsTheAddressWithItsFullLength) {
    struct Address : IPAddress {
        std::string ToString() const override { return text; }
        std::string text;
    };
    QOVA_Media media;
    delete media.address;
    auto* const address = new Address;
    media.address = address;
    const std::string ending =
        "/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
        "\t   Attributes :\t   Crypto attributes (0) :\n";

    address->text = std::string("a\0b", 3);
    EXPECT_EQ(std::string(media), "\t-> media(Nil)/Accepted @" + std::string("a\0b", 3) + ending);
    address->text = "";
    EXPECT_EQ(std::string(media), "\t-> media(Nil)/Accepted @" + ending);
    address->text = std::string(5000, 'x');
    EXPECT_EQ(std::string(media), "\t-> media(Nil)/Accepted @" + std::string(5000, 'x') + ending);
}

using NumberRow = Row<int>;
class MediaTypeInText : public testing::TestWithParam<NumberRow> {};

TEST_P(MediaTypeInText, StandsFirstByName) {
    QOVA_Media media;
    media.mediaType = static_cast<QOVA_Media::e_MediaType>(GetParam().value);
    EXPECT_EQ(std::string(media), std::string("\t-> media(") + GetParam().text +
                                      ")/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
                                      "\t   Attributes :\t   Crypto attributes (0) :\n");
}

INSTANTIATE_TEST_SUITE_P(Every, MediaTypeInText,
                         testing::Values(NumberRow{"Nil", 0, "Nil"}, NumberRow{"Audio", 1, "Audio"},
                                         NumberRow{"Video", 2, "Video"}, NumberRow{"Fax", 3, "Fax"},
                                         NumberRow{"Data", 4, "Data"},
                                         NumberRow{"Beyond", 5, "Nil"},
                                         NumberRow{"Negative", -1, "Nil"}),
                         name_of_row);

class MediaStatusInText : public testing::TestWithParam<NumberRow> {};

TEST_P(MediaStatusInText, StandsSecondByName) {
    QOVA_Media media;
    media.mediaStatus = static_cast<QOVA_Media::e_MediaStatus>(GetParam().value);
    EXPECT_EQ(std::string(media), std::string("\t-> media(Nil)/") + GetParam().text +
                                      " @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
                                      "\t   Attributes :\t   Crypto attributes (0) :\n");
}

INSTANTIATE_TEST_SUITE_P(
    Every, MediaStatusInText,
    testing::Values(NumberRow{"Unknown", 0, "Unknown"}, NumberRow{"Accepted", 1, "Accepted"},
                    NumberRow{"Rejected", 2, "Rejected"}, NumberRow{"Modified", 3, "Modified"},
                    NumberRow{"Beyond", 4, "Unknown"}, NumberRow{"Negative", -1, "Unknown"}),
    name_of_row);

}  // namespace
