// Two versions as values: what is matched with what, what is sure, and what a gate makes of it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "analysis/runs/CommonFactor.h"
#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"

namespace zeb::analysis {
namespace {

using Values = std::vector<double>;
using Runs = std::vector<RunSummary>;

GraphSummary graphOf(std::string name, double marlixUs, std::vector<LayerTime> layers = {}) {
    GraphSummary graph;
    graph.name = std::move(name);
    graph.spread.count = 19;
    graph.totalsUs[static_cast<std::size_t>(Total::marlix)] = marlixUs;
    if (!layers.empty()) {
        double sum = 0.0;
        for (const LayerTime& layer : layers) {
            sum += layer.us;
        }
        graph.totalsUs[static_cast<std::size_t>(Total::layers)] = sum;
    }
    graph.layers = std::move(layers);
    graph.dspClockHz = 806'400'000;
    graph.krelClockHz = 1'017'600'000;
    return graph;
}

RunSummary runOf(std::vector<GraphSummary> graphs) {
    static int number = 0;
    RunSummary run;
    run.logFile = "run" + std::to_string(++number);
    run.runId = run.logFile;
    run.idOfFigures = "figures of " + run.logFile;
    run.generator = "runner v1";
    run.backendVersion = "v1";
    run.level = Level::detailed;
    run.graphs = std::move(graphs);
    return run;
}

Runs runsOf(const Values& marlixUs) {
    Runs runs;
    for (const double us : marlixUs) {
        runs.push_back(runOf({graphOf("net", us)}));
    }
    return runs;
}

Runs layerRuns(const std::vector<std::vector<LayerTime>>& logs) {
    Runs runs;
    for (const auto& layers : logs) {
        runs.push_back(runOf({graphOf("net", 1000, layers)}));
    }
    return runs;
}

const Values fiveUs{1000, 1010, 990, 1020, 1005};
const Values fiveSlowerUs{1100, 1110, 1090, 1120, 1105};
const Values fiveMixedUs{1003, 1013, 988, 1022, 1001};
const Values sixUs{1000, 1050, 960, 1020, 940, 1090};
const Values sixSlowerUs{1031, 1081, 989, 1049, 969, 1123};

std::string rowsOf(const std::vector<LayerChange>& rows) {
    const char* const words[] = {"~", "slower", "faster", "same", "new", "gone"};
    std::string text;
    for (const LayerChange& row : rows) {
        text += row.name + " " + words[static_cast<std::size_t>(row.verdict)] + " " +
                std::to_string(std::lround(row.changeUs())) + "; ";
    }
    return text;
}

TEST(Comparison, SeveralLogsASideAreSamples) {
    const Comparison comparison = compare(runsOf(fiveUs), runsOf(fiveSlowerUs));
    EXPECT_EQ(comparison.basis, Basis::several);
    ASSERT_EQ(comparison.graphs.size(), 1U);
    ASSERT_EQ(comparison.graphs[0].totals.size(), 1U);
    const TotalChange& marlix = comparison.graphs[0].totals[0];
    EXPECT_EQ(marlix.base.median, 1005.0);
    EXPECT_EQ(marlix.base.min, 990.0);
    EXPECT_EQ(marlix.changed.max, 1120.0);
    EXPECT_EQ(marlix.changeUs(), 100.0);
    EXPECT_NEAR(marlix.change.value(), 0.0995, 0.0005);
    EXPECT_NEAR(marlix.p.value(), 2.0 / 252.0, 1e-12);
    EXPECT_GT(marlix.interval.value().low, 0.0);
    EXPECT_EQ(marlix.verdict, Verdict::slower);
    EXPECT_FALSE(comparison.graphs[0].executions);
    EXPECT_EQ(comparison.warnings, std::vector<std::string>{});
    EXPECT_EQ(compare(runsOf(fiveSlowerUs), runsOf(fiveUs)).graphs[0].totals[0].verdict, Verdict::faster);
    EXPECT_EQ(compare(runsOf(fiveUs), runsOf(fiveMixedUs)).graphs[0].totals[0].verdict, Verdict::unsure);
}

TEST(Comparison, FewerThanFourLogsOnASideTellNothing) {
    const struct {
        std::size_t base;
        std::size_t changed;
        Basis basis;
    } cases[] = {{1, 1, Basis::oneEach}, {1, 5, Basis::tooFew}, {5, 1, Basis::tooFew},
                 {3, 5, Basis::tooFew},  {4, 3, Basis::tooFew}, {4, 4, Basis::several},
                 {4, 5, Basis::several}, {2, 2, Basis::tooFew}};
    for (const auto& [base, changed, basis] : cases) {
        Runs from = runsOf(fiveUs);
        Runs to = runsOf(fiveSlowerUs);
        from.resize(base);
        to.resize(changed);
        const Comparison comparison = compare(from, to);
        EXPECT_EQ(comparison.basis, basis);
        const TotalChange& marlix = comparison.graphs[0].totals[0];
        EXPECT_EQ(marlix.verdict, basis == Basis::tooFew ? Verdict::unsure : Verdict::slower);
        EXPECT_EQ(marlix.change.has_value(), basis != Basis::tooFew);
        EXPECT_EQ(marlix.interval.has_value(), basis == Basis::several);
        EXPECT_EQ(comparison.graphs[0].executions.has_value(), basis == Basis::oneEach);
    }
}

TEST(Comparison, GraphsAreMatchedByNameUnlessEachSideHasJustOne) {
    const Runs two = {runOf({graphOf("a", 10), graphOf("b", 20)})};
    const Runs other = {runOf({graphOf("b", 22), graphOf("c", 30)})};
    const Comparison matched = compare(two, other);
    ASSERT_EQ(matched.graphs.size(), 1U);
    EXPECT_EQ(matched.graphs[0].baseName, "b");
    EXPECT_EQ(matched.graphs[0].totals[0].changeUs(), 2.0);
    EXPECT_EQ(matched.goneGraphs, std::vector<std::string>{"a"});
    EXPECT_EQ(matched.addedGraphs, std::vector<std::string>{"c"});

    const Comparison only = compare(Runs{runOf({graphOf("old", 10)})}, Runs{runOf({graphOf("young", 11)})});
    ASSERT_EQ(only.graphs.size(), 1U);
    EXPECT_EQ(only.graphs[0].newName, "young");
    ASSERT_EQ(only.warnings.size(), 1U);
    EXPECT_NE(only.warnings[0].find("base old; new young"), std::string::npos);

    EXPECT_TRUE(compare(two, Runs{runOf({graphOf("x", 11)})}).graphs.empty());
}

TEST(Comparison, LayersAreMatchedByNameOrderAndRename) {
    const Runs base = layerRuns({{{"a", 100}, {"twin", 10}, {"twin", 30}, {"old", 50}, {"left", 7}}});
    const Runs changed = layerRuns({{{"twin", 10}, {"a", 90}, {"twin", 45}, {"young", 52}, {"come", 3}}});
    const std::vector<Rename> renames = {{"old", "young"}};
    EXPECT_EQ(rowsOf(compare(base, changed, {.renames = renames}).graphs[0].layers),
              "twin ~ 15; a ~ -10; left gone -7; come new 3; young ~ 2; twin same 0; ");
    EXPECT_EQ(rowsOf(compare(base, changed).graphs[0].layers),
              "young new 52; old gone -50; twin ~ 15; a ~ -10; left gone -7; come new 3; twin same 0; ");
    const Comparison wrong = compare(base, changed, {.renames = {{"old", "nowhere"}, {"none", "a"}}});
    EXPECT_EQ(wrong.warnings,
              (std::vector<std::string>{"A layer is renamed that the new side does not have: nowhere.",
                                        "A layer is renamed that the base does not have: none."}));
}

TEST(Comparison, LayersOfSeveralLogsAreMarkedWhereTheyAreSure) {
    std::vector<std::vector<LayerTime>> base;
    std::vector<std::vector<LayerTime>> changed;
    for (int log = 0; log < 5; ++log) {
        const double noise = log % 3 - 1;
        base.push_back(
            {{"still", 50 + noise}, {"slow", 100 + noise}, {"tiny", 3}, {"zero", 0}, {"part", 20}});
        changed.push_back({{"still", 50 - noise}, {"slow", 130 + noise}, {"tiny", 4}, {"zero", 10}});
    }
    changed[0].push_back({"part", 20});
    const auto layers = compare(layerRuns(base), layerRuns(changed)).graphs[0].layers;
    EXPECT_EQ(rowsOf(layers), "slow slower 30; part ~ -16; zero ~ 10; tiny ~ 1; still ~ 0; ");
    EXPECT_LT(layers[0].p.value(), 1e-6);
    EXPECT_FALSE(layers[1].p);  // it is missing in four logs, which count with 0
    EXPECT_FALSE(layers[3].p);  // no more than the resolution
}

TEST(Comparison, PairsAreJudgedByTheirRatios) {
    std::vector<std::vector<LayerTime>> base;
    std::vector<std::vector<LayerTime>> changed;
    for (int log = 0; log < 8; ++log) {
        base.push_back({{"layer", 100.0 + log * 10}});
        changed.push_back({{"layer", 103.0 + log * 10}});
    }
    const auto layersOf = [&](bool isPaired) {
        return rowsOf(compare(layerRuns(base), layerRuns(changed), {.isPaired = isPaired}).graphs[0].layers);
    };
    EXPECT_EQ(layersOf(true), "layer slower 3; ");
    EXPECT_EQ(layersOf(false), "layer ~ 3; ");

    Runs lacking = layerRuns(base);
    lacking[2].graphs[0].totalsUs = {};
    const TotalChange marlix = compare(lacking, layerRuns(changed), {.isPaired = true}).graphs[0].totals[0];
    EXPECT_EQ(marlix.baseLogs, 7U);
    EXPECT_EQ(marlix.newLogs, 7U);  // nor does its other one count
}

TEST(Comparison, HolmTakesAllLayersIntoAccount) {
    std::vector<std::vector<LayerTime>> base(4);
    std::vector<std::vector<LayerTime>> changed(4);
    for (std::size_t log = 0; log < 4; ++log) {
        const double noise = static_cast<double>(log) * 4;
        base[log].push_back({"close", 100 + noise});
        changed[log].push_back({"close", 112 + noise});
    }
    EXPECT_EQ(rowsOf(compare(layerRuns(base), layerRuns(changed)).graphs[0].layers), "close slower 12; ");
    for (std::size_t log = 0; log < 4; ++log) {
        for (int layer = 0; layer < 10; ++layer) {
            const double us = 15 + static_cast<double>((log * 3 + static_cast<std::size_t>(layer)) % 4);
            base[log].push_back({"still" + std::to_string(layer), us});
            changed[log].push_back({"still" + std::to_string(layer), us});
        }
    }
    EXPECT_EQ(rowsOf(compare(layerRuns(base), layerRuns(changed)).graphs[0].layers).substr(0, 12),
              "close ~ 12; ");
}

// A number between -1 and 1 that is the same in each run of the test.
double noiseOf(std::size_t which) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(which * 977 + 5));
    random.discard(3);
    return static_cast<double>(random()) / static_cast<double>(std::mt19937::max()) * 2.0 - 1.0;
}

