// The text of a comparison, whole.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "forms/json/ComparisonJson.h"
#include "forms/text/ComparisonText.h"

namespace zeb::forms {
namespace {

using analysis::Basis;
using analysis::Comparison;
using analysis::GraphComparison;
using analysis::LayerChange;
using analysis::Total;
using analysis::TotalChange;
using analysis::Verdict;

std::string textOf(const Comparison& comparison, const ComparisonTextOptions& options = {}) {
    std::ostringstream out;
    printComparison(out, comparison, options);
    return out.str();
}

LayerChange layerOf(std::string name, double base, double now, std::optional<double> p, Verdict verdict) {
    LayerChange layer;
    layer.name = std::move(name);
    layer.baseUs = base;
    layer.newUs = now;
    if (base > 0.0 && verdict != Verdict::gone) {
        layer.change = layer.excess = now / base - 1.0;
    }
    layer.excessUs = now - base;
    layer.p = p;
    layer.verdict = verdict;
    return layer;
}

TotalChange totalOf(Total total, analysis::Range base, analysis::Range now, std::size_t logs) {
    TotalChange row;
    row.total = total;
    row.baseLogs = row.newLogs = logs;
    row.base = base;
    row.changed = now;
    row.base.mean = base.median;
    row.changed.mean = now.median;
    return row;
}

GraphComparison graphOf(std::vector<TotalChange> totals, std::vector<LayerChange> layers) {
    GraphComparison graph;
    graph.baseName = graph.newName = "net";
    graph.totals = std::move(totals);
    graph.layers = std::move(layers);
    return graph;
}

Comparison severalLogs() {
    TotalChange marlix = totalOf(Total::marlix, {0, 1000, 990, 1010}, {0, 1100, 1090, 1120}, 5);
    marlix.change = 0.1;
    marlix.interval = analysis::Interval{0.08, 0.125};
    marlix.p = 0.0079365;
    marlix.verdict = Verdict::slower;
    TotalChange ipc = totalOf(Total::ipc, {0, 50, 40, 60}, {0, 49, 44, 66}, 5);
    ipc.change = -0.02;
    ipc.interval = analysis::Interval{-0.1, 0.05};
    ipc.p = 0.5;
    Comparison comparison;
    comparison.basis = Basis::several;
    comparison.baseLogs = {"a1", "a\x1B\n2", "a3", "a4", "a5"};
    comparison.newLogs = {"b1", "b2"};
    comparison.warnings = {"The backend versions differ: base v1; new v\n2."};
    comparison.graphs = {graphOf(
        {marlix, ipc},
        {layerOf("conv1", 100, 200, 0.00001, Verdict::slower), layerOf("old", 60, 0, {}, Verdict::gone),
         layerOf("fast", 50, 25, 0.01, Verdict::faster), layerOf("young", 0, 12, {}, Verdict::added),
         layerOf("loud", 100, 110, 0.2, Verdict::unsure), layerOf("still", 100, 100.5, 1.0, Verdict::unsure),
         layerOf("quiet", 90, 90, 1.0, Verdict::unsure)})};
    comparison.graphs[0].answer = {analysis::Answer::Kind::slower,
                                   "Slower by 10.0%: an inference takes 1100 us in place of 1000 us.",
                                   {"conv1 +100 us, 98% of it", "nothing else"}};
    comparison.addedGraphs = {"more"};
    comparison.goneGraphs = {"less"};
    return comparison;
}

TEST(ComparisonText, ShowsWhatIsSureAndCountsWhatIsSmall) {
    EXPECT_EQ(textOf(severalLogs()),
              R"(Graph net: Slower by 10.0%: an inference takes 1100 us in place of 1000 us.
  - conv1 +100 us, 98% of it
  - nothing else

Base  5 logs: a1, a??2, a3 and 2 more
New   2 logs: b1, b2
A change stands where it is sure, else "~"; the interval holds the true change of a total with 95%.
Warning: The backend versions differ: base v1; new v?2.

Graph net

Totals
                             Base us               New us  Change us  Change     95% interval      p
  Marlix, median  1000 (990 to 1010)  1100 (1090 to 1120)       +100  +10.0%  +8.0% to +12.5%  0.008  slower
  IPC                  50 (40 to 60)        49 (44 to 66)         -1       ~  -10.0% to +5.0%  0.500

ZEB layers
  Layer       Base us  New us  Change us   Change       p
  conv1           100     200       +100  +100.0%  <0.001  slower
  old              60       0        -60                   gone
  fast             50      25        -25   -50.0%   0.010  faster
  young             0      12        +12                   new
  loud            100     110        +10        ~   0.200
  [2 others]    190.0   190.5       +0.5
  Sum           500.0   537.5      +37.5

Graph less is gone: the base alone has it.

Graph more is new: the base does not have it.
)");
}

TEST(ComparisonText, TellsWhatLayersShareApartFromWhatLiesBeyond) {
    Comparison comparison = severalLogs();
    GraphComparison& graph = comparison.graphs[0];
    graph.totals.clear();
    graph.shared = analysis::SharedChange{0.1, analysis::Interval{0.08, 0.12}, Verdict::slower};
    graph.layers[0].excess = 0.818;
    const std::string text = textOf(comparison);
    EXPECT_EQ(text.substr(text.find("\nZEB layers"), text.find("\nGraph less") - text.find("\nZEB layers")),
              R"(
ZEB layers
  All layers share +10.0% (+8.0% to +12.0%); a layer is marked by what it changed beyond that.
  Layer       Base us  New us  Change us   Change  Beyond       p
  conv1           100     200       +100  +100.0%  +81.8%  <0.001  slower
  old              60       0        -60                           gone
  fast             50      25        -25   -50.0%  -50.0%   0.010  faster
  young             0      12        +12                           new
  loud            100     110        +10   +10.0%       ~   0.200
  [2 others]    190.0   190.5       +0.5
  Sum           500.0   537.5      +37.5
)");
}

TEST(ComparisonText, FitsTheTerminal) {
    Comparison comparison = severalLogs();
    comparison.graphs[0].layers[0].name = "a_block_of_the_network/with_a_long_name/conv_pw_13";
    std::size_t before = 1000;
    for (const std::size_t width : {200U, 100U, 75U, 55U}) {
        const std::string text = textOf(comparison, {.width = width});
        std::istringstream lines(text);
        std::size_t longest = 0;
        for (std::string line; std::getline(lines, line);) {
            longest = std::max(longest, line.size());
        }
        EXPECT_LE(longest, width);
        EXPECT_LT(longest, before) << width;
        before = longest;
        EXPECT_EQ(text.find("990 to 1010") != std::string::npos, width == 200) << text;
        EXPECT_EQ(text.find("+8.0% to +12.5%") != std::string::npos, width >= 100) << text;
        EXPECT_NE(text.find("pw_13 "), std::string::npos) << text;
    }
}

TEST(ComparisonText, ShowsSoManyRowsAndTheMarkedOnesFirst) {
    Comparison comparison = severalLogs();
    auto& layers = comparison.graphs[0].layers;
    layers.clear();
    for (int layer = 0; layer < 30; ++layer) {
        layers.push_back(layerOf("layer" + std::to_string(layer), 100, 150 - layer, 0.5, Verdict::unsure));
    }
    layers[28].verdict = Verdict::slower;
    const std::string text = textOf(comparison);
    EXPECT_NE(text.find("\n  layer18 "), std::string::npos);
    EXPECT_EQ(text.find("\n  layer19 "), std::string::npos);
    EXPECT_NE(text.find("\n  layer28 "), std::string::npos);
    EXPECT_NE(text.find("\n  [10 others]     1000    1264       +264\n"), std::string::npos) << text;
    EXPECT_NE(textOf(comparison, {.rows = 1}).find("\n  layer28 "), std::string::npos);
    EXPECT_NE(textOf(comparison, {.rows = 30}).find("\n  layer29 "), std::string::npos);
}

TEST(ComparisonText, HidesNothingWhereNothingIsToBeHidden) {
    const std::string all = textOf(severalLogs(), {.hideBelow = 0.0});
    EXPECT_NE(all.find("\n  quiet"), std::string::npos);
    EXPECT_EQ(all.find("other"), std::string::npos);
    const std::string few = textOf(severalLogs(), {.hideBelow = 0.15});  // what is marked stays
    EXPECT_NE(few.find("  [3 others]    290.0   300.5      +10.5\n"), std::string::npos) << few;
}

TEST(ComparisonText, ColoursWholeRowsRedAndGreen) {
    const std::string text = textOf(severalLogs(), {.hasColour = true});
    EXPECT_NE(text.find("\n\x1B[31m  conv1 "), std::string::npos);
    EXPECT_NE(text.find("  slower\x1B[0m\n"), std::string::npos);
    EXPECT_NE(text.find("\n\x1B[32m  fast "), std::string::npos);
    EXPECT_NE(text.find("\n  loud "), std::string::npos);
    EXPECT_EQ(textOf(severalLogs()).find('\x1B'), std::string::npos);
}

TEST(ComparisonText, OneLogAgainstOneShowsExecutionsAndSaysWhatItCannotTell) {
    TotalChange marlix = totalOf(Total::marlix, {0, 100, 100, 100}, {0, 90, 90, 90}, 1);
    marlix.change = -0.1;
    marlix.verdict = Verdict::faster;
    TotalChange copies = totalOf(Total::copies, {}, {0, 9, 9, 9}, 1);
    copies.baseLogs = 0;
    copies.verdict = Verdict::added;
    Comparison comparison;
    comparison.baseLogs = {"a"};
    comparison.newLogs = {"b"};
    comparison.graphs = {graphOf({marlix, copies}, {})};
    comparison.graphs[0].executions = {analysis::Spread{19, {80, 100, 120.5, 130, 140}, {}},
                                       analysis::Spread{7, {70, 90, 95, 96, 97}, {}}};
    EXPECT_EQ(textOf(comparison), R"(Graph net:

Base  1 log: a
New   1 log: b
One log against one: a difference between runs can't be told from one between versions. With 4 logs or more of each it can.

Graph net

Executions, without the first
        Count  Min us  Median us  p90 us  p99 us  Max us
  Base     19      80        100   120.5       -     140
  New       7      70         90       -       -      97

Totals
                  Base us  New us  Change us  Change
  Marlix, median      100      90        -10  -10.0%  faster
  Copies                -       9          -          new
)");
}

TEST(ComparisonText, TooFewLogsMakeEveryChangeUnsure) {
    Comparison comparison;
    comparison.basis = Basis::tooFew;
    comparison.baseLogs = comparison.newLogs = {"a", "b"};
    comparison.graphs = {graphOf({totalOf(Total::marlix, {0, 2, 1, 3}, {0, 4, 3, 5}, 2)},
                                 {layerOf("conv1", 100, 200, {}, Verdict::unsure)})};
    const std::string text = textOf(comparison);
    EXPECT_NE(text.find("Too few logs: it takes 4 or more of each"), std::string::npos);
    EXPECT_NE(text.find("4 (3 to 5)         +2       ~\n"), std::string::npos);
    EXPECT_NE(text.find("conv1      100     200       +100       ~\n"), std::string::npos);
    comparison.graphs.clear();
    EXPECT_NE(textOf(comparison).find("No graph was executed on both sides"), std::string::npos);
}

TEST(ComparisonJson, HoldsAllThatWasCompared) {
    Comparison comparison = severalLogs();
    comparison.warnings = {"\xFF"};
    comparison.graphs[0].totals.pop_back();
    comparison.graphs[0].layers.resize(2);
    comparison.graphs[0].executions = {analysis::Spread{19, {80, 100, 120.5, 130, 140}, {}},
                                       analysis::Spread{7, {70, 90, 95, 96, 97}, {}}};
    std::ostringstream out;
    writeComparisonJson(out, comparison, analysis::Gate{.maxGrowth = 0.05, .minChangeUs = 3});
    EXPECT_EQ(
        out.str(),
        R"({"schema":"zeb-profile-comparison/1","basis":"several","base":["a1","a\u001b\n2",)"
        R"("a3","a4","a5"],"new":["b1","b2"],"different_levels":false,"copies":[],)"
        R"("same_run":false,"warnings":[")"
        "\xEF\xBF\xBD"
        R"("],"graphs":[{"base_name":"net","new_name":"net","base_logs":0,"new_logs":0,)"
        R"("answer":{"kind":"slower","text":"Slower by 10.0%: an inference takes 1100 us in place )"
        R"(of 1000 us.","causes":["conv1 +100 us, 98% of it","nothing else"]},)"
        R"("base_executions":{"count":19,"min_us":80.0,"median_us":100.0,"p90_us":120.5,)"
        R"("p99_us":130.0,"max_us":140.0},"new_executions":{"count":7,"min_us":70.0,)"
        R"("median_us":90.0,"p90_us":95.0,"p99_us":96.0,"max_us":97.0},"shared":null,"totals":[)"
        R"({"total":"marlix","name":"Marlix, median","base":{"logs":5,"mean_us":1000.0,"median_us":1000.0,)"
        R"("min_us":990.0,"max_us":1010.0},"new":{"logs":5,"mean_us":1100.0,"median_us":1100.0,)"
        R"("min_us":1090.0,"max_us":1120.0},"change_us":100.0,"change":0.1,"low":0.08,)"
        R"("high":0.125,"p":0.0079365,"spread":null,"verdict":"slower"}],"inference":null,"layers":[)"
        R"({"name":"conv1","base_us":100.0,"new_us":200.0,"change_us":100.0,"change":1.0,)"
        R"("excess":1.0,"excess_us":100.0,"p":1e-05,"verdict":"slower"},)"
        R"({"name":"old","base_us":60.0,"new_us":0.0,"change_us":-60.0,"change":null,)"
        R"("excess":null,"excess_us":-60.0,"p":null,"verdict":"gone"}],"types":[]}],)"
        R"("gone_graphs":["less"],"new_graphs":["more"],"gate":{"total":"marlix",)"
        R"("fail_above":0.05,"fail_layer_above":null,"min_change_us":3.0,"fail_unsure":false,)"
        R"("outcome":"slower","reasons":["Graph net: the time for Marlix, median grew by 10.0% )"
        R"((95% interval +8.0% to +12.5%), and 5.0% is allowed."]}})"
        "\n");
}

}  // namespace
}  // namespace zeb::forms
