// The backend's report of small logs, from the log's bytes to the text.

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/BackendObjects.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::CaughtLog;
using test::event;
using test::holds;
using test::Message;
using test::message;
using test::MethodType;
using test::number;
using test::object;
using test::Value;
using Events = std::vector<test::Event>;
using Loaded = test::Loaded<ZebProfileLogReaderMURL>;
using Lines = std::vector<std::string>;

constexpr const char* profileName = "Graph Execute Profile Data";
constexpr const char* levelName = "Execute Profiling Level";

Message execution(Events events, MethodType type = MethodType::Execute, std::uint64_t durationUs = 1000) {
    return message(type, "net", durationUs, std::move(events));
}

test::Event withBelow(test::Event parent, Events below) {
    parent.subEvents = std::move(below);
    return parent;
}

// The events of an execution with a profile where the backend leaves it.
Events profiled(const Bytes& profile, Events more = {}) {
    more.push_back(event("backend", {}, {object(profileName, profile)}));
    return more;
}

// The text from the title on.
std::string from(const std::string& title, const std::string& text) {
    const std::size_t at = text.find(title);
    return at == std::string::npos ? "no " + title : text.substr(at);
}

TEST(BackendReport, OfAnEmptyLogHasItsFixedSections) {
    Loaded loaded(std::vector<Message>{});
    const CaughtLog log;
    EXPECT_EQ(loaded.console(),
              "Init Stats:\n-----------\n    Marlix: 0 us\n\n"
              "Finalize Stats:\n---------------\n\n"
              "De-Init Stats:\n--------------\n    Marlix: 0 us\n\n"
              "Execution Stats (Average):\n---------------------\n\n");
    EXPECT_EQ(log.lines(), Lines{"2 failed get Profile Level Value!"});
    EXPECT_EQ(loaded.csv(),
              "Profile Level, Basic\nBackend (ZebGraph_execute), 0 us\nAccelerator Time,0 us\n"
              "Execution Count,0\nADSP Clock Freq (Hz),0 (0 MHz) \nKrel Clock Freq (Hz),0 (0 MHz) \n");
    EXPECT_TRUE(log.has("1 multiple graph not supported yet!"));
}

TEST(BackendReport, ReadsTheProfileLevel) {
    const std::string notFound =
        "2 Profiling Level is not found, CSV file will still be generated with basic level.";
    const struct {
        const char* level;
        Events events;
        const char* label;
        Lines log;
    } cases[] = {
        {"1", {event(levelName, number(1))}, "Basic", {}},
        {"2", {event(levelName, number(2))}, "Detailed", {}},
        {"1100, signed", {event(levelName, std::int64_t{1100})}, "Internal", {}},
        {"2 as a text", {event(levelName, std::string("2"))}, "Detailed", {}},
        {"2 as a float", {event(levelName, 2.0F)}, "Detailed", {}},
        {"2 and more", {event(levelName, std::string(" 2nd"))}, "Detailed", {}},
        {"deep in the tree",
         {event("a", {}, {event("b", {}, {event(levelName, number(2))})})},
         "Detailed",
         {}},
        {"below an object of its name",
         {withBelow(object(levelName, {9}), {event(levelName, number(2))})},
         "Detailed",
         {}},
        {"no value", {event(levelName)}, "Basic", {notFound}},
        {"an empty text", {event(levelName, std::string())}, "Basic", {notFound}},
        {"3", {event(levelName, number(3))}, "Basic", {"2 Profile Level Value 3 not supported."}},
        {"-2", {event(levelName, std::int64_t{-2})}, "Basic", {"2 Profile Level Value -2 not supported."}},
        {"the first one counts", {event(levelName, number(2)), event(levelName, number(1))}, "Detailed", {}},
    };
    for (const auto& [level, events, label, lines] : cases) {
        Loaded loaded({execution(events), execution({event(levelName, number(1100))})});
        const CaughtLog log(ZEB_LOG_LEVEL_WARN);
        EXPECT_PRED2(holds, loaded.csv(), "Profile Level, " + std::string(label) + "\nMarlix, 1000 us\n")
            << level;
        EXPECT_EQ(log.lines(), lines) << level;
    }
}