// Twelve layers, of which the first is slower by a share, on logs that drift.
std::vector<std::vector<LayerTime>> driftingLayers(std::size_t logs, double all, double first,
                                                   std::size_t noise) {
    std::vector<std::vector<LayerTime>> runs(logs);
    for (std::size_t log = 0; log < logs; ++log) {
        const double drift = 1.0 + 0.04 * noiseOf(log * 7 + noise * 1000);
        for (std::size_t layer = 0; layer < 12; ++layer) {
            const double own = 1.0 + 0.002 * noiseOf(log * 100 + layer + noise * 10000 + 77);
            runs[log].push_back({"layer" + std::to_string(layer), (100.0 + static_cast<double>(layer) * 10) *
                                                                      all * drift * own *
                                                                      (layer == 0 ? 1.0 + first : 1.0)});
        }
    }
    return runs;
}

std::string markedOf(const std::vector<LayerChange>& rows) {
    std::string names;
    for (const LayerChange& row : rows) {
        names +=
            row.verdict == Verdict::unsure ? "" : row.name + ' ' + std::string(nameOf(row.verdict)) + "; ";
    }
    return names;
}

TEST(Comparison, LayersAreJudgedByWhatTheyExceedTheOthersBy) {
    const struct {
        std::size_t logs;
        double all;
        double first;
        bool isPaired;
        std::string marked;
        Verdict shared;
    } cases[] = {
        {1, 1.0, 0.0, false, "", Verdict::unsure},
        {1, 1.0, 0.4, false, "layer0 slower; ", Verdict::unsure},
        {1, 1.3, 0.0, false, "", Verdict::slower},
        {1, 0.8, -0.2, false, "layer0 faster; ", Verdict::faster},
        {5, 1.0, 0.0, false, "", Verdict::unsure},
        {5, 1.0, 0.03, false, "layer0 slower; ", Verdict::unsure},
        {5, 1.3, 0.0, false, "", Verdict::slower},
        {5, 1.3, 0.03, false, "layer0 slower; ", Verdict::slower},
        {8, 1.0, 0.03, true, "layer0 slower; ", Verdict::unsure},
        {8, 1.02, 0.0, true, "", Verdict::slower},
        {3, 1.3, 0.4, false, "", Verdict::unsure},
    };
    for (const auto& [logs, all, first, isPaired, marked, shared] : cases) {
        SCOPED_TRACE(std::to_string(logs) + " logs, " + std::to_string(all) + ", " + std::to_string(first));
        const std::size_t noise = isPaired ? 0 : 3;  // pairs share their drift
        const GraphComparison graph =
            compare(layerRuns(driftingLayers(logs, 1.0, 0.0, 0)),
                    layerRuns(driftingLayers(logs, all, first, noise)), {.isPaired = isPaired})
                .graphs[0];
        EXPECT_EQ(markedOf(graph.layers), marked);
        ASSERT_TRUE(graph.shared);
        EXPECT_EQ(graph.shared->verdict, shared);
        EXPECT_NEAR(graph.shared->change, all - 1.0, logs == 1 ? 0.01 : 0.06);
    }
}

