// The page of two versions: what it is made of, and what a browser makes of it.

#include <gtest/gtest.h>

#include <fstream>

#include "PageSupport.h"
#include "forms/json/ComparisonJson.h"

namespace zeb::forms {
namespace {

using analysis::Comparison;
using analysis::LayerChange;
using analysis::Total;
using analysis::TotalChange;
using analysis::Verdict;
using samplelog::NetworkOptions;
using test::Compared;
using test::countOf;
using test::pageOf;

std::vector<analysis::RunSummary> sideOf(const std::string& name, std::size_t logs, NetworkOptions options) {
    std::vector<analysis::RunSummary> side;
    for (std::size_t number = 1; number <= logs; ++number) {
        side.push_back(analysis::summarize(test::runOf(options)));
        side.back().logFile = name + std::to_string(number);
        options.seed = options.seed.value_or(0) + 1;
    }
    return side;
}

Compared comparedLogs(std::size_t logs, const NetworkOptions& base, const NetworkOptions& changed) {
    return {analysis::compare(sideOf("base", logs, base), sideOf("new", logs, changed)), {}};
}

LayerChange layerOf(std::string name, double base, double now, std::optional<double> p, Verdict verdict) {
    LayerChange layer;
    layer.name = std::move(name);
    layer.baseUs = base;
    layer.newUs = now;
    layer.change = base > 0.0 && now > 0.0 ? std::optional(now / base - 1.0) : std::nullopt;
    layer.p = p;
    layer.verdict = verdict;
    return layer;
}

TotalChange totalOf(Total total, double base, double now, double low, double high, Verdict verdict) {
    TotalChange row;
    row.total = total;
    row.baseLogs = row.newLogs = 5;
    row.base = {base, base, base - 5, base + 5};
    row.changed = {now, now, now - 5, now + 5};
    row.change = now / base - 1.0;
    row.interval = analysis::Interval{low, high};
    row.p = 0.25;
    row.verdict = verdict;
    return row;
}

// One of each kind of row, several logs a side.
Compared allKinds() {
    Comparison comparison;
    comparison.basis = analysis::Basis::several;
    comparison.baseLogs = {"a1", "a2", "a3", "a4", "a5"};
    comparison.newLogs = {"b1", "b2", "b3", "b4"};
    comparison.warnings = {"The backend versions differ: base v1; new v2."};
    comparison.goneGraphs = {"less"};
    comparison.addedGraphs = {"more"};
    analysis::GraphComparison graph;
    graph.baseName = graph.newName = "net";
    graph.totals = {totalOf(Total::marlix, 1000, 1100, 0.08, 0.125, Verdict::slower),
                    totalOf(Total::average, 1000, 1090, -0.1, 0.2, Verdict::unsure),
                    totalOf(Total::backend, 900, 810, -0.12, -0.05, Verdict::faster),
                    totalOf(Total::ipc, 50, 49, -0.1, 0.05, Verdict::unsure),
                    totalOf(Total::queueWait, 1, 60, 1, 90, Verdict::slower)};
    graph.inference = analysis::PartChange{
        "Marlix", 1000, 1090, Verdict::unsure, {{"Backend", 900, 810, Verdict::faster, {}}}};
    graph.layers = {layerOf("conv10", 100, 200, 0.00001, Verdict::slower),
                    layerOf("old", 60, 0, {}, Verdict::gone),
                    layerOf("conv9", 50, 25, 0.01, Verdict::faster),
                    layerOf("young", 0, 12, {}, Verdict::added),
                    layerOf("loud", 100, 102.6, 0.2, Verdict::unsure),
                    layerOf("still", 100, 100.5, 1.0, Verdict::unsure),
                    layerOf("quiet", 90, 90, 1.0, Verdict::unsure)};
    graph.types = {layerOf("SUPERCONV", 500, 525, 0.04, Verdict::slower)};
    graph.answer = {analysis::Answer::Kind::slower,
                    "Slower by 10.0%: an inference takes 1100 us in place of 1000 us.",
                    {}};
    comparison.graphs = {graph};
    return {comparison, analysis::Gate{.maxGrowth = 0.05, .minChangeUs = 3}};
}

Compared hostile() {
    Compared compared = allKinds();
    Comparison& comparison = compared.comparison;
    comparison.baseLogs[0] = "<!--<script>" + test::hostileScript;
    comparison.newLogs[3] = test::hostileImage;
    comparison.warnings[0] = test::hostileImage;
    comparison.goneGraphs = comparison.addedGraphs = {test::hostileScript};
    analysis::GraphComparison& graph = comparison.graphs[0];
    graph.baseName = test::hostileImage;
    graph.newName = test::hostileScript + "\xFF";
    graph.layers[0].name = test::hostileImage;
    graph.layers[1].name =
        std::string("\0\x1B[31m \" ' ` \\u003c \xE2\x80\xA8 \xE2\x80\xAE", 27) + test::hostileScript;
    graph.layers[2].name = "__proto__";
    graph.types[0].name = "]]>" + test::hostileImage;
    compared.gate->total = Total::layers;  // which the graph lacks: it is named in the reason
    return compared;
}

std::string jsonOf(const Compared& compared) {
    std::ostringstream json;
    writeComparisonJson(json, compared.comparison, compared.gate);
    return json.str();
}

std::string withoutEscapes(std::string text) {
    const std::pair<std::string_view, std::string_view> escapes[] = {
        {"\\u003c", "<"}, {"\\u003e", ">"}, {"\\u0026", "&"}};
    for (const auto& [escaped, plain] : escapes) {
        for (std::size_t at = 0; (at = text.find(escaped, at)) != std::string::npos;) {
            text.replace(at, escaped.size(), plain);
        }
    }
    return text;
}

TEST(ComparisonPage, HoldsTheComparisonAndNothingOfALogEndsItsPlace) {
    const std::string page = pageOf(hostile());
    EXPECT_EQ(countOf(page, "<script"), 3U);
    EXPECT_EQ(countOf(page, "</script"), 3U);
    EXPECT_EQ(countOf(page, "<!--"), 0U);
    const std::string data = test::dataOf(page, "comparison-data");
    EXPECT_EQ(data.find_first_of("<>&"), std::string::npos);
    // The name with an escape of its own is the one difference that putting the characters back makes.
    EXPECT_EQ(withoutEscapes(data), withoutEscapes(jsonOf(hostile())));
    EXPECT_EQ(
        test::dataOf(page, "view-data"),
        R"({"hide_below":0.005,"quantiles":[{"key":"min_us","title":"Min","min_count":1},)"
        R"({"key":"median_us","title":"Median","min_count":1},)"
        R"({"key":"p90_us","title":"p90","min_count":10},{"key":"p99_us","title":"p99","min_count":100},)"
        R"({"key":"max_us","title":"Max","min_count":1}],"totals":{"marlix":"Marlix, median",)"
        R"("marlix-average":"Marlix, average","backend":"Backend","accelerator":"Accelerator",)"
        R"("outside":"Outside accelerator","ipc":"IPC","copies":"Copies","queue-wait":"Queue wait",)"
        R"("init":"Init","finalize":"Finalize","layers":"ZEB layers"}})");
}

TEST(ComparisonPage, ItsPolicyAllowsItsOwnScriptAndStyleAlone) {
    const std::string page = pageOf(allKinds());
    EXPECT_EQ(test::policyOf(page), "the policy names one script and one style\n");
    for (const std::string_view part : test::partsOfWiderPages) {
        EXPECT_EQ(countOf(page, part), 0U) << part;
    }
    EXPECT_EQ(countOf(page, "http"), 2U);  // http-equiv, the name space of SVG, and nothing else
}

TEST(ComparisonPage, TellsItsStreamOfAFullDisk) {
    std::ofstream full("/dev/full");
    writeComparisonPage(full, allKinds().comparison, {}, 0.0);
    full.flush();
    EXPECT_FALSE(full);
}

Compared thousandsOfLayers() {
    Compared compared = allKinds();
    compared.hideBelow = 0.0;
    auto& layers = compared.comparison.graphs[0].layers;
    layers.clear();
    for (int layer = 5000; layer > 0; --layer) {
        layers.push_back(layerOf("layer " + std::to_string(layer), 100, 100 + layer, 0.5, Verdict::unsure));
    }
    return compared;
}

TEST(ComparisonPageInBrowser, SaysWhatIsComparedAndDoesWhatItIsToldTo) {
    test::expectInBrowser({
        {"each kind of row", pageOf(allKinds()),
         "comparedParts answer sides notes totals layers differences copyingChanges heads totalNames",
         "comparedParts: good\n"
         "answer: ▲ Slower by 10.0%: an inference takes 1100 us in place of 1000 us.\n"
         "sides: Base 5 logs: a1, a2, a3 and 2 more a4, a5; New 4 logs: b1, b2, b3 and 1 more b4\n"
         "notes: ⚠ Warning: The backend versions differ: base v1; new v2. | ✗ The gate fails: Graph net: "
         "the time for Marlix, median grew by 10.0% (95% interval +8.0% to +12.5%), and 5.0% is allowed.; "
         "Marlix, median may grow by "
         "5.0%, and by less than 3.0 us in any case. | Graphs of one side: Graph less is gone: the base "
         "alone has it.; Graph more is new: the base does not have it.\n"
         "totals: +10.0% slower, ~ can't tell, -10.0% faster, ~ can't tell, +5900.0% slower\n"
         "layers: conv10 +100.0% slower, old - gone, conv9 -50.0% faster, young - new, loud ~ can't tell\n"
         "differences: good\ncopyingChanges: good\nheads: good\n"
         "totalNames: Total, Base (us), New (us), Change (us), Change95% interval, p, Verdict: "
         "Marlix, median, Marlix, average, Backend, IPC, Queue wait\n"},
        {"its tables", pageOf(allKinds()), "sortingChanges minorChanges",
         "sortingChanges: good\nminorChanges: good\n"},
        {"hostile", pageOf(hostile()), "comparedParts hostileChanges sortingChanges minorChanges",
         "comparedParts: good\nhostileChanges: good\nsortingChanges: good\nminorChanges: good\n"},
        {"graphs", pageOf(comparedLogs(1, {.executions = 2, .graphs = 3}, {.executions = 3, .graphs = 3})),
         "graphs comparedParts", "graphs: good\ncomparedParts: good\n"},
        {"5,000 layers", pageOf(thousandsOfLayers()), "manyChanges", "manyChanges: good\n"},
    });
}

TEST(ComparisonPageInBrowser, SaysWhatItCannotTell) {
    const NetworkOptions plain{};
    const NetworkOptions slower{.slowerMillionths = 100'000};
    const NetworkOptions basic{.level = samplelog::ProfileLevel::basic};
    const std::string columns = "Layer, Base (us), New (us), Change (us), Change, Beyond, Verdict";
    const auto found = [](const std::string& lead, const std::string& columnsShown,
                          const std::string& missing) {
        return "comparedParts: good\nlead: " + lead + "\nlayerColumns: " + columnsShown +
               "\nmissing: " + missing + "\n";
    };
    const std::string steps = "comparedParts lead layerColumns missing";
    test::expectInBrowser({
        {"one each, slower", pageOf(comparedLogs(1, plain, slower)), steps,
         found("▲ Slower by 10.0% in these two logs", columns, "good")},
        {"one each, the same", pageOf(comparedLogs(1, plain, plain)), steps,
         found("= As fast in these two logs", columns, "good")},
        {"too few", pageOf(comparedLogs(2, plain, slower)), steps, found("~ Can't tell", columns, "good")},
        {"chance", pageOf(comparedLogs(4, {.seed = 1}, {.seed = 5})), steps,
         found("= Not slower than 1.5%",
               "Layer, Base (us), New (us), Change (us), Change, Beyond, p, Verdict", "good")},
        {"level basic", pageOf(comparedLogs(1, basic, basic)), steps,
         found("= As fast in these two logs", "good",
               "Not both sides have data on layers. Profile the runs at level detailed to see them.")},
        {"two levels", pageOf(comparedLogs(1, plain, basic)), steps,
         found("= As fast in these two logs", "good",
               "The logs have different profiling levels, so their layers can't be compared.")},
        {"nothing", pageOf(Compared{}), steps,
         found("~ Nothing to compare", "good",
               "No graph was executed on both sides, so there is nothing to compare.")},
    });
}

}  // namespace
}  // namespace zeb::forms
