// The statistics of two samples against the values that SciPy 1.10.1 gives: mannwhitneyu (exact without ties,
// else asymptotic) and ttest_ind(equal_var=False) on numpy.log of the times, special.betainc. An interval is
// that of the shifts by which SciPy's test rejects no longer.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "analysis/Samples.h"

namespace zeb::analysis {
namespace {

using Values = std::vector<double>;

void expectNear(double value, double expected, double share = 1e-10) {
    EXPECT_NEAR(value, expected, std::abs(expected) * share + 1e-300);
}

TEST(Samples, TheChangeByRanksIsThatOfSciPy) {
    const struct {
        std::string name;
        Values base;
        Values changed;
        double change;
        double low;
        double high;
        double p;
    } cases[] = {
        {"overlapping",
         {10.1, 9.8, 10.4, 10.0, 9.9},
         {10.2, 10.6, 9.95, 10.8, 10.3},
         0.030303030303030304,
         -0.014851485148514865,
         0.08163265306122437,
         0.15079365079365079},
        {"apart",
         {100, 101, 103, 102, 99},
         {110, 112, 111, 114, 113},
         0.10891089108910812,
         0.07843137254902044,
         0.14,
         0.007936507936507936},
        {"fewest values",
         {5.0, 5.2, 5.1, 5.3},
         {4.0, 4.1, 4.2, 4.3},
         -0.19419526746963946,
         -0.24528301886792453,
         -0.14,
         0.02857142857142857},
        {"uneven",
         {20, 21, 22, 23, 24, 25, 26},
         {22.5, 27, 28, 30},
         0.1702842464082408,
         -0.021739130434782608,
         0.36363636363636365,
         0.07272727272727272},
        {"ties", {10, 10, 11, 12, 12}, {12, 13, 13, 14, 15}, 0.2, 1.0 / 12.0, 0.4, 0.019243565799074828},
        {"ties of few", {10, 10, 11, 11}, {10, 11, 11, 11}, 0.0, -1.0 / 11.0, 0.1, 0.6084078002329985},
        {"all equal a side",
         {7, 7, 7, 7},
         {8, 8, 8, 8},
         1.0 / 7.0,
         1.0 / 7.0,
         1.0 / 7.0,
         0.013123806784370716},
        {"all equal", {7, 7, 7, 7}, {7, 7, 7, 7}, 0.0, 0.0, 0.0, 1.0},
    };
    for (const auto& [name, base, changed, change, low, high, p] : cases) {
        SCOPED_TRACE(name);
        const auto shift = shiftBetween(base, changed);
        ASSERT_TRUE(shift && shift->interval);
        EXPECT_NEAR(shift->change, change, 1e-12);
        EXPECT_NEAR(shift->interval->low, low, 1e-12);
        EXPECT_NEAR(shift->interval->high, high, 1e-12);
        expectNear(shift->p, p);
        const auto back = shiftBetween(changed, base);
        expectNear(back->p, p);
        EXPECT_NEAR((1.0 + back->interval->high) * (1.0 + low), 1.0, 1e-12);
    }
}

TEST(Samples, LargeSamplesAreExactWhereThatIsFeasible) {
    Values base;
    Values changed;
    for (int position = 0; position < 60; ++position) {
        base.push_back(100.0 + position * 37 % 61 * 0.5);
        changed.push_back(102.0 + position * 29 % 67 * 0.45);
    }
    expectNear(shiftBetween(base, changed)->p, 0.3447781143356339, 1e-9);  // 7 ties
    base.resize(20);
    changed.resize(25);
    for (double& value : changed) {
        value += 0.013;
    }
    expectNear(shiftBetween(base, changed)->p, 0.4344686863228608);
    Values many(400);
    for (std::size_t position = 0; position < many.size(); ++position) {
        many[position] = 100.0 + static_cast<double>(position * 7919 % 400);
    }
    const auto shift = shiftBetween(many, many);
    EXPECT_EQ(shift->p, 1.0);
    EXPECT_TRUE(shift->interval->holds(0.0));
}

TEST(Samples, ThreeValuesASideAreTooFewForAnInterval) {
    const auto shift = shiftBetween(Values{1, 2, 3}, Values{7, 8, 9});
    EXPECT_NEAR(shift->p, 0.1, 1e-12);
    EXPECT_FALSE(shift->interval);
}

TEST(Samples, WelchsTestIsThatOfSciPy) {
    const struct {
        Values base;
        Values changed;
        double p;
    } cases[] = {
        {{10.1, 9.8, 10.4, 10.0, 9.9}, {10.2, 10.6, 9.95, 10.8, 10.3}, 0.11042455056833862},
        {{100, 101, 103, 102, 99}, {110, 112, 111, 114, 113}, 4.60850696205491e-06},
        {{5.0, 5.2, 5.1, 5.3}, {4.0, 4.1, 4.2, 4.3}, 4.960015556670558e-05},
        {{20, 21, 22, 23, 24, 25, 26}, {22.5, 27, 28, 30}, 0.08147601620110778},
        {{10, 10, 11, 12, 12}, {12, 13, 13, 14, 15}, 0.007507025686078553},
        {{7, 7, 7, 7}, {8, 8, 8, 8}, 0.0},
        {{0.1, 0.1, 0.1}, {0.1, 0.1, 0.1}, 1.0},
    };
    for (const auto& [base, changed, p] : cases) {
        expectNear(welchP(base, changed).value(), p, 1e-9);
        expectNear(welchP(changed, base).value(), p, 1e-9);
    }
}

// Values of an enumeration of all signs, and of an integral of the density of t.
TEST(Samples, TheTestsOfPairsAreThoseOfAnEnumeration) {
    const struct {
        std::string name;
        Values base;
        Values changed;
        double change;
        std::optional<Interval> interval;
        double p;
        double pOfT;
    } cases[] = {
        {"overlapping",
         {10.1, 9.8, 10.4, 10.0, 9.9, 10.3},
         {10.2, 10.6, 9.95, 10.8, 10.3, 10.9},
         0.0443625181453664,
         Interval{-0.04326923076923084, 0.08163265306122436},
         0.15625,
         0.11770774606230248},
        {"apart",
         {100, 101, 103, 102, 99, 100.5},
         {110, 112, 111, 114, 113, 109},
         0.10444645872854336,
         Interval{0.07766990291262134, 0.14141414141414144},
         0.03125,
         8.111649787445167e-05},
        {"too few for an interval",
         {5.0, 5.2, 5.1, 5.3, 4.9},
         {4.0, 4.1, 4.2, 4.3, 4.4},
         -0.18832055008657217,
         {},
         0.0625,
         0.001048417414192956},
        {"an equal pair",
         {20, 21, 22, 23, 24, 25, 26, 27},
         {20, 22.5, 21, 27, 24, 28, 30, 26.5},
         0.05830052442583629,
         Interval{-0.02299157908160557, 0.1466397030870911},
         0.15625,
         0.10348816923212512},
        {"equal ratios",
         {10, 10, 20, 20, 40, 40, 80, 80},
         {11, 9, 22, 24, 44, 36, 96, 80},
         0.04880884817015159,
         Interval{-0.05131670194948619, 0.14891252930760576},
         0.484375,
         0.2165110045074301},
        {"all alike",
         {7, 7, 7, 7, 7, 7},
         {8, 8, 8, 8, 8, 8},
         1.0 / 7.0,
         Interval{1.0 / 7.0, 1.0 / 7.0},
         0.03125,
         0.0},
        {"no change", {7, 8, 9, 7, 8, 9}, {7, 8, 9, 7, 8, 9}, 0.0, Interval{0.0, 0.0}, 1.0, 1.0},
    };
    for (const auto& [name, base, changed, change, interval, p, pOfT] : cases) {
        SCOPED_TRACE(name);
        const auto shift = shiftOfPairs(base, changed);
        ASSERT_TRUE(shift);
        EXPECT_NEAR(shift->change, change, 1e-12);
        EXPECT_NEAR(shift->p, p, 1e-12);
        EXPECT_NEAR(pairedP(base, changed).value(), pOfT, 1e-8);
        ASSERT_EQ(shift->interval.has_value(), interval.has_value());
        if (interval) {
            EXPECT_NEAR(shift->interval->low, interval->low, 1e-12);
            EXPECT_NEAR(shift->interval->high, interval->high, 1e-12);
        }
        EXPECT_NEAR(shiftOfPairs(changed, base)->p, p, 1e-12);
    }
    Values base;
    Values changed;
    for (int pair = 0; pair < 51; ++pair) {  // the normal approximation, beside the exact test of 50
        base.push_back(100.0 + pair * 37 % 61);
        changed.push_back(base.back() * (1.002 + 0.01 * std::sin(pair * 1.7)));
    }
    const auto many = shiftOfPairs(base, changed);
    base.pop_back();
    changed.pop_back();
    const auto exact = shiftOfPairs(base, changed);
    EXPECT_NEAR(many->p, exact->p, 0.05);
    EXPECT_NEAR(many->interval->low, exact->interval->low, 3e-4);
    EXPECT_NEAR(many->interval->high, exact->interval->high, 3e-4);
}

// The lower fifth of the chi-square distribution with 8, 3 degrees of freedom is 4.594, 1.005.
TEST(Samples, TheSpreadOfFewLogsIsToldLarge) {
    const double step = std::exp(0.01);
    const Values five{100, 100 * step, 100 / step, 100 * step * step, 100 / step / step};  // variance 2.5e-4
    EXPECT_NEAR(largeSpread(five, five, false).value(), std::sqrt(2.5e-4 * 8 / 4.594), 1e-4);
    EXPECT_NEAR(largeSpread(Values{7, 7, 7, 7}, std::span(five).first(4), true).value(),
                std::sqrt(5e-4 / 1.005), 5e-4);  // variance 5 / 3 of the square of a step
    EXPECT_EQ(largeSpread(Values{7, 7}, Values{8, 8}, false).value(), 0.0);
    EXPECT_FALSE(largeSpread(Values{7}, Values{8, 8}, false));
    EXPECT_FALSE(largeSpread(Values{7, 0}, Values{8, 8}, false));
}

TEST(Samples, TheIncompleteBetaFunctionIsThatOfSciPy) {
    const struct {
        double a;
        double b;
        double x;
        double value;
    } cases[] = {
        {0.5, 0.5, 0.1, 0.2048327646991335},
        {2.5, 0.5, 0.3, 0.01892712407194565},
        {4, 0.5, 0.01, 2.74538135142481e-09},
        {4, 0.5, 0.999, 0.9308943095126206},
        {50, 0.5, 0.97, 0.08169933372182267},
        {1000, 0.5, 0.9999, 0.6547531308976513},
        {0.5, 4, 0.2, 0.8049844718999244},
        {3.7, 0.5, 1e-09, 1.4213329282737657e-34},
        {3, 2, 0.0, 0.0},
        {3, 2, 1.0, 1.0},
    };
    for (const auto& [a, b, x, value] : cases) {
        expectNear(incompleteBeta(a, b, x), value);
    }
}

TEST(Samples, ValuesWithoutALogarithmTellNoChange) {
    const Values good{1, 2, 3, 4};
    const double infinite = std::numeric_limits<double>::infinity();
    for (const Values& bad : {Values{}, Values{1, 2, 0, 3}, Values{-1, 2, 3, 4}, Values{infinite, 2, 3, 4}}) {
        EXPECT_FALSE(shiftBetween(bad, good));
        EXPECT_FALSE(shiftBetween(good, bad));
        EXPECT_FALSE(welchP(bad, good));
        EXPECT_FALSE(welchP(good, bad));
        EXPECT_FALSE(geometricChange(good, bad));
    }
    EXPECT_FALSE(shiftOfPairs(good, Values{1, 2, 0, 3}));
    EXPECT_FALSE(pairedP(Values{1, 2, 0, 3}, good));
    EXPECT_NEAR(geometricChange(Values{1, 4}, Values{3, 3, 3}).value(), 0.5, 1e-12);
    EXPECT_FALSE(welchP(Values{1}, good));
}

TEST(Samples, HolmTakesTheSmallestTimesTheirNumber) {
    const Values corrected = holm(Values{0.01, 0.04, 0.03, 0.005, 0.9});
    const Values expected{0.04, 0.09, 0.09, 0.025, 0.9};
    ASSERT_EQ(corrected.size(), expected.size());
    for (std::size_t position = 0; position < expected.size(); ++position) {
        EXPECT_NEAR(corrected[position], expected[position], 1e-12);
    }
    EXPECT_EQ(holm(Values{0.6, 0.7}), (Values{1.0, 1.0}));
    EXPECT_TRUE(holm(Values{}).empty());
}

TEST(Samples, TheRangeOfValues) {
    const Range even = rangeOf(Values{4, 1, 3, 2});
    EXPECT_EQ(even.median, 2.5);
    EXPECT_EQ(even.min, 1.0);
    EXPECT_EQ(even.max, 4.0);
    EXPECT_EQ(rangeOf(Values{}).max, 0.0);
}

}  // namespace
}  // namespace zeb::analysis
