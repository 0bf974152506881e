#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "analysis/runs/History.h"

namespace zeb::analysis {
namespace {

constexpr std::size_t layerCount = 12;

// What a version's time is multiplied with, as a whole and one of its layers.
struct Pace {
    double all = 1.0;
    double layer3 = 1.0;
};

// Runs of a network of twelve layers, with noise of 1 % that the whole run shares and 0.2 % of each layer.
class Fleet {
public:
    explicit Fleet(std::uint64_t seed) : random_(seed) {}

    HistoryRun run(const std::string& version, const Pace& pace) {
        std::normal_distribution<double> noise(0.0, 1.0);
        HistoryRun made;
        made.version = version;
        made.summary.logFile = "run" + std::to_string(made_) + ".zlog";
        made.summary.runId = std::to_string(made_);
        made.summary.epochUs = 1'700'000'000'000'000 + made_ * 1'000'000;
        made.summary.level = Level::detailed;
        ++made_;
        GraphSummary& graph = made.summary.graphs.emplace_back();
        graph.name = "net";
        const double drift = std::exp(0.01 * noise(random_)) * pace.all;
        double sum = 0.0;
        for (std::size_t layer = 0; layer < layerCount; ++layer) {
            const double us = (60.0 + 10.0 * static_cast<double>(layer)) * drift *
                              std::exp(0.002 * noise(random_)) * (layer == 3 ? pace.layer3 : 1.0);
            graph.layers.push_back({"layer" + std::to_string(layer), us});
            sum += us;
        }
        graph.totalsUs[static_cast<std::size_t>(Total::layers)] = sum;
        graph.totalsUs[static_cast<std::size_t>(Total::accelerator)] = sum + 50.0 * drift;
        graph.totalsUs[static_cast<std::size_t>(Total::marlix)] = sum + 150.0 * drift;
        return made;
    }

