#include <gtest/gtest.h>

#include <numeric>

#include "analysis/Spread.h"
#include "forms/page/ExecutionPicture.h"

namespace zeb::forms {
namespace {

using analysis::Graph;
using Durations = std::vector<std::optional<std::uint64_t>>;

Graph graphOf(Durations durations) {
    Graph graph;
    graph.executions.startUs.resize(durations.size());
    graph.executions.queueWaitUs.resize(durations.size());
    graph.executions.durationUs = std::move(durations);
    graph.spread = analysis::spreadOf(graph.executions);
    return graph;
}

std::string jsonOf(const Graph& graph, std::size_t maxBins) {
    std::ostringstream out;
    JsonWriter json(out);
    writePicture(json, pictureOf(graph, maxBins));
    json.flush();
    return out.str();
}

TEST(ExecutionPicture, FewExecutionsHaveABinEach) {
    EXPECT_EQ(jsonOf(graphOf({100, std::nullopt, 104, 0, 200}), 10),
              R"({"count":5,"bin_size":1,"median_us":[100,null,104,null,200],)"
              R"("from_us":100,"column_us":25,"columns":[2,0,0,0,1],"above":0})");
}

TEST(ExecutionPicture, ManyArePutTogetherWithTheirNeighbours) {
    const std::string json = jsonOf(graphOf({10, 30, 20, std::nullopt, 0, std::nullopt, 50}), 3);
    EXPECT_TRUE(json.starts_with(R"({"count":7,"bin_size":3,"median_us":[20,null,50],)"
                                 R"("min_us":[10,null,50],"max_us":[30,null,50],)"))
        << json;
}

TEST(ExecutionPicture, NothingIsMadeOfNothing) {
    const std::string none = R"("from_us":0,"column_us":0,"columns":[],"above":0})";
    EXPECT_EQ(jsonOf(graphOf({}), 10), R"({"count":0,"bin_size":1,"median_us":[],)" + none);
    EXPECT_EQ(jsonOf(graphOf({0, std::nullopt}), 10),
              R"({"count":2,"bin_size":1,"median_us":[null,null],)" + none);
}

TEST(ExecutionPicture, TheHistogramHasEachExecutionOnce) {
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    Durations even(1000);
    std::iota(even.begin(), even.end(), std::uint64_t{500});
    Durations lone(1000, 500);
    lone[7] = 90'000;
    Durations justOutside(1000, 500);  // three columns of a microsecond
    justOutside[7] = 503;
    const struct {
        Durations durations;
        std::uint64_t above;
    } cases[] = {{even, 0},      {lone, 1},      {justOutside, 1},     {{7}, 0},
                 {{7, 7, 7}, 0}, {{1, most}, 0}, {{most, most - 1}, 0}};
    for (const auto& [durations, above] : cases) {
        const ExecutionPicture picture = pictureOf(graphOf(durations), 100);
        const std::uint64_t shown =
            std::accumulate(picture.columns.begin(), picture.columns.end(), std::uint64_t{0});
        EXPECT_EQ(shown + picture.above, durations.size());
        EXPECT_EQ(picture.above, above);
        EXPECT_LE(picture.columns.size(), 41U);
        EXPECT_GT(picture.columns.front(), 0U);
    }
}

TEST(ExecutionPicture, GraphsOfALongRunShareThePlace) {
    const struct {
        std::size_t graphs;
        std::size_t executions;
        std::size_t most;
    } cases[] = {{0, 0, 4000},    {1, 4000, 4000}, {1, 4001, 1000},
                 {4, 1000, 4000}, {10, 1000, 400}, {5000, 1, 16}};
    for (const auto& [graphs, executions, most] : cases) {
        analysis::Run run;
        run.graphs.assign(graphs, graphOf(Durations(executions, 1)));
        EXPECT_EQ(maxSinglesOfGraph(run), most);
    }
}

}  // namespace
}  // namespace zeb::forms
