#include <gtest/gtest.h>

#include "analysis/FigureText.h"

namespace zeb::analysis {
namespace {

TEST(FigureText, HasTheDigitsThatFitAndSaysAllOfAllAlone) {
    const struct {
        std::string text;
        const char* expected;
    } cases[] = {
        {timeText(0.0), "0 us"},           {timeText(0.5), "0.50 us"},      {timeText(9.0), "9 us"},
        {timeText(42.25), "42.2 us"},      {timeText(2190.5), "2190 us"},   {timeText(9999.0), "9999 us"},
        {timeText(10'000.0), "10.0 ms"},   {timeText(105'573.0), "106 ms"}, {timeText(1e7), "10.0 s"},
        {timeText(-12'340.0), "-12.3 ms"}, {usDigits(105'573.0), "105573"}, {percentText(0.0), "0.0%"},
        {percentText(0.004), "<0.01%"},    {percentText(0.06), "0.06%"},    {percentText(15.46), "15.5%"},
        {percentText(99.94), "99.9%"},     {percentText(99.96), ">99.9%"},  {percentText(100.0), "100.0%"},
        {percentText(-1.25), "-1.2%"},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(text, expected);
    }
}

}  // namespace
}  // namespace zeb::analysis
