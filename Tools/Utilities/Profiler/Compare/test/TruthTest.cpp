// What the comparison says of logs of which the truth is known. ZEB_TRUTH_SEEDS=100 takes a hundred seeds
// instead of a few, and the test prints its figures: docs/compare.md has them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "analysis/MakeRun.h"
#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"
#include "samplelog/NetworkLog.h"
#include "support/TestFiles.h"

namespace zeb::compare {
namespace {

using analysis::GateOutcome;
using samplelog::NetworkOptions;
using samplelog::SlowerLayer;

constexpr std::uint32_t fourPercent = 40'000;
const std::string slowedLayer = "conv_pw_3";

int seedCount() {
    const char* const text = std::getenv("ZEB_TRUTH_SEEDS");
    return text == nullptr ? 20 : std::max(1, std::atoi(text));
}

struct LogSet {
    NetworkOptions changed = {};
    std::uint64_t logs = 5;  // a side
    std::uint32_t driftMillionths = 20'000;
    bool sharesDrift = false;  // the n-th logs of both sides
    bool isPaired = false;
};

class Truth : public testing::Test {
protected:
    analysis::RunSummary runOf(const NetworkOptions& options) const {
        std::ofstream out(files_.path("run.zlog"), std::ios::binary);
        writeNetworkLog(out, options);
        out.close();
        const auto run = analysis::makeRun(files_.path("run.zlog"), profiling::VisibilityLevel{127});
        return analysis::summarize(run.value());
    }

    // Logs of the designed network against those of a changed one, all of seeds of their own.
    analysis::Comparison comparisonOf(const LogSet& setup, std::uint64_t seed) const {
        std::vector<analysis::RunSummary> sides[2];
        for (const std::uint64_t side : {0U, 1U}) {
            for (std::uint64_t log = 0; log < setup.logs; ++log) {
                NetworkOptions options = side == 0 ? NetworkOptions{} : setup.changed;
                options.driftMillionths = setup.driftMillionths;
                options.seed = seed * 1000 + side * 500 + log;
                if (setup.sharesDrift) {
                    options.driftSeed = seed * 1000 + log;
                }
                sides[side].push_back(runOf(options));
            }
        }
        return analysis::compare(sides[0], sides[1], {.isPaired = setup.isPaired});
    }

    // Counts the seeds whose comparison is as it is asked for.
    template <typename Is>
    int countSeeds(const std::string& what, const LogSet& setup, Is is) const {
        int count = 0;
        for (int seed = 1; seed <= seeds_; ++seed) {
            count += is(comparisonOf(setup, static_cast<std::uint64_t>(seed))) ? 1 : 0;
        }
        std::cout << what << ": " << count << " of " << seeds_ << " seeds\n";
        return count * 100;
    }

    const int seeds_ = seedCount();

private:
    test::TempDir files_;
};

bool isSlower(const analysis::Comparison& comparison, double maxGrowth) {
    return judge(comparison, {.maxGrowth = maxGrowth}).outcome == GateOutcome::slower;
}

bool isMarked(const analysis::Comparison& comparison, const std::vector<std::string>& layers) {
    std::vector<std::string> marked;
    for (const auto& layer : comparison.graphs.at(0).layers) {
        if (layer.verdict != analysis::Verdict::unsure && layer.verdict != analysis::Verdict::same) {
            marked.push_back(layer.name);
        }
    }
    return marked == layers;
}

TEST_F(Truth, NoChangeSeldomFails) {
    EXPECT_LE(countSeeds("no change fails --fail-above 0", {},
                         [](const auto& comparison) { return isSlower(comparison, 0.0); }),
              6 * seeds_);
}

TEST_F(Truth, ATenthSlowerFailsForFivePercentAndIsNoFaultOfALayer) {
    const LogSet setup{.changed = {.slowerMillionths = 100'000}};
    EXPECT_GE(countSeeds("10 % slower fails --fail-above 5", setup,
                         [](const auto& comparison) { return isSlower(comparison, 0.05); }),
              95 * seeds_);
    EXPECT_GE(countSeeds("10 % slower fails no layer", setup,
                         [](const auto& comparison) {
                             return judge(comparison, {.maxLayerGrowth = 0.05}).outcome == GateOutcome::pass;
                         }),
              100 * seeds_);
}

TEST_F(Truth, ASlowerLayerIsMarkedAndNoOther) {
    EXPECT_GE(countSeeds("a layer slowed by 30 % is marked and no other",
                         {.changed = {.slowerLayer = SlowerLayer{slowedLayer, 300'000}}},
                         [](const auto& comparison) { return isMarked(comparison, {slowedLayer}); }),
              90 * seeds_);
}

TEST_F(Truth, OneLogASideMarksALayerThatIsFarBeyondTheOthers) {
    const LogSet plain{.logs = 1, .driftMillionths = fourPercent};
    EXPECT_LE(countSeeds("one log a side, no change: a layer is marked", plain,
                         [](const auto& comparison) { return !isMarked(comparison, {}); }),
              10 * seeds_);
    LogSet slower = plain;
    slower.changed.slowerLayer = SlowerLayer{slowedLayer, 400'000};
    EXPECT_GE(countSeeds("one log a side, a layer slowed by 40 % is marked and no other", slower,
                         [](const auto& comparison) { return isMarked(comparison, {slowedLayer}); }),
              90 * seeds_);
}

TEST_F(Truth, PairsThatShareTheirDriftShowWhatItHides) {
    LogSet setup{.changed = {.slowerMillionths = 30'000},
                 .logs = 8,
                 .driftMillionths = fourPercent,
                 .sharesDrift = true,
                 .isPaired = true};
    const auto isFound = [](const auto& comparison) { return isSlower(comparison, 0.0); };
    EXPECT_GE(countSeeds("8 pairs, 3 % slower under a shared drift of 4 % is found", setup, isFound),
              95 * seeds_);
    setup.isPaired = false;
    EXPECT_LE(countSeeds("the same, not paired", setup, isFound), 30 * seeds_);
    setup.isPaired = true;
    setup.changed = {};
    EXPECT_LE(countSeeds("8 pairs, no change fails --fail-above 0", setup, isFound), 10 * seeds_);
}

}  // namespace
}  // namespace zeb::compare
