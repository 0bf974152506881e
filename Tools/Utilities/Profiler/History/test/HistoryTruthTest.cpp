// What a history says of logs of which the truth is known. ZEB_TRUTH_SEEDS=200 takes two hundred seeds
// instead of a few, and the test prints its figures: docs/history.md has them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "analysis/MakeRun.h"
#include "analysis/runs/History.h"
#include "samplelog/NetworkLog.h"
#include "support/TestFiles.h"

namespace zeb::history {
namespace {

using analysis::History;
using analysis::HistorySeries;
using analysis::SeriesKind;
using samplelog::NetworkOptions;

constexpr std::uint32_t driftMillionths = 20'000;
const std::string slowedLayer = "conv_pw_5";

int seedCount(int few) {
    const char* const text = std::getenv("ZEB_TRUTH_SEEDS");
    return text == nullptr ? few : std::max(1, std::atoi(text));
}

using OptionsAt = std::function<NetworkOptions(std::size_t version)>;

NetworkOptions slowerBy(double share) {
    NetworkOptions options;
    options.slowerMillionths = static_cast<std::uint32_t>(share * 1'000'000.0 + 0.5);
    return options;
}

const HistorySeries& marlixOf(const History& history) {
    return history.series.at(0);
}

bool showsAnything(const History& history) {
    return std::any_of(history.series.begin(), history.series.end(), [](const HistorySeries& series) {
        return !series.course.steps.empty() || series.course.driftShare;
    });
}

// Whether the executions have a step that near to each of the versions, and as many steps.
bool hasSteps(const History& history, const std::vector<std::size_t>& versions, std::size_t apart) {
    const auto& steps = marlixOf(history).course.steps;
    if (steps.size() != versions.size()) {
        return false;
    }
    for (std::size_t step = 0; step < steps.size(); ++step) {
        const std::size_t first = steps[step].first;
        if (std::max(first, versions[step]) - std::min(first, versions[step]) > apart) {
            return false;
        }
    }
    return true;
}

std::vector<std::string> layersWithSteps(const History& history) {
    std::vector<std::string> names;
    for (const HistorySeries& series : history.series) {
        if (series.kind == SeriesKind::layer && !series.course.steps.empty()) {
            names.push_back(series.name);
        }
    }
    return names;
}

class HistoryTruth : public testing::Test {
protected:
    History historyOf(const OptionsAt& optionsAt, std::uint64_t seed, std::size_t versions = 60,
                      std::size_t runsEach = 1) {
        std::vector<analysis::HistoryRun> runs;
        for (std::size_t version = 0; version < versions; ++version) {
            for (std::size_t one = 0; one < runsEach; ++one) {
                NetworkOptions options = optionsAt(version);
                options.seed = (seed * 1'000 + version) * 10 + one;
                options.driftMillionths = driftMillionths;
                runs.push_back({summaryOf(options), 'v' + std::to_string(version), ""});
            }
        }
        return analysis::historyOf(runs, analysis::VersionOrder::given, chance_);
    }

    // Counts the seeds whose history is as it is asked for.
    template <typename Is>
    void expectSeeds(const std::string& what, int atLeastOf100, const OptionsAt& optionsAt, Is is,
                     std::size_t versions = 60, std::size_t runsEach = 1) {
        const int seeds = seedCount(runsEach == 1 ? 6 : 3);
        int count = 0;
        for (int seed = 1; seed <= seeds; ++seed) {
            count += is(historyOf(optionsAt, static_cast<std::uint64_t>(seed), versions, runsEach)) ? 1 : 0;
        }
        std::cout << what << ": " << count << " of " << seeds << " seeds\n";
        // Of a few seeds two may be unlucky ones.
        const int unlucky = seeds < 100 ? 2 : 0;
        EXPECT_GE((count + unlucky) * 100, atLeastOf100 * seeds) << what;
    }

private:
    analysis::RunSummary summaryOf(const NetworkOptions& options) {
        const std::string path = files_.path("run.zlog");
        std::ofstream out(path, std::ios::binary);
        writeNetworkLog(out, options);
        out.close();
        return analysis::summarize(analysis::makeRun(path, profiling::VisibilityLevel{127}).value());
    }

    test::TempDir files_;
    analysis::RankSumChance chance_;
};

TEST_F(HistoryTruth, NoChangeShowsNothing) {
    const auto none = [](std::size_t) { return NetworkOptions{}; };
    const auto isEmpty = [](const History& history) { return !showsAnything(history); };
    expectSeeds("no change shows nothing", 95, none, isEmpty);
    expectSeeds("20 versions of 5 runs without a change show nothing", 95, none, isEmpty, 20, 5);
    expectSeeds(
        "one run of +50 % shows nothing", 95,
        [](std::size_t version) { return slowerBy(version == 30 ? 0.5 : 0.0); }, isEmpty);
}

TEST_F(HistoryTruth, AStepIsFoundWhereItIs) {
    const auto step = [](std::size_t version) { return slowerBy(version < 30 ? 0.0 : 0.05); };
    const auto isWithin = [](std::size_t apart) {
        return [apart](const History& history) { return hasSteps(history, {30}, apart); };
    };
    expectSeeds("a step of 5 % is found", 95, step, isWithin(60));
    expectSeeds("within one version", 85, step, isWithin(1));
    expectSeeds("within two versions", 92, step, isWithin(2));
    expectSeeds("three runs a version: within one", 95, step, isWithin(1), 60, 3);
}

TEST_F(HistoryTruth, TwoStepsAreBothFound) {
    expectSeeds(
        "two steps of 5 %", 85,
        [](std::size_t version) {
            return slowerBy(version < 20 ? 0.0 : version < 40 ? 0.05 : 0.1025);
        },
        [](const History& history) {
            return hasSteps(history, {20, 40}, 4);
        });
    expectSeeds(
        "up and down again", 85,
        [](std::size_t version) { return slowerBy(version < 20 || version >= 40 ? 0.0 : 0.05); },
        [](const History& history) {
            return hasSteps(history, {20, 40}, 4);
        });
}

TEST_F(HistoryTruth, ADriftIsToldFromSteps) {
    const auto isDrift = [](const History& history) {
        return marlixOf(history).course.driftShare.has_value();
    };
    expectSeeds(
        "a ramp of 0.3 % a version is a drift", 90,
        [](std::size_t version) { return slowerBy(0.003 * static_cast<double>(version)); }, isDrift);
    expectSeeds(
        "three steps of 5 % are none", 80,
        [](std::size_t version) { return slowerBy(0.05 * static_cast<double>(version / 15)); },
        [&](const History& history) { return !isDrift(history); });
}

// Of the newest versions that many stand behind the step.
TEST_F(HistoryTruth, AStepIsSeenOnceEnoughVersionsStandBehindIt) {
    struct Case {
        double share;
        std::size_t newest;
        int atLeast;  ///< of a hundred seeds
    };
    std::vector<Case> cases = {{0.1, 16, 90}};
    if (std::getenv("ZEB_TRUTH_SEEDS") != nullptr) {
        for (const double share : {0.03, 0.05, 0.1}) {
            for (const std::size_t newest : {4U, 6U, 8U, 10U, 12U, 16U, 20U, 30U}) {
                cases.push_back({share, newest, 0});
            }
        }
    }
    for (const auto& [share, newest, atLeast] : cases) {
        const std::size_t first = 60 - newest;
        expectSeeds(
            std::to_string(newest) + " versions behind a step of " + std::to_string(share), atLeast,
            [&, share = share](std::size_t version) { return slowerBy(version < first ? 0.0 : share); },
            [&](const History& history) { return hasSteps(history, {first}, 2); });
    }
}

TEST_F(HistoryTruth, ALayerIsNamedAndNoOther) {
    const auto slower = [](std::size_t version) {
        NetworkOptions options;
        if (version >= 30) {
            options.slowerLayer = samplelog::SlowerLayer{slowedLayer, 400'000};
        }
        return options;
    };
    expectSeeds("a layer 40 % slower is named", 90, slower, [](const History& history) {
        const auto names = layersWithSteps(history);
        return std::find(names.begin(), names.end(), slowedLayer) != names.end();
    });
    expectSeeds("and no other layer", 90, slower, [](const History& history) {
        const auto names = layersWithSteps(history);
        return names.empty() || names == std::vector<std::string>{slowedLayer};
    });
}

}  // namespace
}  // namespace zeb::history
