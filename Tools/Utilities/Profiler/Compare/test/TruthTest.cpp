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

#include "analysis/Comparison.h"
#include "analysis/Gate.h"
#include "analysis/MakeRun.h"
#include "samplelog/NetworkLog.h"
#include "support/TestFiles.h"

namespace zeb::compare {
namespace {

using analysis::GateOutcome;
using samplelog::NetworkOptions;
using samplelog::SlowerLayer;

constexpr std::uint64_t logsASide = 5;
constexpr std::uint32_t driftMillionths = 20'000;
const std::string slowedLayer = "conv_pw_3";

int seedCount() {
    const char* const text = std::getenv("ZEB_TRUTH_SEEDS");
    return text == nullptr ? 20 : std::max(1, std::atoi(text));
}

class Truth : public testing::Test {
protected:
    analysis::RunSummary runOf(NetworkOptions options, std::uint64_t seed) const {
        options.seed = seed;
        options.driftMillionths = driftMillionths;
        std::ofstream out(files_.path("run.zlog"), std::ios::binary);
        writeNetworkLog(out, options);
        out.close();
        const auto run = analysis::makeRun(files_.path("run.zlog"), profiling::VisibilityLevel{127});
        return analysis::summarize(run.value());
    }

    // Five logs of the designed network against five of a changed one, all of seeds of their own.
    analysis::Comparison comparisonOf(const NetworkOptions& changed, std::uint64_t seed) const {
        std::vector<analysis::RunSummary> base;
        std::vector<analysis::RunSummary> now;
        for (std::uint64_t log = 0; log < logsASide; ++log) {
            base.push_back(runOf({}, seed * 1000 + log));
            now.push_back(runOf(changed, seed * 1000 + 500 + log));
        }
        return analysis::compare(base, now);
    }

    // Counts the seeds whose comparison is as it is asked for.
    template <typename Is>
    int countSeeds(const std::string& what, const NetworkOptions& changed, Is is) const {
        int count = 0;
        for (int seed = 1; seed <= seeds_; ++seed) {
            count += is(comparisonOf(changed, static_cast<std::uint64_t>(seed))) ? 1 : 0;
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

TEST_F(Truth, NoChangeSeldomFails) {
    EXPECT_LE(countSeeds("no change fails --fail-above 0", {},
                         [](const auto& comparison) { return isSlower(comparison, 0.0); }),
              6 * seeds_);
}

TEST_F(Truth, ATenthSlowerFailsForFivePercent) {
    EXPECT_GE(countSeeds("10 % slower fails --fail-above 5", {.slowerMillionths = 100'000},
                         [](const auto& comparison) { return isSlower(comparison, 0.05); }),
              95 * seeds_);
}

TEST_F(Truth, ASlowerLayerIsMarkedAndNoOther) {
    EXPECT_GE(countSeeds("a layer slowed by 30 % is marked and no other",
                         {.slowerLayer = SlowerLayer{slowedLayer, 300'000}},
                         [](const auto& comparison) {
                             std::vector<std::string> marked;
                             for (const auto& layer : comparison.graphs.at(0).layers) {
                                 if (layer.verdict != analysis::Verdict::unsure) {
                                     marked.push_back(layer.name);
                                 }
                             }
                             return marked == std::vector<std::string>{slowedLayer};
                         }),
              90 * seeds_);
}

}  // namespace
}  // namespace zeb::compare