TEST(Comparison, ThereIsNoCommonFactorOfFewLayersOrOfOneThatIsMostOfThem) {
    const Values reference{400, 100, 100, 100, 100, 100, 50, 50};
    const Values longer{440, 110, 110, 110, 110, 110, 55, 100};
    const auto factor = commonFactor(reference, longer);
    ASSERT_TRUE(factor);
    EXPECT_NEAR(factor->factor, 1.1, 1e-12);
    EXPECT_NEAR(factor->deviation, 0.0, 1e-12);  // but for one layer all are alike
    EXPECT_NEAR(excessOf(50, 100, factor->factor).value(), 100 / 55.0 - 1.0, 1e-12);
    EXPECT_FALSE(excessOf(0, 100, 1.1));
    EXPECT_FALSE(commonFactor(std::span(reference).first(7), std::span(longer).first(7)));
    EXPECT_FALSE(commonFactor(Values{401, 100, 100, 100, 100, 100, 50, 50}, longer));  // above 40 %
    EXPECT_FALSE(commonFactor(Values{300, 100, 100, 100, 100, 100, 50, 19}, longer));  // too short
    EXPECT_NEAR(commonFactor(Values{310, 300, 100, 100, 100, 100, 100, 100},
                             Values{372, 360, 110, 110, 110, 110, 110, 110})
                    ->factor,
                1.2, 1e-12);  // by their weight, not by their number
    EXPECT_FALSE(commonFactor(reference, Values{440, 110, 110, 110, 110, 110, 55, 0}));
}

// Runs whose executions, accelerator and layers take so long, with noise on all of it.
Runs runsWith(std::size_t count, double layersShare, double outsideUs, double firstLayerUs,
              std::size_t noise) {
    Runs runs;
    for (std::size_t log = 0; log < count; ++log) {
        auto layers = driftingLayers(count, layersShare, 0.0, noise)[log];
        layers[0].us += firstLayerUs;
        double sum = 0.0;
        for (const LayerTime& layer : layers) {
            sum += layer.us;
        }
        const double own = noiseOf(log + noise * 1000 + 500);
        GraphSummary graph = graphOf("net", sum + outsideUs + own, layers);
        graph.totalsUs[static_cast<std::size_t>(Total::average)] = sum + outsideUs + own;
        graph.totalsUs[static_cast<std::size_t>(Total::accelerator)] = sum;
        graph.totalsUs[static_cast<std::size_t>(Total::outside)] = outsideUs + own;
        runs.push_back(runOf({graph}));
    }
    return runs;
}

