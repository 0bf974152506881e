#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "PageSupport.h"
#include "analysis/Spread.h"
#include "forms/json/RunJson.h"

namespace zeb::forms {
namespace {

using test::countOf;
using test::dataOf;
using test::pageOf;
using test::runOf;

using Json = nlohmann::json;

Json jsonOf(const analysis::Run& run) {
    std::ostringstream json;
    writeRunJson(json, run, {.bigAsText = true});
    return Json::parse(json.str());
}

Json objectsOf(const Json& columns) {
    Json objects = Json::array();
    for (const auto& [key, values] : columns.items()) {
        for (std::size_t place = 0; place < values.size(); ++place) {
            objects[place][key] = values[place];
        }
    }
    return objects;
}

// The run in a page, its layers as --json has them.
Json runIn(const std::string& page) {
    Json run = Json::parse(dataOf(page, "run-data"));
    const Json tables = Json::parse(dataOf(page, "table-data"));
    for (std::size_t index = 0; index < run["graphs"].size(); ++index) {
        Json& graph = run["graphs"][index];
        graph["oru_layers"].update(tables[index]);
        for (const char* const layers : {"zeb_layers", "oru_layers"}) {
            graph[layers] = objectsOf(graph[layers]);
        }
    }
    return run;
}

TEST(Page, HoldsTheRunAndNothingOfALogEndsItsPlace) {
    const analysis::Run run = test::hostileRun();
    const std::string page = pageOf(run);
    EXPECT_EQ(countOf(page, "<script"), 4U);
    EXPECT_EQ(countOf(page, "</script"), 4U);
    EXPECT_EQ(countOf(page, "<!--"), 0U);
    for (const char* const data : {"run-data", "execution-data", "table-data"}) {
        EXPECT_EQ(dataOf(page, data).find_first_of("<>&"), std::string::npos) << data;
    }
    Json wanted = jsonOf(run);
    wanted.erase("schema");
    EXPECT_EQ(runIn(page), wanted);
}

TEST(Page, EscapesAcrossWhateverPiecesTheDataIsWrittenIn) {
    analysis::Run run;
    for (std::size_t size : {0U, 1U, 8190U, 8191U, 8192U, 8193U, 20'000U}) {
        run.logFile = std::string(size, '<') + "a" + std::string(size, 'b') + "&>";
        EXPECT_EQ(runIn(pageOf(run))["log"], run.logFile);
    }
}

TEST(Page, ItsPolicyAllowsItsOwnScriptAndStyleAlone) {
    EXPECT_EQ(test::policyOf(pageOf(runOf(samplelog::NetworkOptions{}))),
              "the policy names one script and one style\n");
}

TEST(Page, AsksForNothingFromElsewhere) {
    const std::string page = pageOf(runOf(samplelog::NetworkOptions{}));
    for (const std::string_view part : test::partsOfWiderPages) {
        EXPECT_EQ(countOf(page, part), 0U) << part;
    }
    EXPECT_EQ(countOf(page, "http"), 2U);  // http-equiv, the name space of SVG, and nothing else
}

TEST(Page, StaysSmallHoweverLongTheRun) {
    EXPECT_LT(pageOf(runOf(samplelog::NetworkOptions{})).size(), 300'000U);
    for (const std::size_t graphs : {1U, 250U}) {
        analysis::Run run;
        run.graphs.resize(graphs);
        for (analysis::Graph& graph : run.graphs) {
            graph.executions.startUs.assign(1'000'000 / graphs, 1'790'845'200'000'000);
            graph.executions.durationUs.assign(1'000'000 / graphs, 2'123'456);
            graph.executions.durationUs[3] = 9'123'456;
            graph.executions.queueWaitUs.assign(1'000'000 / graphs, 143);
            graph.spread = {1, {2'123'456, 2'123'456, 2'123'456, 2'123'456, 9'123'456}, 2'123'456};
            graph.outliers = outliersOf(graph.executions, graph.spread);
        }
        const std::string page = pageOf(run);
        EXPECT_LT(page.size(), 3'000'000U);
        EXPECT_EQ(countOf(page, R"("execution":3,)"), graphs) << "an outlier of each graph";
    }
}

TEST(Page, ExecutionsAreWholeUpToALimitAndBinnedBehindIt) {
    const auto timesShown = [](std::size_t count) {
        analysis::Run run;
        run.graphs.resize(1);
        run.graphs[0].executions.durationUs.assign(count, 7'654'321);
        run.graphs[0].executions.startUs.resize(count);
        run.graphs[0].executions.queueWaitUs.resize(count);
        run.graphs[0].spread = {count, {1.0, 8e6, 8e6, 8e6, 8e6}, 8e6};
        return countOf(pageOf(run), "7654321");
    };
    EXPECT_EQ(timesShown(4000), 2U * 4000U);  // in the run and in its picture
    EXPECT_EQ(timesShown(4001), 3U * 801U);   // five a bin, with shortest, median and longest
}

// Takes what it is given, but for the one piece that holds a word.
class LosesAPiece : public std::stringbuf {
protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        const bool isLost = std::string_view(text, static_cast<std::size_t>(size)).find("\"run_id\"") !=
                            std::string_view::npos;
        return isLost ? 0 : std::stringbuf::xsputn(text, size);
    }
};

TEST(Page, TellsItsStreamWhenTheDataIsNotWhole) {
    LosesAPiece buffer;
    std::ostream out(&buffer);
    writePage(out, runOf(samplelog::NetworkOptions{}));
    EXPECT_FALSE(out);
}

TEST(Page, TellsItsStreamOfAFullDisk) {
    std::ofstream full("/dev/full");
    writePage(full, runOf(samplelog::NetworkOptions{}));
    full.flush();
    EXPECT_FALSE(full);
}

}  // namespace
}  // namespace zeb::forms
