// Checks a comparison from both sides.

#ifndef QOVA_TESTS_EQUALITY_H
#define QOVA_TESTS_EQUALITY_H

#include <gtest/gtest.h>

template <typename Left, typename Right>
void expect_equal(const Left& left, const Right& right) {
    EXPECT_TRUE(left == right) << "in this order";
    EXPECT_TRUE(right == left) << "in reverse order";
}

template <typename Left, typename Right>
void expect_unequal(const Left& left, const Right& right) {
    EXPECT_FALSE(left == right) << "in this order";
    EXPECT_FALSE(right == left) << "in reverse order";
}

#endif
