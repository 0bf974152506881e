#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>

#include "analysis/Inference.h"
#include "analysis/MakeRun.h"
#include "forms/trace/Trace.h"
#include "forms/trace/TraceEvents.h"
#include "forms/trace/TraceFile.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "samplelog/SharedTextLog.h"
#include "support/TestReader.h"

namespace zeb::forms {
namespace {

using test::holds;
using test::Message;
using test::MethodType;

struct Written {
    TraceResult result;
    std::string text;
};

Written trace(const samplelog::Bytes& log, std::optional<double> fromMs = {}, std::optional<double> toMs = {},
              int level = 127, SliceForm slices = SliceForm::full) {
    const test::TempDir directory;
    const std::string path = directory.write("log", log);
    const TraceOptions options{static_cast<profiling::VisibilityLevel>(level), fromMs, toMs, slices};
    std::optional<analysis::Run> run = analysis::makeRun(path, options.level);
    EXPECT_TRUE(run);
    run->logFile = "log";
    std::ostringstream out;
    const auto result = writeTrace(out, *run, path, options);
    EXPECT_TRUE(result);
    EXPECT_EQ(result->bytes, out.str().size());
    return {*result, out.str()};
}

Written trace(const std::vector<Message>& messages, std::optional<double> fromMs = {},
              std::optional<double> toMs = {}, int level = 127) {
    return trace(test::logOf({messages}), fromMs, toMs, level);
}

template <typename Write>
samplelog::Bytes logBy(Write write) {
    std::ostringstream out;
    write(out);
    const std::string text = out.str();
    return {text.begin(), text.end()};
}

// What Python's parser reads, and what stands on the tracks, if viewers can show it as it is.
std::string checked(const std::string& trace, const std::string& arguments = {}) {
    const test::TempDir directory;
    const std::string command =
        ZEB_CHECK_TRACE " " + directory.write("trace", trace) + " " + arguments + " 2>&1";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    for (int character = 0; (character = std::fgetc(pipe.get())) != EOF;) {
        text += static_cast<char>(character);
    }
    return text;
}

Message call(MethodType type, std::uint64_t startUs, std::uint64_t endUs,
             std::optional<std::string> text = std::nullopt, std::vector<samplelog::Event> events = {}) {
    Message made;
    made.methodType = type;
    made.text = std::move(text);
    made.timing = {startUs, endUs};
    made.events = std::move(events);
    return made;
}

samplelog::Event queueWait(std::uint64_t us) {
    return test::ofType(samplelog::queueWaitEventType, test::event("wait", test::number(us)));
}

TEST(Trace, ALogIsWrittenAnEventALine) {
    const auto written = trace({
        call(MethodType::Finalize, 5'000, 5'600, "g",
             {test::event("prepare", test::number(580),
                          {test::inUnit(samplelog::cycles, test::event("plan", 0.5F))})}),
        call(MethodType::Init, 4'000, 6'000, {}, {test::inUnit(0x102, test::event("load", test::number(7)))}),
        call(MethodType::Execute, 7'000, 7'500, "g", {queueWait(60)}),
        call(MethodType::DeInit, 8'000, 7'000, "bye"),
    });
    EXPECT_EQ(written.text, R"({"displayTimeUnit":"ms","traceEvents":[
{"name":"process_name","ph":"M","pid":1,"tid":0,"args":{"name":"run, as measured"}},
{"name":"process_sort_index","ph":"M","pid":1,"tid":0,"args":{"sort_index":1}},
{"name":"thread_name","ph":"M","pid":1,"tid":1,"args":{"name":"Set-up"}},
{"name":"thread_sort_index","ph":"M","pid":1,"tid":1,"args":{"sort_index":1}},
{"name":"finalize g","ph":"X","pid":1,"tid":1,"ts":1000,"dur":600,"args":{"graph":"g","method":2,"level":0,"durationUs":600,"events":{"prepare [us]":580,"prepare > plan [cycles]":0.5}}},
{"name":"init","ph":"X","pid":1,"tid":1,"ts":0,"dur":2000,"args":{"method":4,"level":0,"durationUs":2000,"events":{"load [us]":7}}},
{"name":"thread_name","ph":"M","pid":1,"tid":129,"args":{"name":"Executions of g"}},
{"name":"thread_sort_index","ph":"M","pid":1,"tid":129,"args":{"sort_index":129}},
{"name":"execute","ph":"X","pid":1,"tid":129,"ts":3000,"dur":500,"args":{"graph":"g","method":1,"level":0,"durationUs":500,"queueWaitUs":60,"withoutQueueWaitUs":440,"events":{"wait [us]":60}}},
{"name":"queue wait","ph":"X","pid":1,"tid":129,"ts":3000,"dur":60,"args":{"placed":"assumed","queueWaitUs":60}},
{"name":"thread_name","ph":"M","pid":1,"tid":193,"args":{"name":"Tear-down"}},
{"name":"thread_sort_index","ph":"M","pid":1,"tid":193,"args":{"sort_index":193}},
{"name":"de-init","ph":"X","pid":1,"tid":193,"ts":4000,"dur":0,"args":{"text":"bye","method":5,"level":0,"durationUs":0,"endsBeforeStart":true}}
],"otherData":{"logFile":"log","generator":"","generatorVersion":"","backendVersion":"","epochUs":0,"smallestStartUs":4000,"slices":4,"messagesWithoutTimes":0,"messagesCutAway":0,"messagesWithoutTrack":0,"messagesTooLate":0}}
)");
}