    std::vector<HistoryRun> runs(std::size_t versions, std::size_t each,
                                 const std::function<Pace(std::size_t)>& paceOf) {
        std::vector<HistoryRun> all;
        for (std::size_t version = 0; version < versions; ++version) {
            for (std::size_t one = 0; one < each; ++one) {
                all.push_back(run('v' + std::to_string(version), paceOf(version)));
            }
        }
        return all;
    }

private:
    std::mt19937_64 random_;
    std::size_t made_ = 0;
};

History historyOf(std::span<const HistoryRun> runs, VersionOrder order = VersionOrder::given) {
    RankSumChance chance;
    return historyOf(runs, order, chance);
}

const HistorySeries& seriesOf(const History& history, const std::string& name,
                              const std::string& conditions = "") {
    const auto found = std::find_if(
        history.series.begin(), history.series.end(),
        [&](const HistorySeries& series) { return series.name == name && series.conditions == conditions; });
    EXPECT_NE(found, history.series.end()) << name << ' ' << conditions;
    return found == history.series.end() ? history.series.at(0) : *found;
}

std::vector<std::string> namesWithSteps(const History& history) {
    std::vector<std::string> names;
    for (const HistorySeries& series : history.series) {
        if (!series.course.steps.empty()) {
            names.push_back(series.name);
        }
    }
    return names;
}

TEST(History, ALayerThatStepsIsNamedAndNoOther) {
    Fleet fleet(1);
    const auto runs =
        fleet.runs(40, 1, [](std::size_t version) { return Pace{.layer3 = version < 20 ? 1.0 : 1.4}; });
    const History history = historyOf(runs);
    EXPECT_EQ(history.seriesTried, 4 + layerCount);
    const HistorySeries& layer = seriesOf(history, "layer3");
    ASSERT_EQ(layer.course.steps.size(), 1U);
    EXPECT_EQ(layer.points[layer.course.steps[0].first].version, 20U);
    EXPECT_NEAR(layer.course.steps[0].change, 0.4, 0.01);
    for (const std::string& name : namesWithSteps(history)) {
        EXPECT_TRUE(name == "layer3" || name == "Marlix" || name == "Accelerator" || name == "ZEB layers")
            << name;
    }
}

TEST(History, WhatAllLayersShareIsNoStepOfALayer) {
    Fleet fleet(2);
    const auto runs =
        fleet.runs(40, 1, [](std::size_t version) { return Pace{.all = version < 25 ? 1.0 : 1.1}; });
    const History history = historyOf(runs);
    EXPECT_EQ(namesWithSteps(history),
              (std::vector<std::string>{"Marlix", "Accelerator", "ZEB layers", "All layers"}));
    const HistorySeries& marlix = seriesOf(history, "Marlix");
    ASSERT_EQ(marlix.course.steps.size(), 1U);
    const auto causes = causesOf(history, marlix, marlix.course.steps[0]);
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_EQ(causes[0].series->kind, SeriesKind::commonFactor);
    EXPECT_NEAR(causes[0].changeUs, 0.1 * 1440.0, 20.0);
}

TEST(History, CausesOfAStepStandWithTheirMicroseconds) {
    Fleet fleet(3);
    const auto runs =
        fleet.runs(40, 3, [](std::size_t version) { return Pace{.layer3 = version < 20 ? 1.0 : 2.5}; });
    const History history = historyOf(runs);
    const HistorySeries& marlix = seriesOf(history, "Marlix");
    ASSERT_EQ(marlix.course.steps.size(), 1U);
    EXPECT_EQ(marlix.points.size(), 40U) << "a point a version, not a run";
    EXPECT_EQ(marlix.points[7].runs, 3U);
    const auto causes = causesOf(history, marlix, marlix.course.steps[0]);
    ASSERT_EQ(causes.size(), 1U);
    EXPECT_EQ(causes[0].series->name, "layer3");
    EXPECT_NEAR(causes[0].changeUs, 1.5 * 90.0, 3.0);
    EXPECT_TRUE(causesOf(history, marlix, marlix.course.steps[0]).front().step ==
                &causes[0].series->course.steps[0]);
}

TEST(History, RunsOfOneVersionAreOnePointAndCopiesCountOnce) {
    Fleet fleet(4);
    std::vector<HistoryRun> runs = fleet.runs(10, 2, [](std::size_t) { return Pace{}; });
    runs.push_back(runs[3]);
    runs.back().summary.logFile = "copy.zlog";
    const History history = historyOf(runs);
    ASSERT_EQ(history.versions.size(), 10U);
    EXPECT_EQ(history.versions[1].runs, 2U);
    EXPECT_EQ(history.warnings,
              (std::vector<std::string>{"copy.zlog is a copy of run3.zlog and does not count."}));
}

TEST(History, OtherConditionsAreOtherSeries) {
    Fleet fleet(5);
    std::vector<HistoryRun> runs = fleet.runs(10, 2, [](std::size_t) { return Pace{}; });
    for (std::size_t run = 0; run < runs.size(); run += 2) {
        runs[run].summary.graphs[0].krelClockHz = 500'000'000;
        runs[run + 1].summary.graphs[0].krelClockHz = 1'000'000'000;
    }
    runs[0].split = "hot";
    const History history = historyOf(runs);
    EXPECT_EQ(seriesOf(history, "Marlix", "Krel 500 MHz, hot").points.size(), 1U);
    EXPECT_EQ(seriesOf(history, "Marlix", "Krel 500 MHz, not told").points.size(), 9U);
    EXPECT_EQ(seriesOf(history, "Marlix", "Krel 1000 MHz, not told").points.size(), 10U);
    EXPECT_EQ(history.warnings.size(), 3U);
}

TEST(History, VersionsStandAsGivenOrByTheirClock) {
    Fleet fleet(6);
    std::vector<HistoryRun> runs = fleet.runs(10, 1, [](std::size_t) { return Pace{}; });
    std::reverse(runs.begin(), runs.end());
    EXPECT_EQ(historyOf(runs).versions.front().name, "v9");
    EXPECT_EQ(historyOf(runs, VersionOrder::epoch).versions.front().name, "v0");
    EXPECT_TRUE(historyOf(runs, VersionOrder::epoch).warnings.empty());
    runs[0].summary.epochUs = 5;
    runs[1].summary.epochUs = 5;
    const History history = historyOf(runs, VersionOrder::epoch);
    EXPECT_EQ(history.versions.front().name, "v9");
    EXPECT_EQ(history.warnings.size(), 2U) << "a tie, and clocks before 2000";
}

TEST(History, ARoundingIsNoStepOfALayer) {
    std::vector<HistoryRun> runs;
    Fleet fleet(7);
    for (std::size_t version = 0; version < 40; ++version) {
        runs.push_back(fleet.run('v' + std::to_string(version), {}));
        auto& layers = runs.back().summary.graphs[0].layers;
        layers = {{"small", version < 20 ? 1.0 : 2.0}, {"larger", version < 20 ? 10.0 : 12.0}};
    }
    const History history = historyOf(runs);
    EXPECT_TRUE(seriesOf(history, "small").course.steps.empty());
    EXPECT_EQ(seriesOf(history, "larger").course.steps.size(), 1U);
}

TEST(History, TheNewestIsJudgedByTheStepThatItStandsBehind) {
    const struct {
        std::string name;
        std::function<Pace(std::size_t)> paceOf;
        std::size_t versions;
        double maxGrowth;
        NewestOutcome outcome;
    } cases[] = {
        {"no step", [](std::size_t) { return Pace{}; }, 60, 0.05, NewestOutcome::good},
        {"10 % slower for good", [](std::size_t version) { return Pace{.all = version < 30 ? 1.0 : 1.1}; },
         60, 0.05, NewestOutcome::slower},
        {"3 % slower", [](std::size_t version) { return Pace{.all = version < 30 ? 1.0 : 1.03}; }, 60, 0.05,
         NewestOutcome::good},
        {"slower and back",
         [](std::size_t version) { return Pace{.all = version < 20 || version >= 40 ? 1.0 : 1.1}; }, 60, 0.05,
         NewestOutcome::good},
        {"faster", [](std::size_t version) { return Pace{.all = version < 30 ? 1.1 : 1.0}; }, 60, 0.05,
         NewestOutcome::good},
        {"too few versions", [](std::size_t) { return Pace{}; }, 7, 0.05, NewestOutcome::unsure},
        {"a limit below what shows", [](std::size_t) { return Pace{}; }, 60, 0.005, NewestOutcome::unsure},
    };
    for (const auto& [name, paceOf, versions, maxGrowth, outcome] : cases) {
        Fleet fleet(8);
        const History history = historyOf(fleet.runs(versions, 1, paceOf));
        RankSumChance chance;
        const NewestVerdict verdict = judgeNewest(history, maxGrowth, chance);
        EXPECT_EQ(verdict.outcome, outcome)
            << name << ": " << (verdict.reasons.empty() ? "" : verdict.reasons[0]);
        EXPECT_EQ(verdict.reasons.empty(), outcome == NewestOutcome::good) << name;
    }
}

TEST(History, NothingIsNotJudged) {
    RankSumChance chance;
    EXPECT_EQ(judgeNewest(historyOf({}), 0.05, chance).outcome, NewestOutcome::unsure);
    // The newest version has no run of the graph: what came before tells nothing of it.
    Fleet fleet(9);
    std::vector<HistoryRun> runs = fleet.runs(40, 1, [](std::size_t) { return Pace{}; });
    runs.back().summary.graphs.clear();
    EXPECT_EQ(judgeNewest(historyOf(runs), 0.05, chance).outcome, NewestOutcome::unsure);
}

}  // namespace
}  // namespace zeb::analysis
