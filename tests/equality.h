// Every equality of the model is asked from both sides.

#ifndef QOVA_TESTS_EQUALITY_H
#define QOVA_TESTS_EQUALITY_H

#include <gtest/gtest.h>

template <typename Left, typename Right>
void expect_equal(const Left& left, const Right& right) {
    EXPECT_TRUE(left == right) << "the left operand asked";
    EXPECT_TRUE(right == left) << "the right operand asked";
}

template <typename Left, typename Right>
void expect_unequal(const Left& left, const Right& right) {
    EXPECT_FALSE(left == right) << "the left operand asked";
    EXPECT_FALSE(right == left) << "the right operand asked";
}

#endif