// Names and arguments are one in Speedscope, so that nothing adds up where each slice has its own.
TEST(Trace, APlainOneHasNamesAloneThatAreAlike) {
    const auto written = trace(test::logOf({{
                                   call(MethodType::InitStep, 1'000, 2'000, "g"),
                                   call(MethodType::Execute, 2'000, 2'500, "g", {queueWait(60)}),
                                   call(MethodType::Execute, 3'000, 3'600, "g", {queueWait(50)}),
                               }}),
                               {}, {}, 127, SliceForm::plain);
    EXPECT_TRUE(holds(written.text, R"({"name":"init step g","ph":"X","pid":1,"tid":1,"ts":0,"dur":1000})"));
    EXPECT_TRUE(holds(written.text, R"({"name":"execute","ph":"X","pid":1,"tid":129,"ts":1000,"dur":500})"));
    EXPECT_TRUE(holds(written.text, R"({"name":"execute","ph":"X","pid":1,"tid":129,"ts":2000,"dur":600})"));
    EXPECT_TRUE(
        holds(written.text, R"({"name":"queue wait","ph":"X","pid":1,"tid":129,"ts":2000,"dur":50})"));
}

TEST(Trace, EverySampleIsShownWhole) {
    using samplelog::NetworkOptions;
    const auto network = [](NetworkOptions options) {
        return logBy([&](std::ostream& out) { samplelog::writeNetworkLog(out, options); });
    };
    const std::string average =
        "average inference (laid out, not measured) | ZEB layers: 32\n"
        "average inference (laid out, not measured) | DSP: 25\n"
        "average inference (laid out, not measured) | Krel: 29\n";
    const auto run = [](const std::string& tracks) {
        return "run, as measured | Set-up: 4\nrun, as measured | Other calls: 1\n" + tracks +
               "run, as measured | Tear-down: 1\n";
    };
    const std::string executions = "run, as measured | Executions of mobilenet_v1_224";
    const struct {
        samplelog::Bytes log;
        std::string shown;
    } cases[] = {
        {network({.executions = 5}), run(executions + ": 5\n") + average},
        {network({.async = true, .executions = 5}),  // and a queue wait each
         run(executions + ": 6\n" + executions + ", track 2: 4\n") + average},
        {network({.level = samplelog::ProfileLevel::basic, .executions = 5}), run(executions + ": 5\n")},
        {logBy(samplelog::writeAdapterUpdaterLog), "run, as measured | Other calls: 2\n"},
        {logBy(samplelog::writeMethodsLog),
         "run, as measured | Set-up: 13\n"
         "run, as measured | Other calls: 10\n"
         "run, as measured | Executions of left: 6\n"
         "run, as measured | Executions of left, track 2: 2\n"
         "run, as measured | Executions of right: 2\n"
         "run, as measured | Executions of right, track 2: 2\n"
         "run, as measured | Tear-down: 1\nmessagesWithoutTimes 4"},
        {test::logOf({}), ""},
    };
    for (const auto& [log, shown] : cases) {
        const std::string found = checked(trace(log).text);
        EXPECT_EQ(found, shown + "\n");
    }
    const std::string three = checked(trace(network({.executions = 2, .graphs = 3})).text);
    EXPECT_PRED2(holds, three,
                 "average inference of mobilenet_v1_224_2 (laid out, not measured) | ZEB layers: 32");
}

