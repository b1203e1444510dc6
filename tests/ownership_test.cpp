// qova/ownership.h. After every test, main.cpp checks that nothing leaks.

#include "qova/ownership.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <new>

#include "allocations.h"
#include "building_blocks.h"

TEST(Ownership, AppendsAGivenObject) {
    QOVA_Media media;
    auto audio = std::make_unique<QOVA_AudioAttribute>();
    const QOVA_AudioAttribute* const object = audio.get();
    EXPECT_EQ(&qova::append(media.attributes, std::move(audio)), object);
    ASSERT_EQ(media.attributes.size(), 1U);
    EXPECT_EQ(media.attributes.back(), object);
}

TEST(Ownership, AppendsANewObject) {
    QOVA_Capability capability;
    qova::append<QOVA_Media>(capability.filteredMedia);
    const QOVA_Media& second = qova::append<QOVA_Media>(capability.filteredMedia);
    ASSERT_EQ(capability.filteredMedia.size(), 2U);
    EXPECT_EQ(capability.filteredMedia.back(), &second);
}

TEST(Ownership, FailedAppendKeepsTheList) {
    QOVA_Media media;
    qova::append<QOVA_Crypto>(media.cryptos);
    auto crypto = std::make_unique<QOVA_Crypto>();
    const allocations::Failure failure(1);
    EXPECT_THROW(qova::append(media.cryptos, std::move(crypto)), std::bad_alloc);
    EXPECT_EQ(media.cryptos.size(), 1U);
}

TEST(Ownership, EraseReturnsTheNextElement) {
    QOVA_Media media;
    const auto first =
        media.cryptos.insert(media.cryptos.end(), std::make_unique<QOVA_Crypto>().release());
    const QOVA_Crypto& second = qova::append<QOVA_Crypto>(media.cryptos);
    const auto next = qova::erase(media.cryptos, first);
    ASSERT_EQ(media.cryptos.size(), 1U);
    EXPECT_EQ(*next, &second);
    EXPECT_EQ(qova::erase(media.cryptos, next), media.cryptos.end());
}

TEST(Ownership, ReplacesAnOwnedObject) {
    QOVA_Media media;
    qova::replace(media.address, std::make_unique<IPAddress>(ip("10.0.0.1")));
    EXPECT_EQ(media.address->ToString(), "10.0.0.1");
}

TEST(Ownership, ReplacesAnObjectByNull) {
    QOVA_Media media;
    qova::replace(media.opusParam, std::unique_ptr<Sdp::Sdp_Opus_Param>());
    EXPECT_EQ(media.opusParam, nullptr);
}