TEST(Comparison, AnswersWhatChangedAndWhatItLiesIn) {
    const auto answerOf = [](const Runs& base, const Runs& changed, bool isPaired = true) {
        return compare(base, changed, {.isPaired = isPaired}).graphs[0].answer;
    };
    const Runs base = runsWith(8, 1.0, 200, 0, 0);
    using Kind = Answer::Kind;

    const Answer layer = answerOf(base, runsWith(8, 1.0, 200, 60, 0));
    EXPECT_EQ(layer.kind, Kind::slower);
    EXPECT_EQ(layer.text.substr(0, 15), "Slower by 2.9%:");
    EXPECT_NE(layer.text.find("with 95%"), std::string::npos);
    EXPECT_EQ(layer.causes, std::vector<std::string>{"layer0 +60 us, 100% of it"});

    Runs slowClock = runsWith(8, 1.11, 200, 0, 0);
    for (RunSummary& run : slowClock) {
        run.graphs[0].krelClockHz = 900'000'000;
    }
    const Answer all = answerOf(base, slowClock);
    EXPECT_EQ(all.causes,
              std::vector<std::string>{
                  "all layers alike by +11.0%: what they share changed (clocks, temperature, memory, "
                  "compiler); the logged Krel clocks differ: base 1017 MHz; new 900 MHz"});
    EXPECT_EQ(answerOf(slowClock, base).kind, Kind::faster);

    Runs twoLayers = runsWith(8, 1.0, 200, 60, 0);
    for (RunSummary& run : twoLayers) {
        run.graphs[0].layers[5].us += 30;
        *run.graphs[0].totalsUs[static_cast<std::size_t>(Total::average)] += 30;
    }
    EXPECT_EQ(answerOf(base, twoLayers).causes,
              (std::vector<std::string>{"layer0 +60 us, 67% of it", "layer5 +30 us, 33% of it"}));
    EXPECT_EQ(answerOf(base, runsWith(8, 1.0, 170, 60, 0)).causes,
              std::vector<std::string>{"layer0 +60 us"});  // more than the whole

    Runs noLayers = runsWith(8, 1.11, 210, 0, 0);
    for (RunSummary& run : noLayers) {
        run.graphs[0].layers.clear();
    }
    EXPECT_EQ(answerOf(base, noLayers).causes, std::vector<std::string>{});  // most is in the accelerator

    for (const auto& [count, rest] :
         {std::pair<std::size_t, std::string>{4, "1 more layer +29.9 us"}, {5, "2 more layers +49.7 us"}}) {
        Runs several = base;
        for (RunSummary& run : several) {
            for (std::size_t position = 0; position < count; ++position) {
                run.graphs[0].layers[position].us += 60.0 - 10.0 * static_cast<double>(position);
            }
        }
        const std::vector<std::string> causes = answerOf(base, several).causes;
        ASSERT_GE(causes.size(), 4U);  // three by their names, and the rest
        EXPECT_EQ(causes[3], rest);
    }

    EXPECT_EQ(answerOf(base, runsWith(8, 1.0, 260, 0, 0)).causes,
              std::vector<std::string>{"nothing in the layers: +60 us outside the accelerator"});

    const Answer same = answerOf(base, runsWith(8, 1.0, 200, 0, 1), false);
    EXPECT_EQ(same.kind, Kind::notSlower);
    EXPECT_EQ(same.text.substr(0, 16), "Not slower than ");
    const Answer wide = answerOf(Runs(base.begin(), base.begin() + 4), runsWith(4, 1.03, 200, 0, 5), false);
    EXPECT_EQ(wide.kind, Kind::unsure);
    EXPECT_EQ(wide.text.substr(0, 11), "Can't tell:");

    const Answer one = answerOf(Runs(1, base[0]), runsWith(1, 1.11, 200, 0, 0), false);
    EXPECT_EQ(one.kind, Kind::slower);
    EXPECT_NE(one.text.find("one log a side can't tell"), std::string::npos);
    ASSERT_EQ(one.causes.size(), 1U);
    EXPECT_EQ(one.causes[0].substr(0, 26), "all layers alike by +11.0%");
    EXPECT_EQ(answerOf(base, runsWith(8, 1.0, 200, 8, 0), false).causes,
              std::vector<std::string>{"layer0 +8 us, which is sure"});  // no share of a change that is not
    Runs none = base;
    for (RunSummary& run : none) {
        run.graphs[0].totalsUs = {};
    }
    EXPECT_EQ(answerOf(base, none).kind, Kind::unsure);
}

std::string textOf(const PartChange& part) {
    std::string text = part.name + ' ' + std::to_string(std::lround(part.baseUs)) + ' ' +
                       std::to_string(std::lround(part.newUs)) + ' ' + std::string(nameOf(part.verdict));
    for (std::size_t inner = 0; inner < part.parts.size(); ++inner) {
        text += (inner == 0 ? " (" : ", ") + textOf(part.parts[inner]);
    }
    return text + (part.parts.empty() ? "" : ")");
}

