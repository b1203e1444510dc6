// The library's log texts against those of a second, literal renderer, byte for byte.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>

#include "grouping_locale.h"
#include "literal_renderer.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"
#include "random_trees.h"

namespace {

template <typename Tree>
void expect_same_texts(int trees, std::unique_ptr<Tree> (*make)(std::mt19937&)) {
    std::mt19937 random(20240131);
    for (int i = 0; i < trees; ++i) {
        const std::unique_ptr<Tree> tree = make(random);
        ASSERT_EQ(std::string(*tree), literal::text(*tree)) << "tree " << i;
    }
}

TEST(Rendering, OfRandomAttributesIsLiteral) {
    expect_same_texts<QOVA_MediaAttribute>(5000, trees::attribute);
}

TEST(Rendering, OfRandomCryptoLinesIsLiteral) {
    expect_same_texts<QOVA_Crypto>(5000, trees::crypto);
}

TEST(Rendering, OfRandomMediaIsLiteral) {
    expect_same_texts<QOVA_Media>(2000, trees::media);
}

TEST(Rendering, OfRandomCapabilitiesIsLiteral) {
    expect_same_texts<QOVA_Capability>(1500, trees::capability);
}

// Reaches every number of digits of every printed field, whatever the random trees leave out.
TEST(Rendering, OfEveryNumberOfDigitsIsLiteral) {
    QOVA_Media media;
    auto* const audio = new QOVA_AudioAttribute;
    media.attributes.push_back(audio);
    auto* const fax = new QOVA_FaxAttribute;
    media.attributes.push_back(fax);
    auto* const crypto = new QOVA_Crypto;
    media.cryptos.push_back(crypto);
    crypto->keys.push_back({});

    const auto expect_with = [&](unsigned int number) {
        const int negative = -1 - static_cast<int>(number / 2);
        audio->framing = negative;
        audio->mxFraming = static_cast<int>(number / 2);
        audio->mf = static_cast<QOVA_Codec>(negative);
        fax->red = fax->depth = fax->mxRate = number;
        fax->mxBuffer = fax->mxDgram = fax->errCorr = number;
        media.sndPort = media.sndPort2 = static_cast<unsigned short>(number);
        media.rcvPort = media.rcvPort2 = static_cast<unsigned short>(number);
        media.cryptoCount = number;
        crypto->tag = number;
        crypto->keys.front().lifetime = number;
        crypto->keys.front().mkiSize = static_cast<unsigned char>(number);
        for (unsigned char& byte : crypto->keys.front().mki) {
            byte = static_cast<unsigned char>(number);
        }
        ASSERT_EQ(std::string(media), literal::text(media)) << number;
    };
    expect_with(4294967295U);
    for (unsigned int power = 1000000000; power != 0; power /= 10) {
        expect_with(power - 1);
        expect_with(power);
    }
    for (unsigned int byte = 0; byte < 256; ++byte) {
        expect_with(byte);
    }
}

TEST(Rendering, DoesNotDependOnTheGlobalLocale) {
    const GroupingLocale grouping;
    std::ostringstream stream;
    stream << 49170;
    ASSERT_EQ(stream.str(), "49.170") << "the locale in force does not group digits";

    expect_same_texts<QOVA_MediaAttribute>(1000, trees::attribute);
    expect_same_texts<QOVA_Crypto>(1000, trees::crypto);
    expect_same_texts<QOVA_Media>(300, trees::media);
    expect_same_texts<QOVA_Capability>(300, trees::capability);
}

TEST(Rendering, LeavesTheTreeUnchanged) {
    std::mt19937 random(7);
    for (int i = 0; i < 100; ++i) {
        const std::unique_ptr<QOVA_Capability> capability = trees::capability(random);
        const std::string before = literal::text(*capability);
        const std::string first = *capability;
        const std::string second = *capability;
        ASSERT_EQ(first, before);
        ASSERT_EQ(second, before);
        ASSERT_EQ(literal::text(*capability), before);
    }
}

// Classes derived from the concrete ones: one with a conversion of its own, one without.
template <typename Base>
struct Annotated : Base {
    operator const std::string() const override { return "\t\t => annotated\n"; }
};
template <typename Base>
struct Plain : Base {};

template <typename Base>
class DerivedAttributeRendering : public testing::Test {};

using ConcreteClasses =
    testing::Types<QOVA_AudioAttribute, QOVA_VideoAttribute, QOVA_FaxAttribute, QOVA_DataAttribute>;
TYPED_TEST_SUITE(DerivedAttributeRendering, ConcreteClasses, );

const std::string media_header =
    "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
    "\t   Attributes :";
const std::string no_cryptos = "\t   Crypto attributes (0) :\n";

TYPED_TEST(DerivedAttributeRendering, GoesThroughTheConversionOfTheDerivedClass) {
    QOVA_Capability capability;
    auto* const media = new QOVA_Media;
    capability.filteredMedia.push_back(media);
    media->attributes.push_back(new Annotated<TypeParam>);

    const std::string media_text = media_header + "\t\t => annotated\n" + no_cryptos;
    const std::string capability_text =
        "Capability(answer, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n" + media_text;
    EXPECT_EQ(std::string(*media), media_text);
    EXPECT_EQ(std::string(capability), capability_text);
}

TYPED_TEST(DerivedAttributeRendering, FallsBackToTheConcreteClass) {
    QOVA_Capability capability;
    auto* const media = new QOVA_Media;
    capability.filteredMedia.push_back(media);
    media->attributes.push_back(new Plain<TypeParam>);

    const std::string media_text = media_header + literal::text(TypeParam()) + no_cryptos;
    const std::string capability_text =
        "Capability(answer, Not Hold, silenceSuppSdp=no)\n\tFiltered=\n" + media_text;
    EXPECT_EQ(std::string(*media), media_text);
    EXPECT_EQ(std::string(capability), capability_text);
}

TEST(Rendering, MixesConcreteAndDerivedAttributesInListOrder) {
    QOVA_Media media;
    media.attributes.push_back(new QOVA_VideoAttribute);
    media.attributes.push_back(new Annotated<QOVA_AudioAttribute>);
    media.attributes.push_back(new QOVA_DataAttribute);
    media.attributes.push_back(new Plain<QOVA_AudioAttribute>);

    EXPECT_EQ(std::string(media),
              media_header +
                  "\t\t -> video : not implemented\n"
                  "\t\t => annotated\n"
                  "\t\t -> Data / type=NIL\n"
                  "\t\t -> NIL / Unknown / framing=0 / vad=0 / echo=0 / mxFraming=0 / MF=0\n" +
                  no_cryptos);
}

// The conversion of a crypto line is not virtual: the owner prints the base's text.
TEST(Rendering, OfADerivedCryptoLineIsThatOfTheBase) {
    struct Annotated : QOVA_Crypto {
        operator const std::string() const { return "\t\tannotated\n"; }
    };
    QOVA_Media media;
    media.cryptos.push_back(new Annotated);

    EXPECT_EQ(std::string(media), media_header + no_cryptos + "\t\ttag=0, algo=NIL\n");
}

}  // namespace
