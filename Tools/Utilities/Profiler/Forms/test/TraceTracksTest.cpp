#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "forms/trace/TraceTracks.h"

namespace zeb::forms {
namespace {

using Tracks = std::map<std::size_t, std::vector<TimeSpan>>;

// What a viewer makes of a track: by start, and as they come where they start together, each slice stands on
// the one that it is within.
bool canBeStacked(std::vector<TimeSpan> slices, std::size_t maxDepth) {
    std::stable_sort(slices.begin(), slices.end(),
                     [](TimeSpan one, TimeSpan other) { return one.startUs < other.startUs; });
    std::vector<TimeSpan> stack;
    for (const TimeSpan slice : slices) {
        while (!stack.empty() && stack.back().endUs <= slice.startUs) {
            stack.pop_back();
        }
        if (!stack.empty() && stack.back().endUs < slice.endUs) {
            return false;
        }
        stack.push_back(slice);
        if (stack.size() > maxDepth) {
            return false;
        }
    }
    return true;
}

struct Placed {
    Tracks tracks;
    std::size_t leftOut = 0;
};

Placed place(const std::vector<TimeSpan>& slices, Sharing sharing) {
    TrackGroup group(sharing);
    Placed placed;
    for (const TimeSpan slice : slices) {
        if (const auto found = group.place(slice)) {
            EXPECT_EQ(found->isNewTrack, !placed.tracks.contains(found->track));
            placed.tracks[found->track].push_back(slice);
        } else {
            ++placed.leftOut;
        }
    }
    return placed;
}

TEST(TraceTracks, SlicesOfATrackNestOrAreDisjointWhateverTheOrderTheyComeIn) {
    constexpr std::size_t anyDepth = 1'000;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](std::uint32_t limit) { return std::uint64_t{random() % limit}; };
        const std::uint32_t range = 10U << below(8);
        const std::uint32_t longest = 1 + static_cast<std::uint32_t>(below(range));
        std::vector<TimeSpan> slices;
        for (int count = 0; count < 300; ++count) {
            const std::uint64_t start = below(range);
            slices.push_back({start, start + below(longest)});
        }
        if (seed % 3 == 0) {  // as they end, as logs have them
            std::sort(slices.begin(), slices.end(),
                      [](TimeSpan one, TimeSpan other) { return one.endUs < other.endUs; });
        }
        for (const auto& [sharing, depth] :
             {std::pair(Sharing::nested, anyDepth), std::pair(Sharing::disjoint, std::size_t{1})}) {
            const Placed placed = place(slices, sharing);
            std::size_t count = placed.leftOut;
            for (const auto& [track, shown] : placed.tracks) {
                EXPECT_TRUE(canBeStacked(shown, depth)) << "seed " << seed << " track " << track;
                count += shown.size();
            }
            EXPECT_EQ(count, slices.size());
            EXPECT_LE(placed.tracks.size(), TrackGroup::maxTracks);
        }
    }
}

TEST(TraceTracks, ItTakesAsManyTracksAsRunAtTheSameTime) {
    for (const std::size_t atOnce : {1U, 2U, 5U, 64U, 65U, 100U}) {
        std::vector<TimeSpan> slices;
        for (std::size_t count = 0; count < 5'000; ++count) {
            slices.push_back({count * 10, (count + atOnce) * 10});
        }
        const Placed placed = place(slices, Sharing::disjoint);
        EXPECT_EQ(placed.tracks.size(), std::min<std::size_t>(atOnce, 64));
        EXPECT_EQ(placed.leftOut > 0, atOnce > 64);
    }
    EXPECT_EQ(place(std::vector<TimeSpan>(100, {5, 7}), Sharing::disjoint).leftOut, 36U);
}

// The step that holds others ends last, so a log has it behind them.
TEST(TraceTracks, WhatHoldsAllThatCameBeforeJoinsThemHoweverManyTheyAre) {
    std::vector<TimeSpan> slices;
    for (std::uint64_t count = 0; count < 1'000; ++count) {
        slices.push_back({100 + count * 10, 110 + count * 10});
    }
    slices.push_back({99, 10'101});
    slices.push_back({20'000, 20'001});
    slices.push_back({10, 20});
    EXPECT_EQ(place(slices, Sharing::nested).tracks.size(), 1U);
}

TEST(TraceTracks, ASliceThatMayCutAnotherGoesElsewhere) {
    const struct {
        std::vector<TimeSpan> slices;
        std::size_t nested;
        std::size_t disjoint;
    } cases[] = {
        {{{10, 20}, {20, 30}, {0, 10}}, 1, 1},
        {{{10, 20}, {15, 25}}, 2, 2},
        {{{10, 20}, {5, 15}}, 2, 2},
        {{{10, 20}, {12, 18}}, 1, 2},
        {{{10, 20}, {5, 25}}, 1, 2},
        {{{10, 20}, {10, 15}}, 1, 2},  // begin together: the longer one has come first
        {{{10, 15}, {10, 20}}, 2, 2},  // and here it has not
        {{{10, 20}, {10, 20}}, 1, 2},
        {{{10, 20}, {15, 20}}, 1, 2},
        {{{15, 15}, {10, 20}}, 1, 2},  // of no length
        {{{10, 10}, {10, 20}, {20, 20}}, 1, 1},
        {{{10, 20}, {10, 10}}, 1, 2},
        {{{10, 20}, {30, 40}, {18, 32}}, 2, 2},
        {{{10, 20}, {30, 40}, {20, 30}}, 1, 1},
    };
    for (const auto& [slices, nested, disjoint] : cases) {
        EXPECT_EQ(place(slices, Sharing::nested).tracks.size(), nested) << slices.back().startUs;
        EXPECT_EQ(place(slices, Sharing::disjoint).tracks.size(), disjoint) << slices.back().startUs;
    }
}

}  // namespace
}  // namespace zeb::forms