TEST(Comparison, HasTheTreeOfAnInferenceOnBothSides) {
    const auto runsOfTrees = [](std::size_t logs, double acceleratorUs, double ipcUs) {
        Runs runs;
        for (std::size_t log = 0; log < logs; ++log) {
            const double noise = noiseOf(log + static_cast<std::size_t>(acceleratorUs)) / 10.0;
            GraphSummary graph = graphOf("net", 100);
            graph.totalsUs[static_cast<std::size_t>(Total::average)] = 100;
            Part accelerator{"Accelerator", acceleratorUs + noise, PartKind::accelerator, "", {}};
            Part ipc{"IPC", ipcUs, PartKind::host, "", {}};
            graph.inference = {"Marlix", 50 + acceleratorUs + noise, PartKind::inference, "", {accelerator}};
            if (ipcUs > 0.0) {
                graph.inference.parts.push_back(ipc);
            }
            runs.push_back(runOf({graph}));
        }
        return runs;
    };
    const auto treeOf = [](const Runs& base, const Runs& changed, bool isPaired = false) {
        return textOf(compare(base, changed, {.isPaired = isPaired}).graphs[0].inference.value());
    };
    EXPECT_EQ(treeOf(runsOfTrees(5, 100, 7), runsOfTrees(5, 120, 0)),
              "Marlix 150 170 slower (Accelerator 100 120 slower, IPC 7 0 gone)");
    EXPECT_EQ(treeOf(runsOfTrees(8, 120, 0), runsOfTrees(8, 100, 7), true),
              "Marlix 170 150 faster (Accelerator 120 100 faster, IPC 0 7 new)");
    EXPECT_EQ(treeOf(runsOfTrees(3, 100, 7), runsOfTrees(5, 120, 7)),
              "Marlix 150 170 unsure (Accelerator 100 120 unsure, IPC 7 7 unsure)");
    EXPECT_EQ(treeOf(runsOfTrees(1, 100, 7), runsOfTrees(1, 120, 7)),
              "Marlix 150 170 slower (Accelerator 100 120 slower, IPC 7 7 same)");
    Runs mixed = runsOfTrees(5, 100, 7);
    mixed[4].graphs[0].inference.parts.pop_back();  // it counts with 0
    mixed[0].graphs[0].inference = {};              // no sample of anything
    EXPECT_EQ(treeOf(mixed, runsOfTrees(5, 120, 7)).substr(14),
              " slower (Accelerator 100 120 slower, IPC 5 7 unsure)");
    EXPECT_FALSE(compare(runsOf(fiveUs), runsOf(fiveMixedUs)).graphs[0].inference);
}

TEST(Comparison, ALogCountsOnce) {
    Runs base = runsOf(fiveUs);
    base[2].runId = base[0].runId;
    const Comparison four = compare(base, runsOf(fiveSlowerUs));
    EXPECT_EQ(four.basis, Basis::several);
    EXPECT_EQ(four.copies, std::vector<std::string>{base[2].logFile});
    EXPECT_EQ(four.baseLogs.size(), 4U);
    EXPECT_EQ(four.warnings, std::vector<std::string>{base[2].logFile + " is a copy of " + base[0].logFile +
                                                      ", and a log counts once."});
    base[4].runId = base[1].runId;
    EXPECT_EQ(compare(base, runsOf(fiveSlowerUs)).basis, Basis::tooFew);
    const Runs thrice(3, base[0]);
    EXPECT_EQ(compare(thrice, runsOf(fiveSlowerUs)).warnings,
              std::vector<std::string>{base[0].logFile + " is given more than once, and a log counts once."});
    base[2].runId = base[0].idOfFigures;  // out of JSON without an id
    EXPECT_EQ(compare(base, runsOf(fiveSlowerUs)).baseLogs.size(), 3U);
    base[2].runId = "another";
    base[2].idOfFigures = base[0].idOfFigures;  // ids tell them apart
    EXPECT_EQ(compare(base, runsOf(fiveSlowerUs)).baseLogs.size(), 4U);

    const Runs fourTimes(4, runsOf({1000})[0]);
    EXPECT_EQ(compare(fourTimes, fourTimes).basis, Basis::oneEach);
    EXPECT_TRUE(compare(fourTimes, fourTimes).haveSameRun);
    EXPECT_EQ(judge(compare(fourTimes, runsOf(fiveUs)), {.maxGrowth = 0.1}).outcome,
              GateOutcome::incomparable);

    Runs changed = runsOf(fiveSlowerUs);
    changed.push_back(changed[0]);
    Runs more = runsOf(fiveUs);
    more.push_back(changed[0]);
    const GateResult same = judge(compare(more, changed), {.maxGrowth = 0.1});
    EXPECT_EQ(same.outcome, GateOutcome::incomparable);
    EXPECT_EQ(same.reasons[0], "The versions can't be compared: a run is on both sides.");

    Runs pairs = runsOf(sixUs);
    pairs[5].runId = pairs[0].runId;
    const Comparison paired = compare(pairs, runsOf(sixUs), {.isPaired = true});
    EXPECT_EQ(paired.newLogs.size(), 5U);  // the other one of the pair does not count either
    EXPECT_EQ(paired.basis, Basis::tooFew);
}

TEST(Comparison, WarnsOfWhatExplainsMostChanges) {
    const auto warningsOf = [](void (*change)(RunSummary & run)) {
        Runs base = runsOf({10});
        Runs changed = runsOf({11});
        change(changed[0]);
        return compare(base, changed).warnings;
    };
    const std::pair<void (*)(RunSummary&), std::string> cases[] = {
        {[](RunSummary& run) { run.level = Level::basic; },
         "The profiling levels differ: base detailed; new basic."},
        {[](RunSummary& run) { run.isAsync = true; },
         "The kinds of execution differ: base synchronous; new asynchronous."},
        {[](RunSummary& run) { run.graphs[0].dspClockHz = 0; },
         "The DSP clocks differ: base 806 MHz; new not told."},
        {[](RunSummary& run) { run.graphs[0].krelClockHz = 500'000'000; },
         "The Krel clocks differ: base 1017 MHz; new 500 MHz."},
        {[](RunSummary& run) { run.backendVersion = "v2"; }, "The backend versions differ: base v1; new v2."},
        {[](RunSummary& run) { run.generator = ""; }, "The generators differ: base runner v1; new not told."},
        {[](RunSummary& run) {
             run.labels = {{"site", "lab"}};
         },
         "The labels \"site\" differ: base not told; new \"lab\"."},
        {[](RunSummary& run) {
             run.labels = {{"empty", ""}};
         },
         "The labels \"empty\" differ: base not told; new \"\"."},
    };
    for (const auto& [change, warning] : cases) {
        EXPECT_EQ(warningsOf(change), std::vector<std::string>{warning});
    }
    Runs labelled[] = {runsOf({10}), runsOf({11})};
    for (int label = 0; label < 9; ++label) {
        for (Runs& side : labelled) {
            side[0].labels['l' + std::to_string(label)] = label == 4 ? "same" : &side == labelled ? "a" : "b";
        }
    }
    const std::vector<std::string> warnings = compare(labelled[0], labelled[1]).warnings;
    ASSERT_EQ(warnings.size(), 6U);
    EXPECT_EQ(warnings[4], "The labels \"l5\" differ: base \"a\"; new \"b\".");
    EXPECT_EQ(warnings[5], "The values of 3 more labels differ.");
    Runs mixed = runsOf(fiveUs);
    for (std::size_t log = 0; log < mixed.size(); ++log) {
        mixed[log].backendVersion = "v" + std::to_string(log);
    }
    EXPECT_EQ(compare(mixed, mixed).warnings[0],
              "The backend versions differ: base v0, v1, v2 and 2 more; new v0, v1, v2 and 2 more.");
    EXPECT_EQ(compare(mixed, mixed).warnings.size(), 6U);  // and each run is on both sides
}

