#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "analysis/runs/LevelSteps.h"

namespace zeb::analysis {
namespace {

using Search = RankSumChance::Search;
using Times = std::vector<double>;
using LevelAt = std::function<double(int)>;

// A time a version around a level, with independent noise of 2 %.
Times timesOf(int versions, const LevelAt& levelAt, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::normal_distribution<double> noise(0.0, 0.02);
    Times times;
    for (int version = 0; version < versions; ++version) {
        times.push_back(2000.0 * levelAt(version) * std::exp(noise(random)));
    }
    return times;
}

// One series among others without a step, as a graph's layers are.
SeriesCourse courseAmongOthers(const LevelAt& levelAt, std::uint64_t seed, RankSumChance& chance) {
    constexpr std::uint64_t others = 30;
    std::vector<Times> all = {timesOf(60, levelAt, seed)};
    for (std::uint64_t other = 1; other <= others; ++other) {
        all.push_back(timesOf(
            60, [](int) { return 1.0; }, seed * 1000 + other));
    }
    return coursesOf(all, chance).front();
}

std::string shapeOf(const SeriesCourse& course) {
    if (course.driftShare) {
        return "drift";
    }
    return std::to_string(course.steps.size()) + (course.steps.size() == 1 ? " step" : " steps");
}

TEST(LevelSteps, ACourseIsSeenAsWhatItIs) {
    const struct {
        std::string name;
        LevelAt levelAt;
        std::string shape;
        int atLeast;  ///< of 40 seeds
        std::vector<std::size_t> firsts;
    } cases[] = {
        {"no change", [](int) { return 1.0; }, "0 steps", 39, {}},
        {"a step up", [](int version) { return version < 30 ? 1.0 : 1.05; }, "1 step", 38, {30}},
        {"a step down", [](int version) { return version < 45 ? 1.0 : 0.95; }, "1 step", 38, {45}},
        {"two steps",
         [](int version) { return version < 20   ? 1.0
                                  : version < 40 ? 1.05
                                                 : 1.1025; },
         "2 steps",
         34,
         {20, 40}},
        {"up and down again",
         [](int version) { return version < 20 || version >= 40 ? 1.0 : 1.05; },
         "2 steps",
         36,
         {20, 40}},
        {"a single spike", [](int version) { return version == 30 ? 1.5 : 1.0; }, "0 steps", 39, {}},
        {"a ramp", [](int version) { return std::pow(1.003, version); }, "drift", 34, {}},
    };
    RankSumChance chance;
    for (const auto& [name, levelAt, shape, atLeast, firsts] : cases) {
        int seen = 0;
        int near = 0;
        for (std::uint64_t seed = 1; seed <= 40; ++seed) {
            const SeriesCourse course = courseAmongOthers(levelAt, seed, chance);
            if (shapeOf(course) != shape) {
                continue;
            }
            ++seen;
            bool areNear = true;
            for (std::size_t step = 0; step < firsts.size(); ++step) {
                const auto distance =
                    static_cast<double>(course.steps[step].first) - static_cast<double>(firsts[step]);
                areNear = areNear && std::abs(distance) <= 2.0;
            }
            near += areNear ? 1 : 0;
        }
        EXPECT_GE(seen, atLeast) << name;
        EXPECT_GE(near, seen * 8 / 10) << name;
    }
}

SeriesCourse courseOf(const Times& times) {
    RankSumChance chance;
    return coursesOf(std::vector<Times>{times}, chance).front();
}

TEST(LevelSteps, AStepHasItsChangeAndWhatIsLeft) {
    Times times;
    for (int version = 0; version < 24; ++version) {
        times.push_back((version < 12 ? 1000.0 : 1200.0) + (version % 2 == 0 ? 5.0 : -5.0));
    }
    const SeriesCourse course = courseOf(times);
    ASSERT_EQ(course.steps.size(), 1U);
    EXPECT_EQ(course.steps[0].first, 12U);
    EXPECT_NEAR(course.steps[0].change, 0.2, 0.005);
    ASSERT_TRUE(course.steps[0].interval);
    EXPECT_TRUE(course.steps[0].interval->holds(0.2));
    EXPECT_LT(course.steps[0].p, 0.001);
    EXPECT_EQ(course.newestLevel, 12U);
    EXPECT_NEAR(course.spreadShare, 1.4826 * 5.0 / 1100.0, 0.001);
    EXPECT_LT(course.neighbourCorrelation, -0.8) << "neighbours lie on either side of their level in turns";
}

TEST(LevelSteps, RelatedNeighboursAreTold) {
    Times times;
    for (int version = 0; version < 60; ++version) {
        times.push_back(1000.0 + 10.0 * std::sin(version / 3.0));
    }
    EXPECT_TRUE(courseOf(times).areNeighboursRelated());
    EXPECT_FALSE(courseOf(timesOf(
                              60, [](int) { return 1.0; }, 5))
                     .areNeighboursRelated());
}

TEST(LevelSteps, WhatHasNoLogarithmOrTooFewVersionsShowsNothing) {
    const Times stepped = {1, 1.01, 1.02, 1.03, 1.04, 9, 9.1, 9.2, 9.3, 9.4};
    const struct {
        std::string name;
        Times times;
        std::size_t steps;
    } cases[] = {
        {"ten versions", stepped, 1},
        {"eight, of which two orders in 70 look like it", {stepped.begin() + 1, stepped.end() - 1}, 0},
        {"seven", {stepped.begin() + 1, stepped.end() - 2}, 0},
        {"none", {}, 0},
        {"all equal", Times(20, 7.0), 0},
        {"a 0", {0, 1, 1, 1, 1, 9, 9, 9, 9, 9}, 0},
        {"one that is endless", {1, 1, 1, 1, 9, 9, 9, 9, std::numeric_limits<double>::infinity(), 9}, 0},
    };
    for (const auto& [name, times, steps] : cases) {
        EXPECT_EQ(courseOf(times).steps.size(), steps) << name;
    }
}

// The smallest p of eight versions is that of 2 of their 40,320 orders, some 2 in 70 for the split in the
// middle alone.
TEST(LevelSteps, ChanceKnowsItsExactValuesAndFallsBeyondThem) {
    RankSumChance chance;
    const double apart = 16.0 / 2.0 / std::sqrt(4.0 * 4.0 * 9.0 / 12.0);
    EXPECT_NEAR(chance.of(apart, 8, Search::splits), 2.0 / 70.0, 0.005);
    EXPECT_EQ(chance.of(0.0, 60, Search::splits), 1.0);
    EXPECT_NEAR(chance.thresholdOf(0.02, 60, Search::splits), 3.14, 0.06);
    EXPECT_GT(chance.thresholdOf(0.02, 60, Search::windows), chance.thresholdOf(0.02, 60, Search::splits));
    double last = 1.0;
    for (double rankSum = 2.0; rankSum < 6.0; rankSum += 0.05) {
        const double p = chance.of(rankSum, 60, Search::splits);
        EXPECT_LE(p, last * 1.0001) << rankSum;
        EXPECT_GT(p, 0.0) << rankSum;
        last = p;
    }
}

TEST(LevelSteps, WhatMayHideShrinksWithTheNewestVersions) {
    RankSumChance chance;
    EXPECT_FALSE(hiddenStep(60, 3, 0.02, 40, chance)) << "fewer than any level has";
    EXPECT_FALSE(hiddenStep(6, 4, 0.02, 40, chance));
    const auto twenty = hiddenStep(60, 20, 0.02, 40, chance);
    const auto thirty = hiddenStep(60, 30, 0.02, 40, chance);
    ASSERT_TRUE(twenty && thirty);
    EXPECT_GT(*twenty, *thirty);
    EXPECT_NEAR(*hiddenStep(60, 30, 0.04, 40, chance), 2.0 * *thirty, 0.003);
}

}  // namespace
}  // namespace zeb::analysis
