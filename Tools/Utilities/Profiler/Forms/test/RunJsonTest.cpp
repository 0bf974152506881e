// The JSON of a run, written and read back.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "analysis/MakeRun.h"
#include "analysis/RunId.h"
#include "analysis/runs/Comparison.h"
#include "forms/json/RunJson.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/BackendObjectWriter.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/TestLog.h"

namespace zeb::forms {
namespace {

using analysis::Run;

std::string jsonOf(const Run& run, JsonStyle style = {}) {
    std::ostringstream out;
    writeRunJson(out, run, style);
    return out.str();
}

Run readBack(const std::string& json) {
    std::istringstream in(json);
    return readRunJson(in);
}

using WriteLog = std::function<void(std::ostream&)>;

WriteLog network(const samplelog::NetworkOptions& options) {
    return [options](std::ostream& out) { writeNetworkLog(out, options); };
}

const std::vector<std::pair<std::string, WriteLog>>& kinds() {
    static const std::vector<std::pair<std::string, WriteLog>> all = {
        {"network", network({})},
        {"async", network({.async = true, .level = samplelog::ProfileLevel::internal})},
        {"graphs", network({.executions = 3, .layers = 4, .graphs = 3})},
        {"basic", network({.level = samplelog::ProfileLevel::basic})},
        {"methods", samplelog::writeMethodsLog},
        {"adapter-updater", samplelog::writeAdapterUpdaterLog},
        {"empty", [](std::ostream&) {}},
    };
    return all;
}

Run runOf(const test::TempDir& place, const std::string& name, const WriteLog& write) {
    {
        std::ofstream log(place.path(name), std::ios::binary);
        write(log);
    }
    return analysis::makeRun(place.path(name), profiling::VisibilityLevel{127}).value();
}

TEST(RunJson, IsTheSameAfterItWasReadBack) {
    const test::TempDir place;
    for (const auto& [name, write] : kinds()) {
        const std::string json = jsonOf(runOf(place, name, write));
        EXPECT_TRUE(json.starts_with("{\"schema\":\"zeb-profile-run/1\",\"log\":\"")) << name;
        EXPECT_EQ(json.find('\n'), json.size() - 1) << name << ": one line";
        EXPECT_EQ(jsonOf(readBack(json)), json) << name;
    }
}

TEST(RunJson, OfTheSampleIsThatOfWhatIsWrittenToday) {
    const test::TempDir place;
    analysis::Run written = runOf(place, "log", network({}));
    written.logFile = ZEB_SAMPLE;
    analysis::Run sample = analysis::makeRun(ZEB_SAMPLE, profiling::VisibilityLevel{127}).value();
    EXPECT_EQ(jsonOf(sample), jsonOf(written))
        << "write-sample-log examples/sample.zlog brings it up to date";
}

// Two graphs and two layers whose long names differ in their middle alone, and a name that is no UTF-8.
WriteLog longNames() {
    const auto name = [](const std::string& middle) {
        return std::string(400, 'b') + middle + std::string(400, 'e');
    };
    const std::vector<samplelog::NodeMappingEntry> mapping = {{0, {0}}, {1, {1}}};
    const std::vector<std::string> layers = {name("1"), name("2")};
    const auto config = samplelog::encodeLayerConfig(
        {.krelClockHz = 1, .dspClockHz = 1, .layerCount = 2, .entries = {{.layerId = 0}, {.layerId = 1}}});
    const auto profile = samplelog::encodeGraphProfile(
        {.acceleratorTimeUs = 9,
         .executionCount = 1,
         .layerCount = 2,
         .dspGraphTimeUs = 9,
         .layerRecords = {{.execCount = 1, .totalTimeUs = 3}, {.execCount = 1, .totalTimeUs = 5}}});
    std::vector<test::Message> messages = {
        test::message(test::MethodType::Init, "", 1,
                      {test::object("m", samplelog::encodeNodeMapping(mapping)),
                       test::object("n", samplelog::encodeNameTable(layers))})};
    for (const std::string& graph : {name("1"), name("2"), std::string("no UTF-8: \xE5\xB1")}) {
        messages.push_back(
            test::message(test::MethodType::Finalize, graph, graph.size(), {test::object("c", config)}));
        messages.push_back(
            test::message(test::MethodType::Execute, graph, 10,
                          {test::event("Execute Profiling Level", test::number(2)),
                           test::event("ZebGraph_execute", test::number(9),
                                       {test::object("Graph Execute Profile Data", profile)})}));
    }
    return [bytes = test::logOf({messages})](std::ostream& out) {
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    };
}

TEST(RunJson, HasTheNamesThatTheLogIsComparedBy) {
    const test::TempDir place;
    const analysis::Run run = runOf(place, "log", longNames());
    ASSERT_EQ(run.graphs.size(), 3U);
    EXPECT_NE(run.graphs[0].name, run.graphs[1].name);
    EXPECT_LE(run.graphs[0].name.size(), analysis::maxTextBytes);
    const analysis::RunSummary ofLog[] = {analysis::summarize(run)};
    const analysis::RunSummary ofJson[] = {analysis::summarize(readBack(jsonOf(run)))};
    const analysis::Comparison comparison = analysis::compare(ofLog, ofJson);
    EXPECT_TRUE(comparison.goneGraphs.empty() && comparison.addedGraphs.empty());
    ASSERT_EQ(comparison.graphs.size(), 3U);
    for (const analysis::GraphComparison& graph : comparison.graphs) {
        ASSERT_EQ(graph.layers.size(), 2U);
        for (const analysis::LayerChange& layer : graph.layers) {
            EXPECT_EQ(layer.verdict, analysis::Verdict::same) << layer.name;
        }
        EXPECT_NE(graph.layers[0].name, graph.layers[1].name);
        EXPECT_EQ(graph.find(analysis::Total::finalize)->base.median,
                  graph.newName.size() < 100 ? 12.0 : 801.0);
    }
}

TEST(RunJson, IsAsItsSchemaSaysForEveryKindOfLog) {
    const test::TempDir place;
    std::string command = ZEB_CHECK_SCHEMA;
    for (const auto& [name, write] : kinds()) {
        command += ' ' + place.write(name + ".json", jsonOf(runOf(place, name, write)));
    }
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

TEST(RunJson, KeepsNumbersAndReplacesWhatIsNoText) {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    analysis::Run run;
    run.logFile = "q\"b\\\n\x01\xFF\xC3";
    run.labels = {{"a\"\x1B", "\xFF"}, {"b", ""}};
    run.header.emplace().epochUs = largest;
    run.header->timeScale = std::numeric_limits<double>::infinity();
    analysis::Step step;
    for (const analysis::Value& value : std::initializer_list<analysis::Value>{
             std::int64_t{-9007199254740993}, largest, 0.1, std::numeric_limits<double>::quiet_NaN(),
             std::string("t"), std::monostate()}) {
        step.events.emplace_back().value = value;
    }
    run.steps.push_back(step);
    const std::string json = jsonOf(run);
    for (const char* const part :
         {R"("log":"q\"b\\\n\u0001)", "\"labels\":{\"a\\\"\\u001b\":\"\xEF\xBF\xBD\",\"b\":\"\"}",
          R"("epoch_us":18446744073709551615)", R"("time_scale":null)", R"("value":-9007199254740993)",
          R"("value":18446744073709551615)", R"("value":0.1,)", R"("value":null)"}) {
        EXPECT_NE(json.find(part), std::string::npos) << part << " in " << json;
    }
    EXPECT_EQ(readBack(json).labels, (analysis::Labels{{"a\"\x1B", "\xEF\xBF\xBD"}, {"b", ""}}));
    const std::string asText = jsonOf(run, {.bigAsText = true});
    EXPECT_NE(asText.find(R"("value":"-9007199254740993")"), std::string::npos) << asText;
    EXPECT_NE(asText.find(R"("epoch_us":"18446744073709551615")"), std::string::npos) << asText;
}

TEST(RunJson, KnowsARunWithoutAnIdByItsHeaderAndExecutions) {
    const auto idOf = [](const std::string& members) {
        return readBack(R"({"schema":"zeb-profile-run/1",)" + members + "}").runId;
    };
    const std::string run = R"("header":{"epoch_us":5},"graphs":[{"name":"net","executions":
        {"start_us":[1,null],"duration_us":[7,8],"queue_wait_us":[null,0]}}])";
    const std::string id = idOf(run);
    EXPECT_TRUE(analysis::isRunId(id)) << id;
    EXPECT_EQ(idOf(R"("log":"copy",)" + run), id);
    for (const auto& [from, to] :
         std::initializer_list<std::pair<std::string, std::string>>{{R"("epoch_us":5)", R"("epoch_us":6)"},
                                                                    {"net", "nut"},
                                                                    {"[1,null]", "[1,0]"},
                                                                    {"[7,8]", "[7,9]"},
                                                                    {"[null,0]", "[null,1]"},
                                                                    {"[null,0]", "[0,0]"}}) {
        std::string other = run;
        EXPECT_NE(idOf(other.replace(other.find(from), from.size(), to)), id) << to;
    }
}

