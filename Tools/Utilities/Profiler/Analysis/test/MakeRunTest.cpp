// The model of a run, made of logs.

#include <gtest/gtest.h>

#include <fstream>
#include <numeric>
#include <set>
#include <sstream>

#include "analysis/Findings.h"
#include "analysis/Inference.h"
#include "analysis/MakeRun.h"
#include "analysis/RunId.h"
#include "analysis/Spread.h"
#include "analysis/Trend.h"
#include "reader/backend/BackendFigures.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "samplelog/BackendObjectWriter.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/Network.h"
#include "samplelog/NetworkLog.h"
#include "samplelog/NetworkTiming.h"
#include "samplelog/SharedEventsLog.h"
#include "samplelog/SharedTextLog.h"
#include "support/TestLog.h"
#include "support/TestReader.h"

namespace zeb::analysis {
namespace {

using profiling::VisibilityLevel;
using samplelog::NetworkOptions;
using test::event;
using test::Message;
using test::MethodType;
using test::number;

constexpr VisibilityLevel allMessages{127};

std::string told(const Part& part) {
    std::string text = part.name + ' ' + std::to_string(static_cast<int>(part.us));
    if (!part.note.empty()) {
        text += " [" + part.note + ']';
    }
    if (!part.parts.empty()) {
        text += " (";
        for (const Part& inner : part.parts) {
            text += (&inner == part.parts.data() ? "" : ", ") + told(inner);
        }
        text += ')';
    }
    return text;
}

class MadeRun : public testing::Test {
protected:
    template <typename Write>
    std::string write(Write writeLog) const {
        std::ofstream log(directory.path("log"), std::ios::binary);
        writeLog(log);
        return directory.path("log");
    }
    analysis::Run runOf(const NetworkOptions& options) const {
        return makeRun(write([&](std::ostream& out) { writeNetworkLog(out, options); }), allMessages).value();
    }
    analysis::Run runOf(const std::vector<Message>& messages, VisibilityLevel level = allMessages) const {
        return makeRun(directory.write("log", test::logOf({messages})), level).value();
    }

