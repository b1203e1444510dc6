// What the operations allocate, to the block, on an offer of two lines.

#include <gtest/gtest.h>

#include <string>

#include "allocations.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "socket/address.h"

namespace {

constexpr std::size_t payloads = 8;
constexpr std::size_t crypto_lines = 8;
// A media has its node, itself, its address and two parameter objects; a payload its node and
// itself; a crypto line also the node of its key.
constexpr std::size_t blocks_of_audio = 4 + 2 * payloads + 3 * crypto_lines;
constexpr std::size_t blocks_of_fax = 4 + 2;
constexpr std::size_t blocks = 1 + blocks_of_audio + 1 + blocks_of_fax;

template <typename Object, typename Base>
Object& append(std::list<Base*>& list) {
    list.push_back(nullptr);
    auto* const object = new Object;
    list.back() = object;
    return *object;
}

class CountedAllocations : public testing::Test {
protected:
    CountedAllocations() {
        fill(offer);
        fill(same);
        IPAddress::Parse("192.0.2.100", address);
    }

    // Two lines, audio and fax.
    static void fill(QOVA_Capability& capability) {
        auto& audio = append<QOVA_Media>(capability.filteredMedia);
        audio.mediaType = QOVA_Media::MT_AUDIO;
        for (std::size_t i = 0; i < payloads; ++i) {
            append<QOVA_AudioAttribute>(audio.attributes).codec = CODEC_G729;
        }
        for (std::size_t i = 0; i < crypto_lines; ++i) {
            auto& crypto = append<QOVA_Crypto>(audio.cryptos);
            crypto.algo = CS_AES_CM_128_HMAC_SHA1_80;
            crypto.keys.push_back({});
        }
        auto& fax = append<QOVA_Media>(capability.filteredMedia);
        fax.mediaType = QOVA_Media::MT_FAX;
        append<QOVA_FaxAttribute>(fax.attributes);
    }

    template <typename Operation>
    static std::size_t made_by(Operation operation) {
        const std::size_t before = allocations::made();
        operation();
        return allocations::made() - before;
    }

    QOVA_Capability offer;
    QOVA_Capability same;
    IPAddress address;
};

TEST_F(CountedAllocations, ACopyMakesOneBlockForEachObjectAndListNode) {
    EXPECT_EQ(made_by([&] { const QOVA_Capability copy(offer); }), blocks);
    EXPECT_EQ(made_by([&] { same = offer; }), blocks);
    EXPECT_EQ(made_by([&] { delete offer.filteredMedia.front()->clone(); }), blocks_of_audio);
}

// Parameter objects are compared by identity: without them, two offers can be equal.
TEST_F(CountedAllocations, EqualityMakesNone) {
    for (QOVA_Capability* capability : {&offer, &same}) {
        for (QOVA_Media* media : capability->filteredMedia) {
            delete media->amrwbParam;
            media->amrwbParam = nullptr;
            delete media->opusParam;
            media->opusParam = nullptr;
        }
    }
    EXPECT_EQ(made_by([&] { EXPECT_TRUE(offer == same); }), 0U);
}

TEST_F(CountedAllocations, SearchesMakeNoneButTheNodesOfAList) {
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

TEST_F(CountedAllocations, MovesMakeTheNewAddressesOnly) {
    const UDPAddr to(address, 0);
    EXPECT_EQ(made_by([&] { offer.setPublicAddrPort(to, 40000, 7000); }), 2U);
    EXPECT_EQ(made_by([&] { offer.setLocalAddrPort(to, 40000, 7000); }), 2U);
    EXPECT_EQ(made_by([&] {
                  offer.ClearMediaDirection();
                  offer.rejectMedia(QOVA_Media::MT_AUDIO);
              }),
              0U);
}

// The names of the suites are the companion's strings.
TEST_F(CountedAllocations, ATextIsMadeInOneBlockBesideTheNamesOfTheSuites) {
    offer.passThrough = std::string(10000, 'x');
    std::string text;
    EXPECT_EQ(made_by([&] { text = std::string(offer); }), 1 + crypto_lines);
    EXPECT_EQ(made_by([&] { text = std::string(*offer.filteredMedia.front()); }), 1 + crypto_lines);
    EXPECT_EQ(made_by([&] { text = std::string(*offer.filteredMedia.front()->cryptos.front()); }),
              2U);
    EXPECT_EQ(made_by([&] { text = std::string(QOVA_FaxAttribute()); }), 1U);
}

}  // namespace
