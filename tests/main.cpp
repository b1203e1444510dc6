#include <gtest/gtest.h>

#include "allocations.h"

namespace {

// Every test must free what it allocates.
class LeakCheck : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& /*info*/) override { before = allocations::live(); }

    void OnTestEnd(const testing::TestInfo& info) override {
        if (info.result()->Passed()) {
            EXPECT_EQ(allocations::live(), before) << "live blocks after the test, and before";
        }
    }

    std::size_t before = 0;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new LeakCheck);
    return RUN_ALL_TESTS();
}
