// Numbers as text, and arithmetic that stays within its type.

#include <gtest/gtest.h>

#include <limits>

#include "text/NumberText.h"
#include "text/Saturation.h"

namespace zeb::profiling {
namespace {

constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();

TEST(NumberText, IsFixedPointAtEverySize) {
    const struct {
        double value;
        int digits;
        std::string text;
    } cases[] = {
        {0.0, 0, "0"},
        {-0.0, 3, "-0.000"},
        {2.5, 0, "2"},  // halves go to the even digit
        {3.5, 0, "4"},
        {0.125, 2, "0.12"},
        {0.9996, 3, "1.000"},
        {-1234567.875, 2, "-1234567.88"},
        {1e-300, 9, "0.000000000"},
        {1e22, 1, "10000000000000000000000.0"},
        {std::numeric_limits<double>::infinity(), 2, "inf"},
    };
    for (const auto& [value, digits, text] : cases) {
        EXPECT_EQ(fixedPoint(value, digits), text);
    }
    const std::string longest = fixedPoint(std::numeric_limits<double>::lowest(), 9);
    EXPECT_EQ(longest.size(), 1U + 309U + 1U + 9U);
    EXPECT_EQ(longest.substr(0, 8), "-1797693");
}

TEST(Saturation, CutsToWholeAndNeverOverflows) {
    EXPECT_EQ(cutToWhole(1.999), 1U);
    EXPECT_EQ(cutToWhole(18446744073709549568.0), 18446744073709549568U);
    EXPECT_EQ(cutToWhole(18446744073709551616.0), largest);
    EXPECT_EQ(cutToWhole(std::numeric_limits<double>::infinity()), largest);
    EXPECT_EQ(cutToWhole(std::numeric_limits<double>::quiet_NaN()), largest);
}

TEST(Saturation, GivesNoNegativeDifference) {
    EXPECT_EQ(differenceOrZero(largest, 1), largest - 1);
    EXPECT_EQ(differenceOrZero(7, 7), 0U);
    EXPECT_EQ(differenceOrZero(0, largest), 0U);
}

}  // namespace
}  // namespace zeb::profiling