TEST(BackendReport, FindsNoProfileLevelInAnObject) {
    Loaded loaded({execution({object(levelName, {2})})});
    const CaughtLog log(ZEB_LOG_LEVEL_WARN);
    EXPECT_PRED2(holds, loaded.csv(), "Profile Level, Basic\n");
    EXPECT_EQ(log.lines(), Lines{"2 failed get Profile Level Value!"});
}

TEST(BackendReport, ShowsTablesAtEveryLevelButTheFirst) {
    const std::vector<test::Layer> layers = {
        {.id = 0, .flags = 1, .execCount = 1, .timeUs = 8, .coreCycles = 5}};
    for (const std::uint64_t level : {1U, 2U, 1100U}) {
        Loaded loaded({message(MethodType::Init, "", 1,
                               {object("m", test::nodeMappingObject({{0, 0}})),
                                object("n", test::nodeNamesObject({"conv"}))}),
                       message(MethodType::Finalize, "net", 1,
                               {object("c", test::layerConfigObject(1'000'000, 1, layers))}),
                       execution(profiled(test::graphProfileObject({.executions = 1}, layers),
                                          {event(levelName, number(level))}))});
        const bool hasTables = level != 1;
        EXPECT_EQ(holds(loaded.console(), "Layer(s) mapping:"), hasTables) << level;
        const std::string csv = loaded.csv();
        EXPECT_EQ(holds(csv, "0,CONVOLUTION,Offloaded,No,-,1,8,8,0,0,5,5,\n"), hasTables) << level;
        EXPECT_EQ(holds(csv, "\nconv,0,5,5,\nSummary,0%,100%\n"), hasTables) << level;
        EXPECT_EQ(holds(csv, "\nconv,\"0,\"\n"), hasTables) << level;
        EXPECT_EQ(csv.substr(csv.size() - 6) == "MHz) \n", !hasTables) << "ends with the clocks";
    }
}

TEST(BackendReport, HasInitAndFinalizeSectionsWithoutLinesForObjects) {
    const test::Event config = object("config", test::layerConfigObject(1'999'999, 3'000'000, {}));
    Loaded loaded(
        {message(MethodType::Init, "", 40,
                 {withBelow(object("map", {}), {event("below", number(1))}), event("load", number(2))}),
         message(MethodType::Finalize, "g", 5, {withBelow(event("f", number(3)), {config})}),
         message(MethodType::Finalize, "h", 6, {object("other", test::layerConfigObject(7, 7, {}))}),
         execution({})});
    const CaughtLog log;
    const std::string console = loaded.console();
    EXPECT_PRED2(
        holds, console,
        "Init Stats:\n-----------\n    Marlix: 40 us\n        below: 1 us\n    Backend (load): 2 us\n\n"
        "Finalize Stats:\n---------------\n"
        "Graph 0 (g):\n    Backend (f): 3 us\n\nGraph 1 (h):\n\nDe-Init Stats:\n");
    EXPECT_PRED2(holds, console,
                 "            ADSP Clock Freq:         3000000 (3 MHz) \n"
                 "            Krel Clock Freq:         1999999 (1 MHz) \n");
    EXPECT_TRUE(log.has("2 Expected 2 opaque objects for node mapping, got 1; skipping."));
}

TEST(BackendReport, TakesInitEventsOfOtherMessagesFirst) {
    const auto typed = [](std::uint32_t type, test::Event made) {
        return test::ofType(type, std::move(made));
    };
    Loaded loaded({message(MethodType::Init, "", 1, {event("own")}),
                   message(MethodType::GraphEvents, "g", 0,
                           {typed(samplelog::initEventType, event("early", number(4))),
                            typed(samplelog::finalizeEventType, event("late", number(5)))})});
    EXPECT_PRED2(holds, loaded.console(),
                 "    Marlix: 1 us\n    Backend (early): 4 us\n\nFinalize Stats:\n---------------\n"
                 "Graph 0 (g):\n    Backend (late): 5 us\n\n");
}