TEST(Trace, OverlappingCallsCanBeStackedByAViewer) {
    for (std::uint32_t seed = 0; seed < 5; ++seed) {
        std::mt19937 random(seed);
        std::vector<Message> messages;
        for (int count = 0; count < 2'000; ++count) {
            const std::uint64_t start = random() % 10'000;
            constexpr MethodType types[] = {MethodType::ExecuteAsync, MethodType::ExecuteAsync,
                                            MethodType::Init, MethodType::ApplyBinarySection,
                                            MethodType::DeInit};
            const std::string graph(1, static_cast<char>('a' + random() % 3));
            messages.push_back(
                call(types[random() % 5], start, start + random() % 300, graph, {queueWait(random() % 400)}));
        }
        const auto written = trace(messages);
        const std::string found = checked(written.text);
        EXPECT_PRED2(holds, found, "run, as measured | Executions of b, track 2: ");
        EXPECT_FALSE(holds(found, "Error")) << found;
        EXPECT_EQ(written.result.slices + written.result.leftOutForTracks, messages.size());
    }
}

TEST(Trace, SlicesOfMoreThan64TracksAreCounted) {
    const auto written = trace(std::vector<Message>(70, call(MethodType::ExecuteAsync, 10, 20, "g")));
    EXPECT_EQ(written.result.leftOutForTracks, 6U);
    EXPECT_EQ(written.result.slices, 64U);
    const std::string found = checked(written.text);
    EXPECT_PRED2(holds, found, ", track 64: 1\nmessagesWithoutTrack 6\n");
}

TEST(Trace, TheRunTellsTheQueueWaitsAndTheyAreCutToTheirExecutions) {
    const auto written = trace({
        call(MethodType::ExecuteAsync, 0, 100, "g"),
        call(MethodType::ExecuteAsync, 100, 200, "other", {queueWait(5)}),
        call(MethodType::ExecuteAsync, 200, 300, "g", {queueWait(1), queueWait(2)}),
        call(MethodType::ExecuteAsync, 300, 400, "g", {test::event("outer", {}, {queueWait(700)})}),
        call(MethodType::ExecuteAsync, 400, 500, "g", {queueWait(0)}),
        call(MethodType::GraphEvents, 0, 900, "g", {queueWait(33)}),
    });
    EXPECT_EQ(written.result.withoutTimes, 1U);
    const std::string found = checked(written.text, "queueWaitUs dur placed");
    EXPECT_PRED2(holds, found, "Executions of g: 6 33 33 assumed 700 700 assumed 0\n");
    EXPECT_PRED2(holds, found, "Executions of other: 2 5 5 assumed\n");
    EXPECT_PRED2(holds, written.text, R"("ts":300,"dur":100,"args":{"placed":"assumed","queueWaitUs":700})");
}

TEST(Trace, MessagesOfALevelThatIsNotVisibleAreLeftOut) {
    std::vector<Message> messages = {
        call(MethodType::Execute, 10, 20, "g", {queueWait(1)}),
        call(MethodType::Execute, 30, 40, "g", {queueWait(2)}),
        call(MethodType::Execute, 50, 60, "g", {queueWait(3)}),
        call(MethodType::Execute, 70, 80, "g", {queueWait(4)}),
    };
    for (std::size_t position = 0; position < messages.size(); ++position) {
        messages[position].level = static_cast<std::int8_t>(std::array{2, -1, 1, 127}[position]);
    }
    const auto written = trace(messages, {}, {}, 2);
    EXPECT_EQ(checked(written.text, "level queueWaitUs"),
              "run, as measured | Executions of g: 4 -1 2 2 1 3 3\n\n");
    EXPECT_PRED2(holds, written.text, R"("smallestStartUs":30)");
}