Runs withTotal(Runs runs, Total total, std::optional<double> us) {
    for (RunSummary& run : runs) {
        run.graphs[0].totalsUs[static_cast<std::size_t>(total)] = us;
    }
    return runs;
}

Runs atLevel(Runs runs, std::optional<Level> level) {
    runs.back().level = level;
    return runs;
}

// Twenty logs, of which a few of the base are far off.
Values withoutOutliers(double us) {
    Values values;
    for (int log = 0; log < 20; ++log) {
        values.push_back(us + log % 5);
    }
    return values;
}

Values withOutliers(double us) {
    Values values = withoutOutliers(us);
    values[3] = values[11] = values[17] = us * 9;
    return values;
}

TEST(Gate, PassesOnlyWhatIsComparedAndNotSlower) {
    const Runs none = {runOf({})};
    const struct {
        std::string name;
        Runs base;
        Runs changed;
        Gate gate;
        GateOutcome outcome;
        std::string reason;
        bool isPaired = false;
    } cases[] = {
        {"slower",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.05},
         GateOutcome::slower,
         "Graph net: the time for Marlix, median grew by 10.0% (95% interval +7.9% to +12.0%), and 5.0% is "
         "allowed."},
        {"allowed", runsOf(fiveUs), runsOf(fiveSlowerUs), {.maxGrowth = 0.15}, GateOutcome::pass, ""},
        {"hardly more than allowed",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.0995},
         GateOutcome::slower,
         "Graph net: the time for Marlix, median grew by 9.9502% (95% interval +7.9% to +12.0%), and "
         "9.9500%"},
        {"above it, or not",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.105},
         GateOutcome::unsure,
         "Graph net: can't tell whether the time for Marlix, median grew by more than the 10.5% allowed: it "
         "changed by +10.0%, and the 95% interval +7.9% to +12.0% leaves +12.0% possible. It would "},
        {"below the floor",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.0, .minChangeUs = 130},
         GateOutcome::pass,
         ""},
        {"at the floor, or not",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.0, .minChangeUs = 105},
         GateOutcome::unsure,
         "Graph net: can't tell whether the time for Marlix, median grew by more than the 10.4% (105 us) "
         "allowed"},
        {"above the floor",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.0, .minChangeUs = 90},
         GateOutcome::slower,
         ""},
        {"surely slower, with outliers that turn the difference",
         runsOf(withOutliers(1000)),
         runsOf(withoutOutliers(1012)),
         {.maxGrowth = 0.0},
         GateOutcome::slower,
         ""},
        {"not sure",
         runsOf({1000, 1010, 990, 1200}),
         runsOf({1020, 1035, 995, 1300}),
         {.maxGrowth = 0.0},
         GateOutcome::unsure,
         ""},
        {"a large estimate that is not sure",
         runsOf({1000, 1150, 860, 1020, 930}),
         runsOf({1100, 1290, 950, 1160, 1010}),
         {.maxGrowth = 0.05},
         GateOutcome::unsure,
         ""},
        {"faster", runsOf(fiveSlowerUs), runsOf(fiveUs), {.maxGrowth = 0.0}, GateOutcome::pass, ""},
        {"one each",
         runsOf({100}),
         runsOf({106}),
         {.maxGrowth = 0.05},
         GateOutcome::slower,
         "Graph net: the time for Marlix, median grew by 6.0%, and 5.0% is allowed."},
        {"one each, just as much",
         runsOf({100}),
         runsOf({105}),
         {.maxGrowth = 0.05},
         GateOutcome::unsure,
         "Graph net: can't tell whether the time for Marlix, median grew by more than the 5.0% allowed: it "
         "changed by +5.0%, and one log a side does not tell how sure that is. Take 4 of each or more."},
        {"one each, a bit", runsOf({1000}), runsOf({1001}), {.maxGrowth = 0.0}, GateOutcome::slower, ""},
        {"six pairs",
         runsOf(sixUs),
         runsOf(sixSlowerUs),
         {.maxGrowth = 0.02},
         GateOutcome::slower,
         "Graph net: the time for Marlix, median grew by 3.0% (",
         true},
        {"five pairs",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.02},
         GateOutcome::incomparable,
         "The versions can't be compared: it takes 6 pairs of logs at least, and there are 5.",
         true},
        {"too few",
         runsOf({1, 2, 3}),
         runsOf(fiveUs),
         {.maxGrowth = 0.0},
         GateOutcome::incomparable,
         "The versions can't be compared: several logs a side have to be 4 at least, and there are 3 and 5."},
        {"one against several",
         runsOf({1}),
         runsOf(fiveUs),
         {.maxGrowth = 0.0},
         GateOutcome::incomparable,
         ""},
        {"no graph",
         none,
         runsOf({1}),
         {.maxGrowth = 0.0},
         GateOutcome::incomparable,
         "The versions can't be compared: the sides have no graph in common that was executed."},
        {"levels",
         runsOf({1}),
         atLevel(runsOf({1}), Level::basic),
         {.maxGrowth = 0.0},
         GateOutcome::incomparable,
         "The versions can't be compared: the logs have different profiling levels."},
        {"levels within a side",
         atLevel(runsOf(fiveUs), std::nullopt),
         runsOf(fiveUs),
         {.maxGrowth = 0.0},
         GateOutcome::incomparable,
         ""},
        {"no executions",
         runsOf({1}),
         withTotal(runsOf({1}), Total::marlix, {}),
         {.maxGrowth = 0.0},
         GateOutcome::incomparable,
         "Graph net: it can't be compared: a time for Marlix, median is in 1 of 1 base logs and in 0 of 1 "
         "new ones."},
        {"no layers",
         runsOf({1}),
         runsOf({1}),
         {.total = Total::layers, .maxGrowth = 0.0},
         GateOutcome::incomparable,
         "Graph net: it can't be compared: a time for ZEB layers is in 0 of 1 base logs and in 0 of 1 new "
         "ones."},
        {"layers",
         withTotal(runsOf({9}), Total::layers, 10),
         withTotal(runsOf({9}), Total::layers, 11),
         {.total = Total::layers, .maxGrowth = 0.0},
         GateOutcome::slower,
         "Graph net: the time for ZEB layers grew by 10.0%"},
        {"a base of 0",
         withTotal(runsOf({9}), Total::accelerator, 0),
         withTotal(runsOf({9}), Total::accelerator, 11),
         {.total = Total::accelerator, .maxGrowth = 0.0},
         GateOutcome::incomparable,
         "Graph net: it can't be compared: the time for Accelerator is 0 in a log."},
    };
    for (const auto& [name, base, changed, gate, outcome, reason, isPaired] : cases) {
        SCOPED_TRACE(name);
        const GateResult result = judge(compare(base, changed, {.isPaired = isPaired}), gate);
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_EQ(result.reasons.size(), outcome == GateOutcome::pass ? 0U : 1U);
        EXPECT_EQ(result.reasons.empty() ? "" : result.reasons[0].substr(0, reason.size()), reason);
    }
}

