// Two versions as values: what is matched with what, what is sure, and what a gate makes of it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "analysis/Comparison.h"
#include "analysis/Gate.h"

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
    EXPECT_EQ(rowsOf(compare(base, changed, renames).graphs[0].layers),
              "twin slower 15; a faster -10; left gone -7; come new 3; young slower 2; twin same 0; ");
    EXPECT_EQ(
        rowsOf(compare(base, changed).graphs[0].layers),
        "young new 52; old gone -50; twin slower 15; a faster -10; left gone -7; come new 3; twin same 0; ");
    const Comparison wrong = compare(base, changed, std::vector<Rename>{{"old", "nowhere"}, {"none", "a"}});
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
            const double us = 100 + static_cast<double>((log * 3 + static_cast<std::size_t>(layer)) % 4);
            base[log].push_back({"still" + std::to_string(layer), us});
            changed[log].push_back({"still" + std::to_string(layer), us});
        }
    }
    EXPECT_EQ(rowsOf(compare(layerRuns(base), layerRuns(changed)).graphs[0].layers).substr(0, 12),
              "close ~ 12; ");
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
    };
    for (const auto& [change, warning] : cases) {
        EXPECT_EQ(warningsOf(change), std::vector<std::string>{warning});
    }
    Runs mixed = runsOf(fiveUs);
    for (std::size_t log = 0; log < mixed.size(); ++log) {
        mixed[log].backendVersion = "v" + std::to_string(log);
    }
    EXPECT_EQ(compare(mixed, mixed).warnings[0],
              "The backend versions differ: base v0, v1, v2 and 2 more; new v0, v1, v2 and 2 more.");
    EXPECT_EQ(compare(mixed, mixed).warnings.size(), 6U);  // and each log twice
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

TEST(Gate, PassesOnlyWhatIsComparedAndNotSlower) {
    const Runs none = {runOf({})};
    const struct {
        std::string name;
        Runs base;
        Runs changed;
        Gate gate;
        GateOutcome outcome;
        std::string reason;
    } cases[] = {
        {"slower",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.maxGrowth = 0.05},
         GateOutcome::slower,
         "Graph net: the time for Marlix grew by 10.0% ("},
        {"allowed", runsOf(fiveUs), runsOf(fiveSlowerUs), {.maxGrowth = 0.15}, GateOutcome::pass, ""},
        {"below the floor",
         runsOf(fiveUs),
         runsOf(fiveSlowerUs),
         {.minChangeUs = 100.5},
         GateOutcome::pass,
         ""},
        {"at the floor", runsOf(fiveUs), runsOf(fiveSlowerUs), {.minChangeUs = 100}, GateOutcome::slower, ""},
        {"not sure",
         runsOf({1000, 1010, 990, 1200}),
         runsOf({1020, 1035, 995, 1300}),
         {},
         GateOutcome::pass,
         ""},
        {"faster", runsOf(fiveSlowerUs), runsOf(fiveUs), {}, GateOutcome::pass, ""},
        {"one each",
         runsOf({100}),
         runsOf({106}),
         {.maxGrowth = 0.05},
         GateOutcome::slower,
         "Graph net: the time for Marlix grew by 6.0%, and 5.0% is allowed."},
        {"just as much", runsOf({100}), runsOf({105}), {.maxGrowth = 0.05}, GateOutcome::pass, ""},
        {"one each, a bit", runsOf({1000}), runsOf({1001}), {}, GateOutcome::slower, ""},
        {"too few",
         runsOf({1, 2, 3}),
         runsOf(fiveUs),
         {},
         GateOutcome::incomparable,
         "The versions can't be compared: several logs a side have to be 4 at least, and there are 3 and 5."},
        {"one against several", runsOf({1}), runsOf(fiveUs), {}, GateOutcome::incomparable, ""},
        {"no graph",
         none,
         runsOf({1}),
         {},
         GateOutcome::incomparable,
         "The versions can't be compared: the sides have no graph in common that was executed."},
        {"levels",
         runsOf({1}),
         atLevel(runsOf({1}), Level::basic),
         {},
         GateOutcome::incomparable,
         "The versions can't be compared: the logs have different profiling levels."},
        {"levels within a side",
         atLevel(runsOf(fiveUs), std::nullopt),
         runsOf(fiveUs),
         {},
         GateOutcome::incomparable,
         ""},
        {"no executions",
         runsOf({1}),
         withTotal(runsOf({1}), Total::marlix, {}),
         {},
         GateOutcome::incomparable,
         "Graph net: it can't be compared: a time for Marlix is in 1 of 1 base logs and in 0 of 1 new ones."},
        {"no layers",
         runsOf({1}),
         runsOf({1}),
         {.total = Total::layers},
         GateOutcome::incomparable,
         "Graph net: it can't be compared: a time for ZEB layers is in 0 of 1 base logs and in 0 of 1 new "
         "ones."},
        {"layers",
         withTotal(runsOf({9}), Total::layers, 10),
         withTotal(runsOf({9}), Total::layers, 11),
         {.total = Total::layers},
         GateOutcome::slower,
         "Graph net: the time for ZEB layers grew by 10.0%"},
        {"a base of 0",
         withTotal(runsOf({9}), Total::accelerator, 0),
         withTotal(runsOf({9}), Total::accelerator, 11),
         {.total = Total::accelerator},
         GateOutcome::incomparable,
         "Graph net: it can't be compared: the time for Accelerator is 0 in a log."},
    };
    for (const auto& [name, base, changed, gate, outcome, reason] : cases) {
        SCOPED_TRACE(name);
        const GateResult result = judge(compare(base, changed), gate);
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_EQ(result.reasons.size(), outcome == GateOutcome::pass ? 0U : 1U);
        EXPECT_EQ(result.reasons.empty() ? "" : result.reasons[0].substr(0, reason.size()), reason);
    }
}

