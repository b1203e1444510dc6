// The library and an independent model of it, side by side through random sequences of operations.

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "model/driver.h"
#include "model/generator.h"

namespace {

std::vector<unsigned char> read(const std::filesystem::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string bytes = content.str();
    return {bytes.begin(), bytes.end()};
}

// Counts, and prints, what the driver carries out.
class Model : public testing::Test {
protected:
    unsigned long long operations() const { return model_driver::operations() - operations_before; }
    unsigned long long failed() const { return model_driver::failed_operations() - failed_before; }

    void TearDown() override {
        std::cout << operations() << " operations, an allocation failed in " << failed()
                  << " of them\n";
    }

private:
    const unsigned long long operations_before = model_driver::operations();
    const unsigned long long failed_before = model_driver::failed_operations();
};

TEST_F(Model, AgreesWithTheLibraryOnTheCorpusOfTheFuzzer) {
    for (const auto& entry : std::filesystem::directory_iterator(QOVA_MODEL_CORPUS)) {
        const std::vector<unsigned char> bytes = read(entry.path());
        ASSERT_EQ(model_driver::run(bytes.data(), bytes.size()), "") << entry.path();
    }
    EXPECT_GT(operations(), 1000U);
    EXPECT_GT(failed(), 10U);
}

TEST_F(Model, AgreesWithTheLibraryOnRandomInputs) {
    for (std::uint32_t seed = 0; seed < 400; ++seed) {
        std::mt19937 random(seed);
        const std::vector<unsigned char> bytes = model::random_bytes(random, 1500);
        ASSERT_EQ(model_driver::run(bytes.data(), bytes.size()), "") << "seed " << seed;
    }
    EXPECT_GT(operations(), 10000U);
    EXPECT_GT(failed(), 100U);
}

}  // namespace