// By the formula of Gate.cpp, worked out by hand.
TEST(Gate, AsksForTheLogsThatWouldDecide) {
    const struct {
        double change;
        double spread;
        bool isPaired;
        std::string asked;
    } cases[] = {
        {0.0, 0.04, false, "About 12 logs a side would decide it."},
        {0.0, 0.06, true, "About 13 pairs of logs would decide it."},
        {0.06, 0.04, false, "About 27 logs a side would decide it."},
        {0.10, 0.06, false, "About 7 logs a side would decide it."},  // for the interval to leave 0
        {0.0, 0.01, false, "About 6 logs a side would decide it."},   // more than there are
        {0.045, 0.02, false,
         "It would take more than 50 logs a side to decide it; logs taken in turns and compared with "
         "--paired may need fewer."},
        {0.045, 0.04, true, "It would take more than 50 pairs of logs to decide it."},
    };
    for (const auto& [change, spread, isPaired, asked] : cases) {
        Comparison comparison;
        comparison.basis = isPaired ? Basis::paired : Basis::several;
        comparison.isPaired = isPaired;
        comparison.baseLogs = comparison.newLogs = std::vector<std::string>(5, "log");
        TotalChange row;
        row.baseLogs = row.newLogs = 5;
        row.base.mean = 1000;
        row.change = change;
        row.interval = Interval{-0.05, 0.2};
        row.spread = spread;
        comparison.graphs.resize(1);
        comparison.graphs[0].totals = {row};
        const GateResult result = judge(comparison, {.maxGrowth = 0.05});
        ASSERT_EQ(result.reasons.size(), 1U);
        EXPECT_EQ(result.reasons[0].substr(result.reasons[0].find("possible. ") + 10), asked);
    }
}

TEST(Gate, NamesALayerThatGrewBeyondTheOthers) {
    const auto resultOf = [](double all, double first, const Gate& gate, std::size_t logs = 5) {
        return judge(compare(layerRuns(driftingLayers(logs, 1.0, 0.0, 0)),
                             layerRuns(driftingLayers(logs, all, first, 3))),
                     gate);
    };
    const GateResult grown = resultOf(1.1, 0.42, {.maxLayerGrowth = 0.05});
    EXPECT_EQ(grown.outcome, GateOutcome::slower);
    ASSERT_EQ(grown.reasons.size(), 1U);
    EXPECT_EQ(grown.reasons[0].substr(0, 35), "Graph net: layer layer0 grew by 41.");
    EXPECT_NE(grown.reasons[0].find(" of all layers, and 5.0% is allowed."), std::string::npos);
    EXPECT_EQ(resultOf(1.1, 0.42, {.maxLayerGrowth = 0.05}, 1).outcome, GateOutcome::slower);
    EXPECT_EQ(resultOf(1.1, 0.0, {.maxLayerGrowth = 0.0}).outcome, GateOutcome::pass);
    EXPECT_EQ(resultOf(1.3, 0.03, {.maxLayerGrowth = 0.05}).outcome, GateOutcome::pass);
    EXPECT_EQ(resultOf(1.0, 0.42, {.maxLayerGrowth = 0.5}).outcome, GateOutcome::pass);
    EXPECT_EQ(resultOf(1.0, 0.42, {.maxLayerGrowth = 0.05, .minChangeUs = 50}).outcome, GateOutcome::pass);
    EXPECT_EQ(resultOf(1.0, -0.42, {.maxLayerGrowth = 0.05}).outcome, GateOutcome::pass);
    EXPECT_EQ(judge(compare(runsOf(fiveUs), runsOf(fiveSlowerUs)), {.maxLayerGrowth = 0.05}).outcome,
              GateOutcome::incomparable);
    EXPECT_EQ(
        judge(compare(layerRuns({{{"a", 9}}}), layerRuns({{{"a", 99}}})), {.maxLayerGrowth = 0.05}).outcome,
        GateOutcome::unsure);
}