TEST(BackendReport, HasAnExecutionSection) {
    const Bytes profile =
        test::graphProfileObject({.acceleratorUs = 805, .executions = 4, .dspGraphUs = 100});
    const Bytes neverRun = test::graphProfileObject({.acceleratorUs = 805, .dspGraphUs = 100});
    const std::string tail =
        "            ADSP Clock Freq:         0 (0 MHz) \n            Krel Clock Freq:         0 (0 MHz) \n";
    const auto details = [&tail](const std::string& accelerator, const std::string& count) {
        return "            Accelerator Time:        " + accelerator +
               " us\n            Execution Count:         " + count + "\n" + tail;
    };
    const Events all = {event("ZebGraph_execute", number(4003)), event("Input Tensor Copy Time", number(9)),
                        event("Output Tensor Copy Time", number(10)),
                        event("HLOS Graph Execution Time", number(507))};
    Events asyncAll = {event("ZebGraph_executeAsync", number(4003)), event("graphQueueWaitUs", number(41)),
                       event("dispatcherQueueWaitUs", number(83))};
    const Events longWait = {event("ZebGraph_executeAsync", number(40)),
                             event("graphQueueWaitUs", number(9000))};
    const struct {
        const char* run;
        std::vector<Message> messages;
        std::string section;
        std::string csv;
    } cases[] = {
        {"synchronous",
         {execution(profiled(profile, all))},
         "Graph 0 (net):\n    Marlix: 1000 us\n        Backend (ZebGraph_execute): 1000 us\n"
         "            Input Tensor Copy Time:  2.250 us\n            Output Tensor Copy Time: 2.500 us\n"
         "            IPC Time:                101 us\n" +
             details("201", "4"),
         "Marlix, 1000 us\nBackend (ZebGraph_execute), 1000 us\nInput Tensor Copy Time, 2.250 us\n"
         "Output Tensor Copy Time, 2.500 us\nIPC Time,101 us\nAccelerator Time,201 us\nExecution Count,4\n"
         "ADSP Clock Freq (Hz),0 (0 MHz) \nKrel Clock Freq (Hz),0 (0 MHz) \n"},
        {"without the named events",
         {execution(profiled(profile))},
         "Graph 0 (net):\n    Marlix: 1000 us\n" + details("201", "4"),
         "Marlix, 1000 us\nBackend (ZebGraph_execute), 0 us\nAccelerator Time,201 us\n"},
        {"a count of 0",
         {execution(profiled(neverRun, all))},
         "Graph 0 (net):\n    Marlix: 1000 us\n        Backend (ZebGraph_execute): 0 us\n"
         "            Input Tensor Copy Time:  0.000 us\n            Output Tensor Copy Time: 0.000 us\n" +
             details("0", "0"),
         "Marlix, 1000 us\nBackend (ZebGraph_execute), 0 us\nInput Tensor Copy Time, 0.000 us\n"
         "Output Tensor Copy Time, 0.000 us\nAccelerator Time,0 us\nExecution Count,0\n"},
        {"a host time below the DSP's",
         {execution(profiled(profile, {event("HLOS Graph Execution Time", number(99))}))},
         "Graph 0 (net):\n    Marlix: 1000 us\n" + details("201", "4"),
         "Backend (ZebGraph_execute), 0 us\nAccelerator Time,201 us\n"},
        {"several graphs",
         {execution(profiled(profile, all)), message(MethodType::Execute, "second", 7)},
         "Graph 0 (net):\n    Marlix: 1000 us\nGraph 1 (second):\n    Marlix: 7 us\n"
         "        Backend (ZebGraph_execute): 1000 us\n",
         "Profile Level, Basic\nBackend (ZebGraph_execute), 1000 us\n"},
        {"asynchronous",
         {execution(profiled(profile, asyncAll), MethodType::ExecuteAsync, 1200)},
         "Graph 0 (net):\n    Marlix: 1170 us\n        Backend (ZebGraph_executeAsync): 970 us\n" +
             details("201", "4"),
         "Marlix, 1170 us\nBackend (ZebGraph_executeAsync), 970 us\nAccelerator Time,201 us\n"},
        {"asynchronous, of several graphs",
         {execution(profiled(profile, asyncAll), MethodType::ExecuteAsync),
          message(MethodType::ExecuteAsync, "second", 80)},
         "Graph 0 (net):\nGraph 1 (second):\n    Marlix: 50 us\n        Backend (ZebGraph_executeAsync): 970 "
         "us\n",
         "Profile Level, Basic\nBackend (ZebGraph_executeAsync), 970 us\n"},
        {"waits that are longer than the run",
         {execution(profiled(profile, longWait), MethodType::ExecuteAsync)},
         "Graph 0 (net):\n    Marlix: 0 us\n        Backend (ZebGraph_executeAsync): 0 us\n" +
             details("201", "4"),
         "Marlix, 0 us\nBackend (ZebGraph_executeAsync), 0 us\n"},
        {"asynchronous without the API's event",
         {execution(
             profiled(profile, {event("ZebGraph_execute", number(9)), event("graphQueueWaitUs", number(40))}),
             MethodType::ExecuteAsync)},
         "Graph 0 (net):\n" + details("201", "4"),
         "Marlix, 990 us\nBackend (ZebGraph_executeAsync), 0 us\n"},
        {"synchronous with waits, which do not count",
         {execution(profiled(
             profile, {event("ZebGraph_execute", number(400)), event("graphQueueWaitUs", number(40))}))},
         "Graph 0 (net):\n    Marlix: 1000 us\n        Backend (ZebGraph_execute): 100 us\n",
         "Marlix, 1000 us\nBackend (ZebGraph_execute), 100 us\n"},
        {"profiles at other depths, which are not looked at",
         {execution(
             {object(profileName, profile),
              event("a", {}, {event("b", {}, {object(profileName, profile)}), object("other", profile)})})},
         "Graph 0 (net):\n    Marlix: 1000 us\n" + details("0", "0"),
         "Execution Count,0\n"},
        {"several profiles, of which the last one counts",
         {execution(profiled(neverRun, all)), execution(profiled(profile))},
         "        Backend (ZebGraph_execute): 1000 us\n",
         "IPC Time,101 us\nAccelerator Time,201 us\nExecution Count,4\n"},
    };
    for (const auto& [run, messages, section, csv] : cases) {
        SCOPED_TRACE(run);
        Loaded loaded(messages);
        EXPECT_PRED2(holds, from("Execution Stats (Average):\n---------------------\n", loaded.console()),
                     section);
        EXPECT_PRED2(holds, loaded.csv(), csv);
    }
}

