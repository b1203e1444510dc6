// Objects made by a second copy of the library have the same classes as ours, although the
// addresses of their type information differ.

#include "second_copy.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <string>
#include <typeinfo>

#include "building_blocks.h"
#include "equality.h"

namespace {

struct SecondCopy : testing::Test {
    const std::unique_ptr<QOVA_Media> ours = full<QOVA_Media>();
    const std::unique_ptr<QOVA_Media> theirs = full_media_of_second_copy();
};

TEST_F(SecondCopy, HasItsOwnTypeInformation) {
    const QOVA_MediaAttribute& audio = *theirs->attributes.front();
    EXPECT_NE(&typeid(audio), &typeid(QOVA_AudioAttribute));
    EXPECT_EQ(typeid(audio), typeid(QOVA_AudioAttribute));
}

TEST_F(SecondCopy, HasEqualAttributes) {
    auto their = theirs->attributes.begin();
    for (const QOVA_MediaAttribute* const our : ours->attributes) {
        expect_equal(*our, **their++);
    }
    expect_unequal(*ours->attributes.front(), *theirs->attributes.back());
}

TEST_F(SecondCopy, HasEqualCryptoLines) {
    expect_equal(*ours->cryptos.front(), *theirs->cryptos.front());
}

TEST_F(SecondCopy, SearchesFindItsAttributes) {
    EXPECT_EQ(theirs->find(CODEC_G711_ULAW), theirs->attributes.front());
    EXPECT_EQ(theirs->find(FT_T38_UDPTL), *std::next(theirs->attributes.begin()));
}

TEST_F(SecondCopy, HasTheSameText) {
    EXPECT_EQ(static_cast<std::string>(*theirs), static_cast<std::string>(*ours));
}

}  // namespace
