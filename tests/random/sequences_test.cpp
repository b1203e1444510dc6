#include "random/sequences.h"

#include <gtest/gtest.h>

#include <iostream>
#include <random>
#include <vector>

TEST(RandomSequences, KeepTheRules) {
    sequences::Counts counts;
    for (unsigned seed = 0; seed < 80; ++seed) {
        std::mt19937 random(seed);
        std::vector<unsigned char> bytes(1000);
        for (unsigned char& byte : bytes) {
            byte = static_cast<unsigned char>(random());
        }
        ASSERT_NO_THROW(sequences::Sequence(bytes.data(), bytes.size(), counts).run()) << seed;
    }
    // Every operation and every outcome occurs.
    EXPECT_EQ(counts.size(), 14U);
    for (const auto& [what, times] : counts) {
        std::cout << what << ": " << times << '\n';
        EXPECT_GT(times, 20U) << what;
    }
}
