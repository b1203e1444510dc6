// The library's log texts against those of a second, literal renderer, byte for byte.

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "grouping_locale.h"
#include "literal_renderer.h"
#include "model/generator.h"
#include "netconf/sdp.h"
#include "qova/attributes.h"
#include "qova/capability.h"
#include "qova/crypto.h"
#include "qova/media.h"

namespace {

template <typename Object>
void expect_literal(const Object& object, const char* what, unsigned int number) {
    ASSERT_EQ(literal::difference(object, literal::text(object)), "") << what << ' ' << number;
}

template <typename Ideal>
void expect_literal_trees(unsigned int trees, Ideal (*any)(model::Bytes&)) {
    std::mt19937 random(20240131);
    for (unsigned int i = 0; i < trees && !testing::Test::HasFatalFailure(); ++i) {
        const std::vector<unsigned char> bytes = model::random_bytes(random, 2000);
        model::Bytes input(bytes.data(), bytes.size());
        expect_literal(*make(any(input)), "tree", i);
    }
}

TEST(Rendering, OfRandomAttributesIsLiteral) {
    expect_literal_trees(5000, model::any_attribute);
}

TEST(Rendering, OfRandomCryptoLinesIsLiteral) {
    expect_literal_trees(5000, model::any_crypto);
}

TEST(Rendering, OfRandomMediaIsLiteral) {
    expect_literal_trees(2000, model::any_media);
}

TEST(Rendering, OfRandomCapabilitiesIsLiteral) {
    expect_literal_trees(1500, model::any_capability);
}

// An enumerator that has its name in the literal renderer only is found here.
TEST(Rendering, NamesEveryValueAsTheLiteralRendererDoes) {
    QOVA_FaxAttribute fax;
    for (int value = -2; value <= 130; ++value) {
        const auto codec = static_cast<QOVA_Codec>(value);
        ASSERT_EQ(ToString(codec), literal::name(codec));
        const auto direction = static_cast<QOVA_EarlyMedia>(value);
        ASSERT_EQ(ToString(direction), literal::name(direction));
        const auto type = static_cast<QOVA_Media::e_MediaType>(value);
        ASSERT_EQ(QOVA_Media::ToString(type), literal::name(type));
        const auto status = static_cast<QOVA_Media::e_MediaStatus>(value);
        ASSERT_EQ(QOVA_Media::ToString(status), literal::name(status));
        const auto suite = static_cast<g_crypto_suite>(value);
        ASSERT_EQ(Sdp::CryptoParser::enumToAlgo(suite), literal::name(suite));
        fax.transport = static_cast<QOVA_FaxTransport>(value);
        fax.rateMgt = static_cast<QOVA_FaxRateMgt>(value);
        ASSERT_EQ(std::string(fax), literal::text(fax));
    }
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
        if (HasFatalFailure()) {
            return;
        }
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
        expect_literal(media, "number", number);
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

    expect_literal_trees(1000, model::any_attribute);
    expect_literal_trees(1000, model::any_crypto);
    expect_literal_trees(300, model::any_media);
    expect_literal_trees(300, model::any_capability);
}

// Classes derived from the concrete ones: one with a conversion of its own, one without.
template <typename Base>
struct Annotated : Base {
    operator const std::string() const override { return "\t\t => annotated\n"; }
};
template <typename Base>
struct Plain : Base {};

const std::string media_header =
    "\t-> media(Nil)/Accepted @0.0.0.0/snd=0~0/rcv=0~0/bsnd=1/brcv=1\n"
    "\t   Attributes :";
const std::string no_cryptos = "\t   Crypto attributes (0) :\n";

template <typename Base>
void expect_texts_of_derived() {
    QOVA_Capability capability;
    auto* const media = new QOVA_Media;
    capability.filteredMedia.push_back(media);
    media->attributes.push_back(new Annotated<Base>);
    media->attributes.push_back(new Plain<Base>);

    const std::string media_text =
        media_header + "\t\t => annotated\n" + literal::text(Base()) + no_cryptos;
    EXPECT_EQ(literal::difference(*media, media_text), "");
    EXPECT_EQ(literal::difference(capability,
                                  "Capability(answer, Not Hold, silenceSuppSdp=no)\n"
                                  "\tFiltered=\n" +
                                      media_text),
              "");
}

TEST(Rendering, OfADerivedAttributeGoesThroughItsConversion) {
    expect_texts_of_derived<QOVA_AudioAttribute>();
    expect_texts_of_derived<QOVA_VideoAttribute>();
    expect_texts_of_derived<QOVA_FaxAttribute>();
    expect_texts_of_derived<QOVA_DataAttribute>();
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