TEST(Gate, JudgesEachGraphAndTheWorstDecides) {
    const Runs base = {runOf({graphOf("a", 10), graphOf("b", 10), graphOf("c", 10), graphOf("d", 10)})};
    Runs changed = {runOf({graphOf("a", 9), graphOf("b", 12), graphOf("c", 13)})};
    const GateResult slower = judge(compare(base, changed), {});
    EXPECT_EQ(slower.outcome, GateOutcome::slower);
    EXPECT_EQ(slower.reasons.size(), 2U);
    changed[0].graphs[0].totalsUs = {};
    EXPECT_EQ(judge(compare(base, changed), {}).outcome, GateOutcome::incomparable);
    EXPECT_EQ(judge(compare(base, changed), {}).reasons.size(), 3U);
}

TEST(Gate, AGraphThatALogOfSeveralLacksIsNotComparedWithoutAWord) {
    Runs changed;
    for (const double us : fiveUs) {
        changed.push_back(runOf({graphOf("net", us), graphOf("more", us)}));
    }
    Runs base = changed;
    base[4].graphs.pop_back();
    const GateResult result = judge(compare(base, changed), {});
    EXPECT_EQ(result.outcome, GateOutcome::incomparable);
    ASSERT_EQ(result.reasons.size(), 1U);
    EXPECT_NE(result.reasons[0].find("in 4 of 5 base logs and in 5 of 5 new ones"), std::string::npos);
}

TEST(RunSummary, TakesTheTotalsOfARun) {
    analysis::Run run;
    run.header = Header{.generatorName = "runner", .generatorVersion = "v3", .backendVersion = "v4"};
    run.steps = {{StepKind::libraryLoad, "", {}, 1000, {}}, {StepKind::initStep, "", {}, 1, {}},
                 {StepKind::compose, "b", {}, 10, {}},      {StepKind::finalize, "a", {}, 100, {}},
                 {StepKind::finalize, "b", {}, 200, {}},    {StepKind::finalize, "b", {}, {}, {}}};
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
    graph.zebLayers = {{"x", 1, 2, {}}, {"y", 0, 5, {}}};
    graph.layerTypes = {{"SUPERCONV", 0, 2, 8}};
    run.graphs = {graph, {}};
    const RunSummary summary = summarize(run);
    EXPECT_EQ(summary.generator, "runner v3");
    EXPECT_EQ(summary.backendVersion, "v4");
    const GraphSummary& ofB = summary.graphs[0];
    EXPECT_EQ(ofB.spread.count, 4U);  // the first one has no time, and the second is no warm-up
    const std::optional<double> expected[totalCount] = {25, 18, 12, 3, 1.75, {}, 311, 200, 8};
    for (std::size_t position = 0; position < totalCount; ++position) {
        EXPECT_EQ(ofB.totalsUs[position], expected[position]) << nameOf(static_cast<Total>(position));
    }
    EXPECT_EQ(ofB.layers[0].us, 3.0);
    EXPECT_EQ(ofB.types[0].us, 8.0);
    EXPECT_FALSE(summary.graphs[1].totalUs(Total::marlix));
    EXPECT_FALSE(summary.graphs[1].totalUs(Total::layers));

    run.steps.push_back({StepKind::init, "", {}, 77, {}});
    run.graphs = {graph};
    run.graphs[0].executions.durationUs = {900};
    run.graphs.push_back(run.graphs[0]);
    run.graphs[1].executions.durationUs = {900, std::nullopt, 20};
    EXPECT_EQ(summarize(run).graphs[1].totalUs(Total::marlix), 20.0);
    run.graphs.pop_back();
    const RunSummary single = summarize(run);
    EXPECT_EQ(single.graphs[0].totalUs(Total::init), 77.0);
    EXPECT_EQ(single.graphs[0].totalUs(Total::finalize), 300.0);  // whatever they call the one graph
    EXPECT_EQ(single.graphs[0].totalUs(Total::marlix), 900.0);    // there is none but the warm-up
}

}  // namespace
}  // namespace zeb::analysis