TEST(BackendReport, OfALogThatFailedToLoadHasNoAveragesButNamesItsTensorCopies) {
    Bytes bytes = test::logOf({{execution({event("Output Tensor Copy Time", std::string("x"))})}});
    bytes.insert(bytes.end(), 4, 0);
    Loaded loaded(bytes);
    EXPECT_FALSE(loaded.isLoaded);
    EXPECT_EQ(from("Execution", loaded.console()), "Execution Stats (Average):\n---------------------\n\n");
    EXPECT_PRED2(holds, loaded.csv(),
                 "Profile Level, Basic\nBackend (ZebGraph_execute), 0 us\n"
                 "Output Tensor Copy Time, 0.000 us\nAccelerator Time,0 us\n");
}

TEST(BackendReport, LogsTheDspTimeOfEachProfileWhenTheHostTimeIsKnown) {
    const Bytes first = test::graphProfileObject({.executions = 1, .dspGraphUs = 100});
    const Bytes second = test::graphProfileObject({.executions = 1, .dspGraphUs = 4294967297U});
    for (const bool isKnown : {false, true}) {
        Loaded loaded(
            {execution(
                 profiled(first, isKnown ? Events{event("HLOS Graph Execution Time", number(9))} : Events{})),
             execution(profiled(second))});
        const CaughtLog log(ZEB_LOG_LEVEL_INFO);
        loaded.console();
        EXPECT_EQ(log.has("3 dsp graph exec time is 100"), isKnown);
        EXPECT_EQ(log.has("3 dsp graph exec time is 1"), isKnown);
    }
}