TEST(Gate, JudgesEachGraphAndTheWorstDecides) {
    const Runs base = {runOf({graphOf("a", 10), graphOf("b", 10), graphOf("c", 10), graphOf("d", 10)})};
    Runs changed = {runOf({graphOf("a", 9), graphOf("b", 12), graphOf("c", 13)})};
    const GateResult slower = judge(compare(base, changed), {.maxGrowth = 0.0});
    EXPECT_EQ(slower.outcome, GateOutcome::slower);
    EXPECT_EQ(slower.reasons.size(), 3U);  // of the faster one nobody can tell
    changed[0].graphs[0].totalsUs = {};
    EXPECT_EQ(judge(compare(base, changed), {.maxGrowth = 0.0}).outcome, GateOutcome::incomparable);
    EXPECT_EQ(judge(compare(base, changed), {.maxGrowth = 0.0}).reasons.size(), 3U);
}

TEST(Gate, AGraphThatALogOfSeveralLacksIsNotComparedWithoutAWord) {
    Runs changed;
    for (const double us : fiveUs) {
        changed.push_back(runOf({graphOf("net", us), graphOf("more", us)}));
    }
    Runs base = changed;
    base[4].graphs.pop_back();
    for (RunSummary& run : base) {
        run.runId += " of the base";
    }
    const GateResult result = judge(compare(base, changed), {.maxGrowth = 0.0});
    EXPECT_EQ(result.outcome, GateOutcome::incomparable);
    ASSERT_EQ(result.reasons.size(), 2U);  // of the other one nobody can tell
    EXPECT_NE(result.reasons[1].find("in 4 of 5 base logs and in 5 of 5 new ones"), std::string::npos);
}

TEST(RunSummary, TakesTheTotalsOfARun) {
    analysis::Run run;
    run.header = Header{.generatorName = "runner", .generatorVersion = "v3", .backendVersion = "v4"};
    run.initUs = 311;
    Graph graph;
    graph.name = "b";
    graph.executions.durationUs = {0, 900, std::nullopt, 10, 30, 20};
    graph.breakdown = Breakdown{.executionCount = 5,
                                .backendUs = 18,
                                .queueWaitUs = std::nullopt,
                                .inputCopyUs = 1.5,
                                .outputCopyUs = 0.25,
                                .ipcUs = 3,
                                .acceleratorUs = 12};
    graph.average.durationUs = 192;
    graph.inference = {"Marlix", 192, PartKind::inference, "", {{"Backend", 18, PartKind::backend, "", {}}}};
    graph.inference.parts[0].parts = {{"an event", 9, PartKind::event, "", {}},
                                      {"not accounted for", 9, PartKind::rest, "", {}}};
    graph.finalizeUs = 200;
    graph.zebLayers = {{"x", 1, 2, {}}, {"y", 0, 5, {}}};
    graph.layerTypes = {{"SUPERCONV", 0, 2, 8}};
    run.graphs = {graph, {}};
    const RunSummary summary = summarize(run);
    EXPECT_EQ(summary.generator, "runner v3");
    EXPECT_EQ(summary.backendVersion, "v4");
    const GraphSummary& ofB = summary.graphs[0];
    EXPECT_EQ(ofB.spread.count, 4U);  // the first one has no time, and the second is no warm-up
    const std::optional<double> expected[totalCount] = {25, 192, 18, 12, 180, 3, 1.75, {}, 311, 200, 8};
    for (std::size_t position = 0; position < totalCount; ++position) {
        EXPECT_EQ(ofB.totalsUs[position], expected[position]) << nameOf(static_cast<Total>(position));
    }
    EXPECT_EQ(ofB.layers[0].us, 3.0);
    EXPECT_EQ(ofB.types[0].us, 8.0);
    EXPECT_EQ(ofB.inference.parts.size(), 1U);
    EXPECT_TRUE(ofB.inference.parts[0].parts.empty());  // events, which may be many
    EXPECT_EQ(nameOf(Total::backend, ofB.holdsQueueWait), "Backend");
    EXPECT_FALSE(summary.graphs[1].totalUs(Total::marlix));
    EXPECT_FALSE(summary.graphs[1].totalUs(Total::layers));

    run.graphs = {graph};
    run.graphs[0].breakdown->queueWaitUs = 4;
    EXPECT_EQ(nameOf(Total::backend, summarize(run).graphs[0].holdsQueueWait), "Backend with queue wait");
    run.graphs[0].executions.durationUs = {900};
    run.graphs.push_back(run.graphs[0]);
    run.graphs[1].executions.durationUs = {900, std::nullopt, 20};
    EXPECT_EQ(summarize(run).graphs[0].totalUs(Total::marlix), 900.0);  // there is none but the warm-up
    EXPECT_EQ(summarize(run).graphs[1].totalUs(Total::marlix), 20.0);
}

}  // namespace
}  // namespace zeb::analysis
