// The text of a comparison, whole.

#include <gtest/gtest.h>

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
        layer.change = now / base - 1.0;
    }
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
    TotalChange marlix = totalOf(Total::marlix, {1000, 990, 1010}, {1100, 1090, 1120}, 5);
    marlix.change = 0.1;
    marlix.interval = analysis::Interval{0.08, 0.125};
    marlix.p = 0.0079365;
    marlix.verdict = Verdict::slower;
    TotalChange ipc = totalOf(Total::ipc, {50, 40, 60}, {49, 44, 66}, 5);
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
    comparison.addedGraphs = {"more"};
    comparison.goneGraphs = {"less"};
    return comparison;
}

TEST(ComparisonText, ShowsWhatIsSureAndCountsWhatIsSmall) {
    EXPECT_EQ(textOf(severalLogs()), R"(Base  5 logs: a1, a??2, a3 and 2 more
New   2 logs: b1, b2
A change stands where it is sure, else "~"; the interval holds the true change of a total with 95%.
Warning: The backend versions differ: base v1; new v?2.

Graph net

Totals
                           Base us                     New us  Change us  Change     95% interval      p
  Marlix  1000.0 (990.0 to 1010.0)  1100.0 (1090.0 to 1120.0)     +100.0  +10.0%  +8.0% to +12.5%  0.008  slower
  IPC          50.0 (40.0 to 60.0)        49.0 (44.0 to 66.0)       -1.0       ~  -10.0% to +5.0%  0.500

ZEB layers
  Layer       Base us  New us  Change us   Change       p
  conv1         100.0   200.0     +100.0  +100.0%  <0.001  slower
  old            60.0     0.0      -60.0                   gone
  fast           50.0    25.0      -25.0   -50.0%   0.010  faster
  young           0.0    12.0      +12.0                   new
  loud          100.0   110.0      +10.0        ~   0.200
  [2 others]    190.0   190.5       +0.5
  Sum           500.0   537.5      +37.5

Graph less is gone: the base alone has it.

Graph more is new: the base does not have it.
)");
}

TEST(ComparisonText, HidesNothingWhereNothingIsToBeHidden) {
    const std::string all = textOf(severalLogs(), {.hideBelow = 0.0});
    EXPECT_NE(all.find("\n  quiet"), std::string::npos);
    EXPECT_EQ(all.find("other"), std::string::npos);
    const std::string few = textOf(severalLogs(), {.hideBelow = 0.15});
    EXPECT_NE(few.find("  [6 others]    400.0   337.5      -62.5\n"), std::string::npos);
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
    TotalChange marlix = totalOf(Total::marlix, {100, 100, 100}, {90, 90, 90}, 1);
    marlix.change = -0.1;
    marlix.verdict = Verdict::faster;
    TotalChange copies = totalOf(Total::copies, {}, {9, 9, 9}, 1);
    copies.baseLogs = 0;
    copies.verdict = Verdict::added;
    Comparison comparison;
    comparison.baseLogs = {"a"};
    comparison.newLogs = {"b"};
    comparison.graphs = {graphOf({marlix, copies}, {})};
    comparison.graphs[0].executions = {analysis::Spread{19, {80, 100, 120.5, 130, 140}, {}},
                                       analysis::Spread{7, {70, 90, 95, 96, 97}, {}}};
    EXPECT_EQ(textOf(comparison), R"(Base  1 log: a
New   1 log: b
One log against one: a difference between runs can't be told from one between versions.
With 4 logs or more of each it can.

Graph net

Executions, without the first
        Count  Min us  Median us  p90 us  p99 us  Max us
  Base     19    80.0      100.0   120.5       -   140.0
  New       7    70.0       90.0       -       -    97.0

Totals
          Base us  New us  Change us  Change
  Marlix    100.0    90.0      -10.0  -10.0%  faster
  Copies        -     9.0          -          new
)");
}

TEST(ComparisonText, TooFewLogsMakeEveryChangeUnsure) {
    Comparison comparison;
    comparison.basis = Basis::tooFew;
    comparison.baseLogs = comparison.newLogs = {"a", "b"};
    comparison.graphs = {graphOf({totalOf(Total::marlix, {2, 1, 3}, {4, 3, 5}, 2)},
                                 {layerOf("conv1", 100, 200, {}, Verdict::unsure)})};
    const std::string text = textOf(comparison);
    EXPECT_NE(text.find("Too few logs: it takes 4 or more of each"), std::string::npos);
    EXPECT_NE(text.find("4.0 (3.0 to 5.0)       +2.0       ~\n"), std::string::npos);
    EXPECT_NE(text.find("conv1    100.0   200.0     +100.0       ~\n"), std::string::npos);
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
        R"("a3","a4","a5"],"new":["b1","b2"],"different_levels":false,"warnings":[")"
        "\xEF\xBF\xBD"
        R"("],"graphs":[{"base_name":"net","new_name":"net","base_logs":0,"new_logs":0,)"
        R"("base_executions":{"count":19,"min_us":80.0,"median_us":100.0,"p90_us":120.5,"p99_us":130.0,)"
        R"("max_us":140.0},"new_executions":{"count":7,"min_us":70.0,"median_us":90.0,"p90_us":95.0,)"
        R"("p99_us":96.0,"max_us":97.0},"totals":[)"
        R"({"total":"marlix","base":{"logs":5,"median_us":1000.0,"min_us":990.0,)"
        R"("max_us":1010.0},"new":{"logs":5,"median_us":1100.0,"min_us":1090.0,)"
        R"("max_us":1120.0},"change_us":100.0,"change":0.1,"low":0.08,"high":0.125,)"
        R"("p":0.0079365,"verdict":"slower"}],"layers":[{"name":"conv1","base_us":100.0,)"
        R"("new_us":200.0,"change_us":100.0,"change":1.0,"p":1e-05,"verdict":"slower"},)"
        R"({"name":"old","base_us":60.0,"new_us":0.0,"change_us":-60.0,"change":null,)"
        R"("p":null,"verdict":"gone"}],"types":[]}],"gone_graphs":["less"],)"
        R"("new_graphs":["more"],"gate":{"total":"marlix","fail_above":0.05,)"
        R"("min_change_us":3.0,"outcome":"slower","reasons":["Graph net: the time for )"
        R"(Marlix grew by 10.0% (8.0% to 12.5%), and 5.0% is allowed."]}})"
        "\n");
}

}  // namespace
}  // namespace zeb::forms