TEST(BackendReport, AlignsItsTablesToTheLeftBehindADetailLine) {
    const struct {
        const char* name;
        bool isLeft;
    } cases[] = {
        {"Input Tensor Copy Time", true}, {"HLOS Graph Execution Time", true}, {"ZebGraph_execute", false}};
    for (const auto& [name, isLeft] : cases) {
        const Bytes profile = test::graphProfileObject({.executions = 1});
        Loaded loaded({execution(profiled(profile, {event(name, number(5)), event(levelName, number(2))}))});
        const std::string console = loaded.console();
        EXPECT_PRED2(holds, from("ORU Per", console),
                     isLeft ? "--\nLayer Id    Layer Type    " : "--\n    Layer Id    Layer Type");
        EXPECT_PRED2(holds, from("ZEB Per", console),
                     isLeft ? "--\nLayer Name      aDSP" : "--\n      Layer Name");
        EXPECT_PRED2(holds, from("ZEB Per", console),
                     isLeft ? "\nSummary         0%  " : "\n         Summary    ");
        EXPECT_PRED2(holds, loaded.csv(), "\nLayer Name,aDSP Time (us),");
    }
}

TEST(BackendReport, ReadsTheLayersOfTheFirstProfileUpToTheCountOfTheLast) {
    const auto layer = [](std::uint32_t id, std::uint64_t timeUs) {
        return test::Layer{.id = id, .execCount = 1, .timeUs = timeUs};
    };
    Loaded loaded(
        {message(MethodType::Finalize, "net", 1,
                 {object("c", test::layerConfigObject(1, 1, {layer(0, 0), layer(1, 0), layer(2, 0)}))}),
         execution(
             profiled(test::graphProfileObject({.executions = 1}, {layer(0, 10), layer(1, 11), layer(2, 12)}),
                      {event(levelName, number(2))})),
         execution(profiled(test::graphProfileObject({.executions = 1}, {layer(0, 20), layer(1, 21)})))});
    EXPECT_PRED2(holds, from("ORU Per", loaded.csv()),
                 "\n0,CONVOLUTION,No,-,-,1,10,10,0,0,-,-,\n1,CONVOLUTION,No,-,-,1,11,11,0,0,-,-,\n\nZEB");
}

TEST(BackendReport, SurvivesCountsThatPromiseTooMuch) {
    constexpr std::uint32_t huge = 4294967295U;
    const std::vector<test::Layer> layers = {{.id = 0, .execCount = huge}, {.id = huge, .execCount = 1}};
    Bytes config = test::layerConfigObject(huge, huge, layers);
    Bytes profile = test::graphProfileObject({.executions = huge}, layers);
    Bytes mapping = test::nodeMappingObject({{0, 0}, {huge, 1}, {1, huge}});
    Bytes names = test::nodeNamesObject({"conv", "pool"});
    test::put32(config, 8, huge);
    test::put32(profile, 64, huge);
    test::put32(mapping, 0, huge);
    test::put32(names, 0, huge);
    Loaded loaded({message(MethodType::Init, "", 1, {object("m", mapping), object("n", names)}),
                   message(MethodType::Finalize, "net", 1, {object("c", config)}),
                   execution(profiled(profile, {event(levelName, number(1100))}))});
    const std::string console = loaded.console();
    EXPECT_PRED2(holds, console, "Execution Count:         4294967295\n");
    EXPECT_PRED2(holds, console, "4294967295 (4294 MHz) \n");
    EXPECT_PRED2(holds, loaded.csv(), "\npool,\"-1,\"\nconv,\"0,\"\n");
}