TEST(Trace, OnlyWhatIsWithinTheCutIsWritten) {
    const std::vector<Message> messages = {
        call(MethodType::Init, 1'000'000, 1'010'000),
        call(MethodType::Execute, 1'010'000, 1'011'000, "g"),
        call(MethodType::Execute, 1'011'000, 1'012'500, "g"),
        call(MethodType::Execute, 1'013'000, 1'014'000, "g"),
    };
    const struct {
        std::optional<double> fromMs;
        std::optional<double> toMs;
        std::uint64_t slices;
    } cases[] = {
        {{}, {}, 4},     {-5.0, {}, 4},      {0.0, 1.0e30, 4}, {11.0, {}, 3},      {11.0001, {}, 2},
        {{}, 10.999, 2}, {{}, 11.0, 3},      {12.6, 12.9, 0},  {12.4, 12.4, 1},    {1.0e30, {}, 0},
        {{}, -1.0, 1},   {12.5001, 13.0, 1}, {14.0, 14.0, 1},  {14.0001, 14.1, 0},
    };
    for (const auto& [fromMs, toMs, slices] : cases) {
        const auto written = trace(messages, fromMs, toMs);
        EXPECT_EQ(written.result.slices, slices) << fromMs.value_or(-99) << " to " << toMs.value_or(-99);
        EXPECT_EQ(written.result.outsideCut, messages.size() - slices);
    }
}

TEST(Trace, AllMessagesAreAccountedFor) {
    Message halfTimed = call(MethodType::Init, 1, 2);
    halfTimed.timing.startTime.reset();
    Message unfinished = call(MethodType::Execute, 1, 2, "g");
    unfinished.timing.endTime.reset();
    constexpr std::uint64_t last = std::numeric_limits<std::uint64_t>::max();
    const auto written =
        trace({halfTimed, unfinished, call(MethodType::Init, 10, 20),
               call(MethodType::Execute, last - 1, last, "g"), call(MethodType::Execute, last, 3, "g"),
               call(static_cast<MethodType>(-7), 30, 40, "new"), call(MethodType::Execute, 50, 60)});
    EXPECT_EQ(checked(written.text, "method"),
              "run, as measured | Set-up: 1 4\nrun, as measured | Other calls: 2 -7 1\n"
              "messagesWithoutTimes 2 messagesTooLate 2\n");
    const auto late = trace({call(MethodType::Execute, last - 1, last, "g")});
    EXPECT_PRED2(holds, late.text, R"("ts":0,"dur":1,)");
    EXPECT_PRED2(holds, late.text, R"("smallestStartUs":"18446744073709551614")");
}