    test::TempDir directory;
};

// With one graph the report's figures and the model's are the same.
TEST_F(MadeRun, AgreesWithTheReportOnOneGraph) {
    for (const bool isAsync : {false, true}) {
        const analysis::Run run =
            runOf({.async = isAsync, .level = samplelog::ProfileLevel::internal, .seed = 3});
        profiling::ZebProfileLogReaderMURL reader(directory.path("log"), allMessages);
        ASSERT_TRUE(reader.loadLog(false));
        const profiling::EventStore& store = reader.store();
        const auto mapping = findNodeMapping(store);
        ASSERT_TRUE(mapping);
        const auto figures = workOutFigures(store, wholeRun(store), readProfileLevel(store), &*mapping);
        const profiling::ExecutionFigures& execution = figures.execution;
        ASSERT_EQ(run.graphs.size(), 1U);
        const Graph& graph = run.graphs[0];
        EXPECT_EQ(run.level, Level::internal);
        EXPECT_EQ(run.isAsync, isAsync);
        EXPECT_EQ(graph.average.durationUs, singleGraphDuration(store));
        ASSERT_TRUE(graph.breakdown);
        EXPECT_EQ(graph.breakdown->executionCount, execution.executionCount);
        EXPECT_EQ(graph.breakdown->backendUs, execution.backendExecuteUs);
        EXPECT_EQ(graph.breakdown->queueWaitUs,
                  isAsync ? std::optional(execution.queueWaitUs) : std::nullopt);
        EXPECT_EQ(graph.breakdown->inputCopyUs, execution.tensorCopyUs[0]);
        EXPECT_EQ(graph.breakdown->outputCopyUs, execution.tensorCopyUs[1]);
        EXPECT_EQ(graph.breakdown->ipcUs, execution.ipcTimeUs);
        EXPECT_EQ(graph.breakdown->acceleratorUs, execution.acceleratorTimeUs);
        EXPECT_EQ(graph.dspClockHz, figures.layerConfig.dspClockHz);
        EXPECT_EQ(graph.krelClockHz, figures.layerConfig.krelClockHz);
        ASSERT_EQ(graph.oruLayers.size(), figures.oruLayers.size());
        for (std::size_t row = 0; row < graph.oruLayers.size(); ++row) {
            EXPECT_EQ(graph.oruLayers[row].id, figures.oruLayers[row].layerId);
            EXPECT_EQ(graph.oruLayers[row].averageUs, figures.oruLayers[row].avgTimeUs);
            EXPECT_EQ(graph.oruLayers[row].coreUs, figures.oruLayers[row].avgCoreTimeUs);
        }
        ASSERT_EQ(graph.zebLayers.size(), figures.zebLayerStats.size());
        std::uint64_t dspUs = 0;
        std::uint64_t krelUs = 0;
        for (std::size_t row = 0; row < graph.zebLayers.size(); ++row) {
            EXPECT_EQ(graph.zebLayers[row].name, figures.zebLayers.zebLayerOrder[row].name);
            dspUs += figures.zebLayerStats[row].dspTimeUs;
            krelUs += figures.zebLayerStats[row].krelTimeUs;
        }
        EXPECT_EQ(graph.layers.dspUs, dspUs);
        EXPECT_EQ(graph.layers.krelUs, krelUs);
        EXPECT_NEAR(100.0 * static_cast<double>(dspUs) / static_cast<double>(dspUs + krelUs),
                    figures.zebTimeShare.dspTimePercent, 1e-9);
    }
}

TEST_F(MadeRun, WorksOutEachGraphByItself) {
    const analysis::Run run = runOf({.executions = 5, .graphs = 3, .seed = 8});
    ASSERT_EQ(run.graphs.size(), 3U);
    for (const Graph& graph : run.graphs) {
        ASSERT_TRUE(graph.breakdown) << graph.name;
        EXPECT_EQ(graph.executions.count(), 5U);
        EXPECT_EQ(graph.zebLayers.size(), samplelog::designedLayerCount);
        EXPECT_EQ(graph.oruLayers.size(), run.graphs[0].oruLayers.size());
        // Of its own executions: the backend is a little less than the average, whatever the other graphs
        // are.
        EXPECT_LT(*graph.breakdown->backendUs, graph.average.durationUs);
        EXPECT_GT(*graph.breakdown->backendUs + 60, graph.average.durationUs);
    }
    EXPECT_NE(run.graphs[0].breakdown->acceleratorUs, run.graphs[2].breakdown->acceleratorUs);
    std::uint64_t finalizations = 0;
    for (const Step& step : run.steps) {
        finalizations += step.kind == StepKind::finalize && !step.events.empty() ? 1 : 0;
    }
    EXPECT_EQ(finalizations, 3U);
}

// A mapping is a graph's where it names each of its layers once.
TEST_F(MadeRun, TakesAMappingForTheGraphsThatItCovers) {
    const samplelog::LayerConfig config{1, 1, 2, {{.layerId = 0}, {.layerId = 1}}};
    const samplelog::GraphProfile profile{90, 1, 2, 80, {{.execCount = 1}, {.execCount = 1, .orderKey = 1}}};
    const auto finalize = [&config](const char* graph) {
        return test::message(
            MethodType::Finalize, graph, 5,
            {test::ofType(samplelog::finalizeEventType, test::object("config", encodeLayerConfig(config)))});
    };
    const auto execute = [&profile](const char* graph) {
        return test::message(
            MethodType::Execute, graph, 100,
            {event("Execute Profiling Level", number(2)),
             event("ZebGraph_execute", number(95),
                   {test::object("Graph Execute Profile Data", encodeGraphProfile(profile))})});
    };
    const struct {
        std::vector<std::uint32_t> oruLayers;
        bool covers;
    } cases[] = {{{0, 1}, true}, {{1, 0}, true},  {{0, 0}, false},   {{1, 1}, false},
                 {{0}, false},   {{0, 2}, false}, {{0, 1, 1}, false}};
    for (const auto& [oruLayers, covers] : cases) {
        SCOPED_TRACE(testing::PrintToString(oruLayers));
        std::vector<samplelog::NodeMappingEntry> mapping;
        for (const std::uint32_t layer : oruLayers) {
            mapping.push_back({layer, {0}});
        }
        const std::vector<std::string> names = {"conv"};
        const Message init = test::message(
            MethodType::Init, "", 5,
            {test::ofType(samplelog::initEventType, test::object("mapping", encodeNodeMapping(mapping))),
             test::ofType(samplelog::initEventType,
                          test::object("names", samplelog::encodeNameTable(names)))});
        const analysis::Run run = runOf({init, finalize("a"), finalize("b"), execute("a"), execute("b")});
        ASSERT_EQ(run.graphs.size(), 2U);
        for (const Graph& graph : run.graphs) {
            EXPECT_EQ(graph.oruLayers.size(), 2U);
            EXPECT_EQ(graph.zebLayers.size(), covers ? 1U : 0U);
        }
    }
}

Message timed(Message message, std::optional<std::uint64_t> start, std::optional<std::uint64_t> end) {
    message.timing.startTime = start;
    message.timing.endTime = end;
    return message;
}

TEST_F(MadeRun, TakesTheTimesOfExecutionsAsTheyStand) {
    const auto execute = [](const char* graph, std::optional<std::uint64_t> start,
                            std::optional<std::uint64_t> end, std::vector<test::Event> events = {}) {
        return timed(test::message(MethodType::ExecuteAsync, graph, 0, std::move(events)), start, end);
    };
    const auto wait = [](std::uint64_t us) { return ofType(405, event("wait", number(us))); };
    Message hidden = execute("a", 1, 2);
    hidden.level = 5;
    const analysis::Run run =
        runOf({execute("a", 10, 30, {wait(4)}), execute("b", 11, 12), hidden,
               execute("a", {}, 30, {wait(4), wait(5)}), execute("a", 40, 40),
               execute("a", 50, {}, {event("e", number(1), {wait(7)})}), execute("a", 60, 55),
               test::message(MethodType::GraphEvents, "events alone", 0, {event("e", number(2))})},
              VisibilityLevel{5});
    ASSERT_EQ(run.graphs.size(), 3U);
    using Column = std::vector<std::optional<std::uint64_t>>;
    const Executions& executions = run.graphs[0].executions;
    EXPECT_EQ(executions.startUs, (Column{10, {}, 40, 50, 60}));
    EXPECT_EQ(executions.durationUs, (Column{20, {}, 0, {}, 0}));
    EXPECT_EQ(executions.queueWaitUs, (Column{4, {}, {}, 7, {}}));
    EXPECT_EQ(run.graphs[0].spread.count, 1U) << "those without a duration have no place in it";
    EXPECT_EQ(run.graphs[0].average.durationUs, 20U);
    EXPECT_EQ(run.graphs[1].name, "b");
    EXPECT_EQ(run.graphs[1].executions.count(), 1U);
    EXPECT_EQ(run.graphs[2].name, "events alone");
    EXPECT_EQ(run.graphs[2].executions.count(), 0U);
    EXPECT_FALSE(run.graphs[2].breakdown);
    EXPECT_EQ(run.level, std::nullopt);
}

TEST_F(MadeRun, GivesEventsToTheLatestStepOfAKind) {
    const analysis::Run run =
        runOf({timed(test::message(MethodType::InitStep, "first", 0), 5, 8),
               test::message(MethodType::InitStep, "second", 3),
               test::message(MethodType::Finalize, "a", 1, {event("old")}),
               test::message(MethodType::Finalize, "b", 1, {event("of b")}),
               timed(test::message(MethodType::Finalize, "a", 1, {event("new", -2.5)}), {}, 9),
               test::message(MethodType::Execute, "a", 7, {ofType(100, event("start"))}),
               test::message(MethodType::DeInit, "", 2, {event("end", std::string("text"))})});
    std::string told;
    for (const Step& step : run.steps) {
        told += std::to_string(static_cast<int>(step.kind)) + ' ' + step.text + ' ' +
                (step.durationUs ? std::to_string(*step.durationUs) : "-");
        for (const Event& each : step.events) {
            told += " " + std::string(each.name);
        }
        told += '\n';
    }
    EXPECT_EQ(told, "1 first 3\n1 second 3 start\n4 a 1\n4 b 1 of b\n4 a - new\n5  2 end\n");
    EXPECT_EQ(run.steps[0].startUs, 5U);
    EXPECT_EQ(std::get<double>(run.steps[4].events[0].value), -2.5);
    EXPECT_EQ(std::get<SharedText>(run.steps[5].events[0].value), "text");
}

// Of finalizations the report has the latest of a name, and without one no Init out of steps.
TEST_F(MadeRun, HasTheInitAndTheFinalizeThatTheReportShows) {
    const Message init = test::message(MethodType::InitStep, "", 10);
    const Message compose = test::message(MethodType::ComposeGraphs, "a", 100);
    const Message first = test::message(MethodType::Finalize, "a", 30);
    const Message second = test::message(MethodType::Finalize, "a", 40);
    const Message execute = test::message(MethodType::Execute, "a", 7);
    const struct {
        std::vector<Message> messages;
        std::optional<std::uint64_t> initUs;
        std::optional<std::uint64_t> finalizeUs;
    } cases[] = {
        {{init, compose, first, second, execute}, 150, 40},
        {{init, compose, execute}, 0, std::nullopt},
        {{test::message(MethodType::Init, "", 77), init, first, execute}, 77, 30},
        {{execute}, std::nullopt, std::nullopt},
    };
    for (const auto& [messages, initUs, finalizeUs] : cases) {
        const analysis::Run run = runOf(messages);
        EXPECT_EQ(run.initUs, initUs);
        EXPECT_EQ(run.graphs[0].finalizeUs, finalizeUs);
    }
}

// A hostile log refers to one long text from many places: neither time nor memory follow the product.
TEST_F(MadeRun, TakesALongTextThatManyStepsShareInPart) {
    const auto bytes = samplelog::encodeSharedTextLog({.methodType = MethodType::Finalize,
                                                       .messages = 30'000,
                                                       .text = "begin" + std::string(1'000'000, 'x') + "end",
                                                       .payloadSize = 8,
                                                       .payloadStep = 0});
    const auto run = makeRun(directory.write("log", bytes), allMessages).value();
    ASSERT_EQ(run.steps.size(), 30'000U);
    EXPECT_LE(run.steps[9].text.size(), maxTextBytes);
    EXPECT_TRUE(run.steps[9].text.starts_with("beginxxx") && run.steps[9].text.find("xend#") < maxTextBytes);
    EXPECT_TRUE(run.steps[9].events.empty());
    EXPECT_FALSE(run.steps.back().events.empty());
}

TEST_F(MadeRun, IsKnownByAllBytesOfItsLogAndByNothingElse) {
    const auto idOf = [this](const samplelog::Bytes& log, VisibilityLevel level) {
        return makeRun(directory.write("any name", log), level).value().runId;
    };
    EXPECT_EQ(RunIdHash().runId(), "99aa06d3014798d86001c324468d497f") << "XXH3 of nothing";
    samplelog::Bytes log = test::logOf(
        {{test::message(MethodType::Execute, "net", 5)}, {test::message(MethodType::Execute, "net", 6)}});
    log.insert(log.end(), {1, 2, 3});  // behind the last chunk
    RunIdHash inOnePiece;
    inOnePiece.add(log);
    EXPECT_EQ(idOf(log, allMessages), inOnePiece.runId());
    EXPECT_EQ(idOf(log, VisibilityLevel{-128}), inOnePiece.runId()) << "whatever is shown of it";
    ++log.back();
    EXPECT_NE(idOf(log, allMessages), inOnePiece.runId());
}

// The same of the names and values of events.
TEST_F(MadeRun, HoldsTheLongTextsOfEventsOnceAndInPart) {
    const std::string text = "begin" + std::string(1'000'000, 'x') + "end";
    const auto shared = samplelog::encodeSharedTextLog(
        {.methodType = MethodType::Init, .messages = 1, .text = text, .payloadSize = 8, .payloadStep = 0});
    const std::string path = directory.write("log", shared);
    const auto gathered = makeRun(path, allMessages).value();
    ASSERT_EQ(gathered.steps.size(), 1U);
    ASSERT_EQ(gathered.steps[0].events.size(), 2U);
    const std::string_view name = gathered.steps[0].events[0].name;
    EXPECT_LE(name.size(), maxTextBytes);
    EXPECT_TRUE(name.starts_with("beginx") && name.ends_with("xend"));
    EXPECT_EQ(gathered.steps[0].events[1].name.text().data(), name.data()) << "it is held twice";
    EXPECT_EQ(std::get<SharedText>(gathered.steps[0].events[1].value), name);
    const auto leftOut = makeRun(path, allMessages, EventTrees::leftOut).value();
    EXPECT_TRUE(leftOut.steps[0].events.empty());

    const auto plain = makeRun(write(samplelog::writeMethodsLog), allMessages, EventTrees::leftOut).value();
    EXPECT_TRUE(plain.graphs.at(0).average.events.empty());
    EXPECT_EQ(told(plain.graphs[0].inference),
              "Marlix 2150 (queue wait 65, accelerator 1925 (queue wait 31), not accounted for 160)");

    constexpr std::uint32_t events = 100'000;
    const auto execution = samplelog::encodeSharedEventsLog(
        {.levels = 2, .sharedLevels = 1, .fanOut = events, .name = text, .objectName = {}});
    const auto run = makeRun(directory.write("log", execution), allMessages).value();
    ASSERT_EQ(run.graphs.at(0).longest.events.at(0).events.size(), events);
    EXPECT_EQ(run.graphs[0].longest.events[0].events.back().name, name);
}

TEST_F(MadeRun, IsNothingForADamagedLog) {
    EXPECT_FALSE(makeRun(directory.path("none"), allMessages));
    EXPECT_FALSE(makeRun(directory.write("log", std::string_view("\x08\0\0\0damaged!", 12)), allMessages));
    const analysis::Run empty = makeRun(directory.write("log", ""), allMessages).value();
    EXPECT_FALSE(empty.header);
    EXPECT_TRUE(empty.graphs.empty());
    ASSERT_EQ(empty.findings.size(), 1U);
    EXPECT_EQ(empty.findings[0].rule, "no-graph");
}

Graph graphOf(std::vector<std::uint64_t> durations) {
    Graph graph;
    for (const std::uint64_t us : durations) {
        graph.executions.durationUs.emplace_back(us);
    }
    graph.executions.startUs.resize(durations.size());
    graph.executions.queueWaitUs.resize(durations.size());
    return graph;
}

TEST(Spread, LiesInProportionBetweenTheNearestValues) {
    const Graph graph = graphOf({50, 10, 20, 0, 40, 30});
    const Spread spread = spreadOf(graph.executions);
    EXPECT_EQ(spread.count, 5U);
    EXPECT_DOUBLE_EQ(spread.minUs(), 10.0);
    EXPECT_DOUBLE_EQ(spread.medianUs(), 30.0);
    EXPECT_DOUBLE_EQ(spread.p90Us(), 46.0);
    EXPECT_DOUBLE_EQ(spread.quantilesUs[positionOfQuantile(0.99)], 49.6);
    EXPECT_DOUBLE_EQ(spread.maxUs(), 50.0);
    EXPECT_EQ(spread.firstUs, 50.0);
    EXPECT_DOUBLE_EQ(spreadOf(graphOf({7}).executions).p90Us(), 7.0);
    EXPECT_EQ(spreadOf(graphOf({0}).executions).count, 0U);
    EXPECT_EQ(spreadOf(graphOf({0, 20}).executions).firstUs, std::nullopt)
        << "the second one is not the first";
}

std::string told(const Outliers& outliers) {
    std::string text = std::to_string(outliers.count) + " above " +
                       std::to_string(static_cast<int>(outliers.limitUs)) + " by " +
                       std::to_string(static_cast<int>(outliers.excessUs)) + ":";
    for (const Outlier& outlier : outliers.longest) {
        text += ' ' + std::to_string(outlier.position);
    }
    return text;
}

TEST(Outliers, AreBehindTheFirstAndAboveTheLimit) {
    const std::pair<std::vector<std::uint64_t>, const char*> cases[] = {
        {{}, "0 above 0 by 0:"},
        {{100, 100, 151, 150}, "0 above 187 by 0:"},
        {{100, 100, 100, 151}, "1 above 150 by 51: 3"},
        {{4000, 100, 100, 100, 700, 160}, "1 above 195 by 570: 4"},
        {{900, 100, 700, 100, 100, 160, 100}, "2 above 150 by 660: 2 5"},
        {{0, 900, 100, 100}, "1 above 150 by 800: 1"},
    };
    for (const auto& [durations, wanted] : cases) {
        const Graph graph = graphOf(durations);
        EXPECT_EQ(told(outliersOf(graph.executions, spreadOf(graph.executions))), wanted);
    }
}

TEST(Outliers, OfManyTheLongestAreHeldInTheirOrder) {
    std::vector<std::uint64_t> durations(10'000, 100);
    for (std::size_t position = 0; position < 1000; ++position) {
        durations[position * 10 + 1] = 1000 + (position * 7919) % 1000;
    }
    const Graph graph = graphOf(durations);
    const Outliers outliers = outliersOf(graph.executions, spreadOf(graph.executions));
    EXPECT_EQ(outliers.count, 1000U);
    ASSERT_EQ(outliers.longest.size(), maxHeldOutliers);
    for (std::size_t at = 0; at < outliers.longest.size(); ++at) {
        EXPECT_GE(outliers.longest[at].us, 1800.0);
        EXPECT_EQ(durations[outliers.longest[at].position], outliers.longest[at].us);
        EXPECT_TRUE(at == 0 || outliers.longest[at - 1].position < outliers.longest[at].position);
    }
}

OruLayer oru(bool isOffloaded, std::uint64_t us, const char* type = "ADD") {
    OruLayer layer;
    layer.typeName = type;
    layer.isOffloaded = isOffloaded;
    if (isOffloaded) {
        layer.coreUs = static_cast<std::uint32_t>(us);
    } else {
        layer.averageUs = us;
    }
    return layer;
}

// A graph that no rule finds anything in.
Graph quietGraph() {
    Graph graph = graphOf({100, 100, 100, 100, 100, 100});
    graph.spread = spreadOf(graph.executions);
    graph.average.durationUs = 100;
    graph.breakdown.emplace().executionCount = 6;
    graph.breakdown->acceleratorUs = 90;
    for (const std::uint64_t us : {22U, 22U, 22U, 22U}) {
        graph.oruLayers.push_back(oru(true, us));
        graph.zebLayers.push_back({.name = "layer", .dspUs = 0, .krelUs = us, .oruLayers = {}});
    }
    graph.layerTypes = {{"ADD", 0, 4, 88}};
    addDerivedFigures(graph);
    return graph;
}

Event eventOf(const char* name, Value value) {
    Event event;
    event.name = std::string(name);
    event.value = std::move(value);
    return event;
}

TEST(Inference, IsATreeOfAverages) {
    const std::pair<const char*, void (*)(Graph&)> cases[] = {
        {"Marlix 100 (Accelerator 90 (Layers on the Krel core 88, Layers on the DSP 0, Handing over 0, "
         "in no layer 2), not accounted for 10)",
         [](Graph&) {}},
        {"Marlix 100 (Backend 97 (Accelerator 90 (Layers on the Krel core 66, Layers on the DSP 20, "
         "Handing over 3, in no layer 1), IPC 2, Input tensor copy 1, not accounted for 3), "
         "outside the backend 3)",
         [](Graph& graph) {
             graph.zebLayers.clear();
             graph.oruLayers[3] = oru(false, 20);
             graph.oruLayers[0].averageUs = 30;
             graph.oruLayers[1].averageUs = 0;
             graph.oruLayers[2].averageUs = 39;
             graph.breakdown->backendUs = 97;
             graph.breakdown->ipcUs = 2;
             graph.breakdown->inputCopyUs = 1.5;
         }},
        {"Marlix with queue wait 100 (Marlix 92 (Backend 90 (Accelerator 90 (Layers on the Krel core 88, "
         "Layers on the DSP 0, Handing over 0, in no layer 2), not accounted for 0), "
         "outside the backend 2), Queue wait 8)",
         [](Graph& graph) {
             graph.breakdown->backendUs = 98;
             graph.breakdown->queueWaitUs = 8;
         }},
        {"Marlix 100 (Accelerator 80 [The parts of Accelerator take 8 us more than it, and the log does not "
         "tell why.] (Layers on the Krel core 88, Layers on the DSP 0, Handing over 0, in no layer 0), "
         "not accounted for 20)",
         [](Graph& graph) { graph.breakdown->acceleratorUs = 80; }},
        {"Marlix 100 [The parts of Marlix take 80 us more than it: Marlix is the average of 6 executions, "
         "the "
         "backend's figures are of 3.] (Accelerator 180 (Layers on the Krel core 88, Layers on the DSP 0, "
         "Handing over 0, in no layer 92), not accounted for 0)",
         [](Graph& graph) {
             graph.breakdown->acceleratorUs = 180;
             graph.breakdown->executionCount = 3;
         }},
        {"Marlix 100 (run 70 (one 50), late 2, not accounted for 28)",
         [](Graph& graph) {
             graph.breakdown.reset();
             Event run = eventOf("run", std::uint64_t{70});
             run.events = {eventOf("one", 50.0), eventOf("size", std::uint64_t{9}), eventOf("bad", -1.0)};
             run.events[1].unit = profiling::EventUnit::bytes;
             graph.average.events = {run, eventOf("late", std::int64_t{2})};
         }},
    };
    for (const auto& [tree, change] : cases) {
        Graph graph = quietGraph();
        change(graph);
        addDerivedFigures(graph);
        EXPECT_EQ(told(graph.inference), tree);
    }
}

// However many events there are, a form has a few rows of them.
TEST(Inference, PutsManyEventsTogether) {
    Graph graph = graphOf({100});
    graph.average.durationUs = 100;
    graph.average.events.resize(5000, eventOf("e", std::uint64_t{1}));
    addDerivedFigures(graph);
    ASSERT_EQ(graph.inference.parts.size(), 14U);
    EXPECT_EQ(told(graph.inference.parts[12]), "[4988 others] 4988");
    EXPECT_NE(graph.inference.note, "");
}

std::string rulesOf(Graph graph, Level level = Level::detailed) {
    Run run;
    run.level = level;
    graph.spread = spreadOf(graph.executions);
    addDerivedFigures(graph);
    addFindings(graph, run);
    std::string rules;
    for (const Finding& finding : graph.findings) {
        rules += finding.rule + ' ';
    }
    return rules;
}

void setDurations(Graph& graph, const std::vector<std::uint64_t>& durations) {
    graph.executions.durationUs.assign(durations.begin(), durations.end());
    graph.breakdown->executionCount = static_cast<std::uint32_t>(durations.size());
}

std::vector<std::uint64_t> rising(std::size_t count) {
    std::vector<std::uint64_t> durations(count);
    std::iota(durations.begin(), durations.end(), std::uint64_t{100});
    return durations;
}

TEST(Findings, HaveTheirRulesInTheDocumentation) {
    std::istringstream page(test::fileText(ZEB_PAGE_OF_RULES));
    std::multiset<std::string> told;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("| `")) {
            told.insert(line.substr(3, line.find('`', 3) - 3));
        }
    }
    const std::vector<std::string_view> rules = findingRules();
    EXPECT_EQ(told, std::multiset<std::string>(rules.begin(), rules.end()));
}

TEST(Findings, SpeakWhereTheirRuleHoldsAlone) {
    const struct {
        const char* rules;
        void (*change)(Graph&);
    } cases[] = {
        {"", [](Graph&) {}},
        {"no-backend-data ", [](Graph& graph) { graph.breakdown.reset(); }},
        {"counts-disagree ", [](Graph& graph) { graph.breakdown->executionCount = 7; }},
        {"outside-accelerator layers-do-not-add-up ",
         [](Graph& graph) { graph.breakdown->acceleratorUs = 60; }},
        {"", [](Graph& graph) { graph.breakdown->acceleratorUs = 81; }},
        {"outside-accelerator ", [](Graph& graph) { graph.average.durationUs = 120; }},
        {"queue-wait ", [](Graph& graph) { graph.breakdown->queueWaitUs = 5; }},
        {"", [](Graph& graph) { graph.breakdown->queueWaitUs = 4; }},
        {"dsp-between-offloaded ",
         [](Graph& graph) { graph.oruLayers.insert(graph.oruLayers.begin() + 1, oru(false, 5)); }},
        {"", [](Graph& graph) { graph.oruLayers.insert(graph.oruLayers.begin(), oru(false, 5)); }},
        {"", [](Graph& graph) { graph.oruLayers.push_back(oru(false, 5)); }},
        {"offload-overhead ",
         [](Graph& graph) {
             graph.oruLayers[0].krelExecUs = 100;
             graph.oruLayers[0].halUs = 120;
         }},
        {"data-movement ", [](Graph& graph) { graph.oruLayers.push_back(oru(false, 9, "LAYOUT_PAD")); }},
        {"", [](Graph& graph) { graph.oruLayers.push_back(oru(false, 8, "LAYOUT_PAD")); }},
        {"dominant-layer ",
         [](Graph& graph) {
             graph.zebLayers = {{"a", 0, 40, {}}, {"b", 24, 0, {}}, {"c", 24, 0, {}}};
         }},
        {"dominant-layer ",
         [](Graph& graph) {
             graph.zebLayers = {{"a", 0, 29, {}}, {"b", 29, 0, {}}, {"c", 29, 0, {}}};
         }},
        {"warm-up ", [](Graph& graph) { graph.executions.durationUs[0] = 125; }},
        {"", [](Graph& graph) { graph.executions.durationUs[0] = 124; }},
        {"warm-up ",
         [](Graph& graph) {
             setDurations(graph, {125, 100, 100, 100, 100});
         }},
        {"",
         [](Graph& graph) {
             setDurations(graph, {125, 100, 100, 100});
         }},
        {"", [](Graph& graph) { graph.executions.durationUs = {{}, 125, 100, 100, 100, 100}; }},
        {"outliers ",
         [](Graph& graph) {
             graph.executions.durationUs = {100, 100, 100, 151};
             graph.breakdown->executionCount = 4;
         }},
        // Of eight seven: what is missing, the costliest, and what is paid once.
        {"no-backend-data dsp-between-offloaded dominant-layer offload-overhead data-movement outliers "
         "warm-up ",
         [](Graph& graph) {
             graph.breakdown.reset();
             graph.oruLayers.insert(graph.oruLayers.begin() + 1, oru(false, 1'000));
             graph.oruLayers[0].krelExecUs = 10;
             graph.oruLayers[0].halUs = 150;
             graph.zebLayers[0].krelUs = 900;
             graph.oruLayers.push_back(oru(false, 130, "LAYOUT_PAD"));
             graph.executions.durationUs = {600, 100, 100, 100, 100, 100, 100, 100, 100, 100, 500, 500};
         }},
        {"outliers ", [](Graph& graph) { graph.executions.durationUs[3] = 151; }},
        {"spread ",
         [](Graph& graph) {
             setDurations(graph, {100, 100, 100, 100, 100, 100, 100, 100, 121, 121});
         }},
        {"",
         [](Graph& graph) {
             setDurations(graph, {100, 100, 100, 100, 100, 100, 100, 121, 121});
         }},
        {"slowing ", [](Graph& graph) { setDurations(graph, rising(24)); }},
        {"", [](Graph& graph) { setDurations(graph, rising(19)); }},
        {"",
         [](Graph& graph) {
             setDurations(graph, std::vector<std::uint64_t>(200, 100));
             graph.executions.durationUs.back() = 140;
         }},
        {"warm-up ",
         [](Graph& graph) {
             setDurations(graph, std::vector<std::uint64_t>(200, 100));
             graph.executions.durationUs.front() = 9000;
         }},
    };
    for (const auto& [rules, change] : cases) {
        Graph graph = quietGraph();
        change(graph);
        EXPECT_EQ(rulesOf(graph), rules);
    }
    EXPECT_EQ(rulesOf(quietGraph(), Level::basic), "level-basic ");
}

// Layers on the DSP that change data stand in two findings, and their time is told once.
TEST(Findings, AreOrderedByTheirCostAndTellOfWhatTheyShare) {
    Graph graph = quietGraph();
    graph.oruLayers.insert(graph.oruLayers.begin() + 1, {oru(false, 20, "LAYOUT_PAD"), oru(false, 5)});
    graph.oruLayers.push_back(oru(false, 9, "QUANTIZE"));
    for (std::size_t position = 0; position < graph.oruLayers.size(); ++position) {
        graph.oruLayers[position].id = static_cast<std::uint32_t>(position + 10);
    }
    graph.executions.durationUs[0] = 5000;
    addDerivedFigures(graph);
    graph.spread = spreadOf(graph.executions);
    analysis::Run run;
    run.steps = {{StepKind::compose, "a", {}, 700, {}},
                 {StepKind::finalize, "net", {}, 1500, {}},
                 {StepKind::deInit, "", {}, 9000, {}}};
    run.graphs = {graph};
    addFindings(run);
    ASSERT_EQ(run.graphs[0].findings.size(), 3U);
    const Finding& first = run.graphs[0].findings[0];
    const Finding& second = run.graphs[0].findings[1];
    EXPECT_EQ(first.rule, "data-movement");
    EXPECT_EQ(first.oruLayers, (std::vector<std::uint32_t>{11, 16}));
    EXPECT_EQ(first.partOf, std::nullopt);
    EXPECT_EQ(second.rule, "dsp-between-offloaded");
    EXPECT_EQ(
        second.text,
        "2 layers run on the DSP between layers of the Krel core: 25 us, 28.4% of the layers' time. 20 us "
        "of it are part of the 29 us above.");
    EXPECT_EQ(second.partOf, "data-movement");
    EXPECT_EQ(run.graphs[0].findings[2].rule, "warm-up") << "however much it is";
    ASSERT_EQ(run.findings.size(), 1U);
    EXPECT_EQ(run.findings[0].text,
              "The longest step of the start, finalizing net, takes 1500 us, as long as 15 inferences.");
    EXPECT_EQ(run.findings[0].steps, std::vector<std::uint64_t>{1});
    for (const Finding& finding : run.graphs[0].findings) {
        EXPECT_NE(finding.next, "") << finding.rule;
    }
}

// What docs/top.md promises of the rule, with times of which the truth is known: those that logs of them
// have.
TEST_F(MadeRun, FindsATrendAndSeldomOneThatIsNone) {
    const samplelog::Network network = samplelog::makeNetwork(1);
    const auto optionsOf = [](std::uint64_t seed, std::uint32_t executions, std::uint32_t wander,
                              std::uint32_t slowing) {
        NetworkOptions options{
            .level = samplelog::ProfileLevel::basic, .executions = executions, .layers = 1, .seed = seed};
        options.noiseMillionths = 20'000;
        options.wanderMillionths = wander;
        options.slowingMillionths = slowing;
        return options;
    };
    const auto durationsOf = [&network](const NetworkOptions& options) {
        const samplelog::NetworkTiming timing(network, 0, options);
        std::vector<std::uint64_t> durations;
        for (std::uint32_t position = 0; position < options.executions; ++position) {
            durations.push_back(timing.execution(position).roundTripUs);
        }
        return durations;
    };
    const NetworkOptions logged = optionsOf(0, 200, 700'000, 50'000);
    EXPECT_EQ(runOf(logged).graphs[0].executions.durationUs,
              graphOf(durationsOf(logged)).executions.durationUs);
    const auto isSlowing = [&](auto... options) {
        return rulesOf(graphOf(durationsOf(optionsOf(static_cast<std::uint32_t>(options)...))))
                   .find("slowing") != std::string::npos;
    };
    EXPECT_NEAR(trendOf(graphOf(rising(31)).executions).value().growthUs, 29.0, 1.0) << "from begin to end";
    int falseAlarms = 0;
    int found = 0;
    int foundWandering = 0;
    for (std::uint64_t seed = 0; seed < 1000; ++seed) {
        falseAlarms += isSlowing(seed, seed % 4 < 2 ? 50 : 200, seed % 2 == 0 ? 0 : 700'000, 0) ? 1 : 0;
    }
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        found += isSlowing(seed, 200, 0, 50'000) ? 1 : 0;
        foundWandering += isSlowing(seed, 200, 700'000, 50'000) ? 1 : 0;
    }
    EXPECT_LE(falseAlarms, 5);
    EXPECT_GE(found, 95);
    EXPECT_GE(foundWandering, 50);
}

TEST(Findings, TellWhichExecutionsAreOutliers) {
    Graph graph =
        graphOf({900, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100});
    for (const std::size_t position : {2U, 4U, 5U, 8U, 9U, 12U}) {
        graph.executions.durationUs[position] = 151 + position;
    }
    graph.spread = spreadOf(graph.executions);
    addDerivedFigures(graph);
    addFindings(graph, {});
    const auto finding = std::find_if(graph.findings.begin(), graph.findings.end(),
                                      [](const Finding& each) { return each.rule == "outliers"; });
    ASSERT_NE(finding, graph.findings.end());
    EXPECT_EQ(finding->text,
              "6 executions take more than 150 us, 1.5 times the median: numbers 3, 5, 6, 9, 10 and others.");
    EXPECT_EQ(finding->us, 63.0) << "of the longest of them, whatever the warm-up takes";
    EXPECT_NEAR(finding->costUs.value(), (53 + 55 + 56 + 59 + 60 + 63) / 17.0, 1e-9);
    EXPECT_EQ(finding->executions, (std::vector<std::uint64_t>{2, 4, 5, 8, 9, 12}));
}

}  // namespace
}  // namespace zeb::analysis
