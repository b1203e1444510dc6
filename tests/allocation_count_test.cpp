// The number of blocks that each operation allocates.

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

#include "allocations.h"
#include "building_blocks.h"

namespace {

constexpr std::size_t payloads = 8;
constexpr std::size_t crypto_lines = 2;
// A media has its node, itself, its address and two parameter objects; a payload its node and
// itself; a crypto line also the node of its key.
constexpr std::size_t blocks_of_audio = 4 + 2 * payloads + 3 * crypto_lines;
constexpr std::size_t blocks_of_fax = 4 + 2;
constexpr std::size_t blocks = 1 + blocks_of_audio + 1 + blocks_of_fax;

QOVA_Capability make_offer() {
    QOVA_Capability offer;
    auto& audio = append_media(offer, QOVA_Media::MT_AUDIO);
    for (std::size_t i = 0; i < payloads; ++i) {
        append_audio(audio, CODEC_G729);
    }
    for (std::size_t i = 0; i < crypto_lines; ++i) {
        auto& crypto = append_crypto(audio, 1);
        crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
        crypto.keys.push_back({});
    }
    append_fax(append_media(offer, QOVA_Media::MT_FAX), FT_NIL);
    return offer;
}

class CountedAllocations : public testing::Test {
protected:
    template <class Operation>
    static std::size_t made_by(Operation operation) {
        const std::size_t before = allocations::made();
        operation();
        return allocations::made() - before;
    }

    QOVA_Capability offer = make_offer();
    QOVA_Capability same = make_offer();
    const QOVA_Media& audio = *offer.filteredMedia.front();
};

TEST_F(CountedAllocations, OnePerCopiedObjectAndNode) {
    EXPECT_EQ(made_by([&] { const QOVA_Capability copy(offer); }), blocks);
    EXPECT_EQ(made_by([&] { same = offer; }), blocks);
    EXPECT_EQ(made_by([&] { const std::unique_ptr<QOVA_Media> copy(audio.clone()); }),
              blocks_of_audio);
}

TEST_F(CountedAllocations, EqualityMakesNone) {
    for (QOVA_Capability* capability : {&offer, &same}) {
        for (QOVA_Media* media : capability->filteredMedia) {
            drop_parameters(*media);
        }
    }
    EXPECT_EQ(made_by([&] { EXPECT_TRUE(offer == same); }), 0U);
}

TEST_F(CountedAllocations, SearchesMakeOnlyListNodes) {
    EXPECT_EQ(made_by([&] {
                  EXPECT_NE(offer.find(CODEC_G729), nullptr);
                  EXPECT_EQ(offer.find(CODEC_OPUS), nullptr);
                  EXPECT_NE(offer.find_mf(CODEC_NIL), nullptr);
                  EXPECT_EQ(offer.find(FT_T38_TCP), nullptr);
                  EXPECT_TRUE(offer.isMute());
              }),
              0U);
    EXPECT_EQ(made_by([&] { offer.find(QOVA_Media::MT_AUDIO, QOVA_Media::MS_UNKNOWN); }), 1U);
}

TEST_F(CountedAllocations, EditsMakeOnlyAddresses) {
    const UDPAddr to = endpoint("192.0.2.100");
    EXPECT_EQ(made_by([&] { offer.setPublicAddrPort(to, 40000, 7000); }), 2U);
    EXPECT_EQ(made_by([&] { offer.setLocalAddrPort(to, 40000, 7000); }), 2U);
    EXPECT_EQ(made_by([&] {
                  offer.ClearMediaDirection();
                  offer.rejectMedia(QOVA_Media::MT_AUDIO);
              }),
              0U);
}

// The companion allocates the name of each crypto suite.
TEST_F(CountedAllocations, TextMakesOneAndSuiteNames) {
    offer.passThrough = std::string(10000, 'x');
    std::string text;
    EXPECT_EQ(made_by([&] { text = std::string(offer); }), 1 + crypto_lines);
    EXPECT_EQ(made_by([&] { text = std::string(audio); }), 1 + crypto_lines);
    EXPECT_EQ(made_by([&] { text = std::string(*audio.cryptos.front()); }), 2U);
    EXPECT_EQ(made_by([&] { text = std::string(QOVA_FaxAttribute()); }), 1U);
}

TEST_F(CountedAllocations, ParameterTextsAreMadeOnce) {
    const auto made_by_text_of = [](const auto& object) {
        return made_by([&] { static_cast<void>(static_cast<const std::string>(object)); });
    };
    QOVA_Media media;
    fill(*media.amrwbParam);
    fill(*media.opusParam);
    EXPECT_EQ(made_by_text_of(media),
              1 + made_by_text_of(*media.amrwbParam) + made_by_text_of(*media.opusParam));
}

TEST_F(CountedAllocations, NamesMakeNone) {
    EXPECT_EQ(made_by([] {
                  ToString(payload_type(127));
                  ToString(static_cast<QOVA_EarlyMedia>(-1));
                  QOVA_Media::ToString(QOVA_Media::MS_ACCEPTED);
                  QOVA_Media::ToString(QOVA_Media::MT_AUDIO);
              }),
              0U);
}

// Default construction, copy, assignment and equality.
template <class Attribute>
void use_as_value() {
    Attribute attribute;
    const Attribute copy(attribute);
    attribute = copy;
    const QOVA_MediaAttribute& base = copy;
    EXPECT_TRUE(attribute == base);
}

TEST_F(CountedAllocations, PlainValuesMakeNone) {
    EXPECT_EQ(made_by([] {
                  use_as_value<QOVA_AudioAttribute>();
                  use_as_value<QOVA_VideoAttribute>();
                  use_as_value<QOVA_FaxAttribute>();
                  use_as_value<QOVA_DataAttribute>();
                  EXPECT_TRUE(QOVA_Crypto() == QOVA_Crypto());
                  EXPECT_TRUE(QOVA_Capability() == QOVA_Capability());
              }),
              0U);
}

TEST_F(CountedAllocations, SelfAssignmentMakesNone) {
    QOVA_Media& media = *offer.filteredMedia.front();
    const QOVA_Media& same_media = media;
    const QOVA_Capability& same_offer = offer;
    EXPECT_EQ(made_by([&] {
                  media = same_media;
                  offer = same_offer;
              }),
              0U);
}

}  // namespace