TEST(Trace, HostileTextsStayTextsOfAFewBytes) {
    const std::string name = "\x1B[2J\"}],\xFF\n" + std::string(1'000'000, 'n') + "\xE5\xB1";
    const auto written = trace({
        call(MethodType::Execute, 10, 20, name,
             {test::event(name, name, {test::event(name, samplelog::Bytes{1, 2}), test::event(name, name)})}),
        call(MethodType::Finalize, 1, 2, name),
        call(MethodType::InitStep, 3, 4, std::string("nul\0behind", 10)),
    });
    EXPECT_EQ(written.result.slices, 3U);
    EXPECT_LT(written.text.size(), 5'000U);
    const std::string found = checked(written.text, "text");
    EXPECT_PRED2(holds, found, ": 2 nul\n");
    EXPECT_FALSE(holds(found, "Error")) << found;
}

TEST(Trace, AnExecutionShowsSoManyEventsAndTellsOfMore) {
    const std::vector<samplelog::Event> same(maxTraceEvents, test::event("same", test::number(1)));
    std::vector<samplelog::Event> more = same;
    more.back().subEvents = same;
    const auto written =
        trace({call(MethodType::Execute, 10, 20, "g", same), call(MethodType::Execute, 20, 30, "g", more)});
    EXPECT_PRED2(holds, written.text, R"("same [us] #32":1}}})");
    EXPECT_PRED2(holds, written.text, R"("same [us] #32":1},"hasMoreEvents":true}})");
    EXPECT_EQ(checked(written.text), "run, as measured | Executions of g: 2\n\n");
}

TEST(Trace, LayersAreLaidOutEndToEnd) {
    analysis::Run run;
    run.graphs.resize(2);
    run.graphs[0].name = "zeb";
    run.graphs[0].zebLayers = {
        {.name = "conv", .dspUs = 10, .krelUs = 30, .oruLayers = {4, 7}},
        {.name = "endless", .dspUs = 1, .krelUs = std::numeric_limits<std::uint64_t>::max(), .oruLayers = {}},
        {.name = "endless", .dspUs = std::numeric_limits<std::uint64_t>::max(), .krelUs = 1, .oruLayers = {}},
        {.name = "pool", .dspUs = 5, .krelUs = 0, .oruLayers = {}},
        {.name = "idle", .dspUs = 0, .krelUs = 0, .oruLayers = {}}};
    run.graphs[1].name = "oru";
    run.graphs[1].oruLayers = {
        {.id = 3, .typeName = "Conv", .isOffloaded = true, .averageUs = 99, .coreUs = 20},
        {.id = 4, .typeName = "Add", .averageUs = 7}};
    std::for_each(run.graphs.begin(), run.graphs.end(), analysis::addDerivedFigures);
    const test::TempDir directory;
    std::ostringstream out;
    const TraceOptions options{{}, 2.0, {}};  // the layers begin where the trace does
    ASSERT_TRUE(writeTrace(out, run, directory.write("log", ""), options));
    for (
        const std::string_view line : {
            "average inference of zeb (laid out, not measured)",
            R"({"name":"conv","ph":"X","pid":2,"tid":1,"ts":2000,"dur":40,"args":{"placed":"laid out","dspUs":10,"krelUs":30,"oruLayerCount":2,"oruLayers":[4,7]}},)",
            R"({"name":"conv","ph":"X","pid":2,"tid":2,"ts":2000,"dur":10,"args":{"placed":"laid out"}},)",
            R"({"name":"conv","ph":"X","pid":2,"tid":3,"ts":2010,"dur":30,"args":{"placed":"laid out"}},)",
            R"({"name":"pool","ph":"X","pid":2,"tid":1,"ts":2040,"dur":5,)",
            R"({"name":"pool","ph":"X","pid":2,"tid":2,"ts":2040,"dur":5,)",
            R"({"name":"idle","ph":"X","pid":2,"tid":1,"ts":2045,"dur":0,)",
            R"({"labels":"2 layers left out: times too large"})",
            R"({"name":"Conv 3","ph":"X","pid":3,"tid":3,"ts":2000,"dur":20,)",
            R"({"name":"Add 4","ph":"X","pid":3,"tid":2,"ts":2020,"dur":7,)",
        }) {
        EXPECT_PRED2(holds, out.str(), std::string(line));
    }
    EXPECT_EQ(checked(out.str()),
              "average inference of zeb (laid out, not measured) | ZEB layers: 3\n"
              "average inference of zeb (laid out, not measured) | DSP: 2\n"
              "average inference of zeb (laid out, not measured) | Krel: 1\n"
              "average inference of oru (laid out, not measured) | DSP: 1\n"
              "average inference of oru (laid out, not measured) | Krel: 1\n\n");
}

TEST(Trace, NoMoreOfAFileThanAPieceIsHeld) {
    std::ostringstream out;
    TraceFile file(out);
    for (std::uint64_t process = 0; process < 2'000; ++process) {
        file.nameProcess(process, "process");
    }
    const std::string beforeTheEnd = out.str();
    const std::uint64_t bytes = file.finish([](JsonWriter&) {});
    EXPECT_EQ(bytes, out.str().size());
    EXPECT_GT(bytes, 200'000U);
    EXPECT_LT(bytes - beforeTheEnd.size(), 70'000U);
}

TEST(Trace, ALogThatCannotBeReadGivesNone) {
    const test::TempDir directory;
    std::ostringstream out;
    EXPECT_FALSE(writeTrace(out, {}, directory.path("missing"), {}));
    EXPECT_FALSE(writeTrace(out, {}, directory.write("cut", std::string_view("\x20\0\0\0xx", 6)), {}));
    EXPECT_EQ(out.str(), "");
}

// A megabyte that all messages have for a name: as often written or searched it would take minutes.
TEST(Trace, WorkAndSizeAreInProportionToTheLog) {
    constexpr std::size_t messages = 100'000;
    const auto written = trace(samplelog::encodeSharedTextLog(
        {.methodType = MethodType::ExecuteAsync, .messages = messages, .text = std::string(1'000'000, 'x')}));
    EXPECT_EQ(written.result.slices + written.result.withoutTimes + written.result.leftOutForTracks,
              messages);
    EXPECT_LT(written.text.size(), messages * 1'000);
}

}  // namespace
}  // namespace zeb::forms
