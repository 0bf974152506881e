#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "PageSupport.h"
#include "forms/page/HistoryPage.h"

namespace zeb::forms {
namespace {

using analysis::Total;

// Twenty versions that step by a fifth at the eleventh, by one layer alone.
std::vector<analysis::HistoryRun> steppingRuns(const std::string& graphName, const std::string& layerName) {
    std::vector<analysis::HistoryRun> runs;
    for (std::size_t version = 0; version < 20; ++version) {
        const double wobble = std::array{0.0, 3.0, 1.0, 2.0}[version % 4];
        const double slow = version < 10 ? 100.0 : 300.0;
        analysis::HistoryRun& run = runs.emplace_back();
        run.version = 'v' + std::to_string(version);
        run.summary.logFile = run.version;
        run.summary.level = analysis::Level::detailed;
        analysis::GraphSummary& graph = run.summary.graphs.emplace_back();
        graph.name = graphName;
        for (int layer = 0; layer < 9; ++layer) {
            graph.layers.push_back({"layer" + std::to_string(layer), 100.0});
        }
        graph.layers.push_back({layerName, slow});
        graph.totalsUs[static_cast<std::size_t>(Total::marlix)] = 900.0 + slow + wobble;
    }
    return runs;
}

std::string pageOf(const std::vector<analysis::HistoryRun>& runs) {
    analysis::RankSumChance chance;
    const analysis::History history = analysis::historyOf(runs, analysis::VersionOrder::given, chance);
    std::ostringstream page;
    writeHistoryPage(page, history, chance, analysis::judgeNewest(history, 0.05, chance));
    return page.str();
}

TEST(HistoryPage, ItsPolicyAllowsItsOwnScriptAndStyleAlone) {
    const std::string page = pageOf(steppingRuns("net", "loud"));
    EXPECT_EQ(test::policyOf(page), "the policy names one script and one style\n");
    for (const std::string_view part : test::partsOfWiderPages) {
        EXPECT_EQ(test::countOf(page, part), 0U) << part;
    }
}

TEST(HistoryPageInBrowser, TellsTheStepDrawsTheCoursesAndHasTheirFigures) {
    test::expectInBrowser({
        {"a step", pageOf(steppingRuns("net", "loud")), "historyAnswer courses courseFigures",
         "historyAnswer: Marlix is slower since v10; loud +200 us (+200.0%); The gate fails\n"
         "courses: 3 charts, 2 steps, 5 levels, 20 dots\n"
         "courseFigures: 20 rows, v0 1 1000 us\n"},
        {"hostile", pageOf(steppingRuns(test::hostileScript, test::hostileImage)), "hostileHistory",
         "hostileHistory: good\n"},
        {"nothing", pageOf({}), "historyAnswer", "historyAnswer: Nothing to tell; ; The gate can't tell\n"},
    });
}

}  // namespace
}  // namespace zeb::forms