// A step whose events stand one below the other.
std::string nestedEvents(std::size_t levels) {
    constexpr std::string_view open = R"({"events":[)";
    std::string json = R"({"schema":"zeb-profile-run/1","steps":[)";
    for (std::size_t level = 0; level < levels; ++level) {
        json += open;
    }
    json += "{}";
    for (std::size_t level = 0; level < levels; ++level) {
        json += "]}";
    }
    return json + "]}";
}

TEST(RunJson, RefusesWhatIsNoRun) {
    const std::string tooDeep = nestedEvents(63);  // a log has 62 levels at most
    const std::string farTooDeep = nestedEvents(60'000);
    const std::pair<const char*, const char*> cases[] = {
        {tooDeep.c_str(), "its events nest deeper than 62 levels"},
        {farTooDeep.c_str(), "its events nest deeper than 62 levels"},
        {"", "it is no JSON object"},
        {"[1]", "it is no JSON object"},
        {R"({"schema":"zeb-profile-run/2"})", "it is no object of the schema zeb-profile-run/1"},
        {R"({"log":"x"})", "it is no object of the schema zeb-profile-run/1"},
        {R"({"schema":"zeb-profile-run/1","log":1})", "the value of \"log\" is no text"},
        {R"({"schema":"zeb-profile-run/1","graphs":{}})", "the value of \"graphs\" is no list"},
        {R"({"schema":"zeb-profile-run/1","run_id":"0123456789ABCDEF0123456789ABCDEF"})",
         "the value of \"run_id\" is no id of a run"},
        {R"({"schema":"zeb-profile-run/1","labels":["site"]})", "the value of \"labels\" is no object"},
        {R"({"schema":"zeb-profile-run/1","labels":{"site":1}})", "the value of \"site\" is no text"},
        {R"({"schema":"zeb-profile-run/1","graphs":[7]})", "the value of \"graphs\" is no object"},
        {R"({"schema":"zeb-profile-run/1","level":"deep"})",
         "the value of \"level\" is no name that is known"},
        {R"({"schema":"zeb-profile-run/1","asynchronous":0})",
         "the value of \"asynchronous\" is no truth value"},
        {R"({"schema":"zeb-profile-run/1","graphs":[{"krel_clock_hz":4294967296}]})",
         "the value of \"krel_clock_hz\" is no whole number that fits"},
        {R"({"schema":"zeb-profile-run/1","graphs":[{"executions":{"duration_us":[1],"start_us":[1]}}]})",
         "the columns of \"executions\" differ in length"},
        {R"({"schema":"zeb-profile-run/1","graphs":[{"executions":{"duration_us":[1],"queue_wait_us":[1]}}]})",
         "the columns of \"executions\" differ in length"},
    };
    for (const auto& [json, cause] : cases) {
        try {
            readBack(json);
            ADD_FAILURE() << std::string_view(json).substr(0, 200) << " was read";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), cause) << std::string_view(json).substr(0, 200);
        }
    }
    EXPECT_EQ(readBack(R"({"schema":"zeb-profile-run/1","new key":[{}],"log":"l"})").logFile, "l");
    const std::string longLabel =
        R"({"schema":"zeb-profile-run/1","labels":{"k":")" + std::string(5000, 'x') + "\"}}";
    EXPECT_EQ(readBack(longLabel).labels.at("k").size(), analysis::maxTextBytes);
    EXPECT_EQ(readBack(nestedEvents(62)).steps.size(), 1U);
}

}  // namespace
}  // namespace zeb::forms