TEST(BackendReport, LetsConversionsOfValuesThatAreNoNumbersPass) {
    const Bytes profile = test::graphProfileObject({.executions = 1});
    const struct {
        const char* name;
        Value value;
        const char* what;
    } cases[] = {
        {levelName, std::string("deep"), "invalid stoi argument"},
        {levelName, number(2147483648U), "stoi argument out of range"},
        {"HLOS Graph Execution Time", std::string("long"), "invalid stoull argument"},
        {"HLOS Graph Execution Time", 1e30, "stoull argument out of range"},
        {"ZebGraph_executeAsync", {}, "invalid stoull argument"},
        {"graphQueueWaitUs", std::string("x"), "invalid stoull argument"},
        {"dispatcherQueueWaitUs", std::string("18446744073709551616"), "stoull argument out of range"},
        {"Input Tensor Copy Time", std::string("-"), "invalid stoull argument"},
        {"Output Tensor Copy Time", Bytes{1}, "invalid stoull argument"},
    };
    for (const auto& [name, value, what] : cases) {
        Loaded loaded({execution(profiled(profile, {event(name, value)}), MethodType::ExecuteAsync)});
        const std::string path = loaded.directory.path("csv");
        const test::CaughtOutput output;
        try {
            loaded.reader.generateReports(path);
            ADD_FAILURE() << name << " was taken for a number";
        } catch (const std::logic_error& error) {
            EXPECT_STREQ(error.what(), what) << name;
        }
        EXPECT_EQ(output.text(), "");
        EXPECT_FALSE(std::filesystem::exists(path));
    }
}

TEST(BackendReport, IsPrintedEvenIfItsCsvFileCannotBeOpened) {
    Loaded loaded(std::vector<Message>{});
    const std::string path = loaded.directory.path("missing/csv");
    const CaughtLog log(ZEB_LOG_LEVEL_ERROR);
    const std::string console = loaded.wholeConsole(path);
    EXPECT_FALSE(loaded.isReported);
    EXPECT_EQ(log.lines(), Lines{"1 Failed open file: " + path});
    EXPECT_EQ(console, loaded.wholeConsole());
    EXPECT_TRUE(loaded.isReported);
}

TEST(BackendReport, GoesBehindWhatTheCsvFileHolds) {
    Loaded loaded(
        {execution(profiled(test::graphProfileObject({.executions = 1}), {event(levelName, number(2))}))});
    const std::string path = loaded.directory.write("csv", {'o', 'l', 'd', '\n'});
    loaded.wholeConsole(path);
    const std::string csv = loaded.wholeCsv();
    EXPECT_EQ(test::fileText(path), "old\n" + csv);
    const std::string preamble = "input log file location, " + loaded.reader.logFilePath() +
                                 "\nzeb-profile-viewer version, v2.51.0.260929181845\n version, \n"
                                 "Backend version, \nProfile Level, Detailed\n";
    EXPECT_EQ(csv.substr(0, preamble.size()), preamble);
}

TEST(BackendReport, OnOneStreamComesBeforeItsCsv) {
    Loaded loaded({execution({})});
    const std::string output =
        test::onStandardOutput([&loaded] { loaded.reader.generateReports("/dev/stdout"); });
    EXPECT_PRED2(holds, from("Execution Stats (Average):", output), "Profile Level, Basic\n");
}

TEST(BackendReport, SavesObjectsOfTheDeInitSectionAlone) {
    const test::TempDir place;
    const auto saved = [&place](const char* name) { return object("o", {1}, place.path(name)); };
    Loaded loaded(test::logOf({{message(MethodType::Init, "", 1, {saved("init")}),
                                message(MethodType::Finalize, "net", 1, {saved("finalize")}),
                                execution({event("e", {}, {saved("execute")}), saved("top")}),
                                message(MethodType::DeInit, "", 1, {saved("deinit")})}}),
                  true);
    loaded.console();
    std::filesystem::remove(place.path("deinit"));
    loaded.console();  // takes the first name that is free
    Lines names;
    for (const auto& entry : std::filesystem::directory_iterator(place.directory())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, Lines{"deinit"});
}

}  // namespace
}  // namespace zeb::profiling
