// The backend's report of small logs, from the log's bytes to the text: what the whole reports leave open.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string_view>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "samplelog/BackendObjectWriter.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using samplelog::encodeGraphProfile;
using test::CaughtLog;
using test::event;
using test::holds;
using test::Message;
using test::message;
using test::MethodType;
using test::number;
using test::object;
using Events = std::vector<test::Event>;
using Loaded = test::Loaded<ZebProfileLogReaderMURL>;
using Lines = std::vector<std::string>;

constexpr const char* profileName = "Graph Execute Profile Data";
constexpr const char* levelName = "Execute Profiling Level";
constexpr const char* hostName = "HLOS Graph Execution Time";
constexpr std::uint32_t huge = 4294967295U;

Message execution(Events events, MethodType type = MethodType::Execute) {
    return message(type, "net", 1000, std::move(events));
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

Bytes totals(std::uint32_t executions, std::uint64_t dspUs = 100) {
    return encodeGraphProfile({.acceleratorTimeUs = 805,
                               .executionCount = executions,
                               .dspGraphTimeUs = dspUs,
                               .layerRecords = {}});
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
              "Init Stats:\n-----------\n    Marlix: 0 us\n\nFinalize Stats:\n---------------\n\n"
              "De-Init Stats:\n--------------\n    Marlix: 0 us\n\n"
              "Execution Stats (Average):\n---------------------\n\n");
    EXPECT_EQ(log.lines(), Lines{"2 failed get Profile Level Value!"});
    EXPECT_EQ(loaded.csv(),
              "Profile Level, Basic\nBackend (ZebGraph_execute), 0 us\nAccelerator Time,0 us\n"
              "Execution Count,0\nADSP Clock Freq (Hz),0 (0 MHz) \nKrel Clock Freq (Hz),0 (0 MHz) \n");
    EXPECT_TRUE(log.has("1 multiple graph not supported yet!"));
}

TEST(BackendReport, ReadsTheProfileLevel) {
    const Lines notFound = {
        "2 Profiling Level is not found, CSV file will still be generated with basic level."};
    const struct {
        Events events;
        const char* label;
        Lines log;
    } cases[] = {
        {{event(levelName, std::int64_t{1100}), event(levelName, number(1))}, "Internal", {}},
        {{event(levelName, std::string(" 2nd"))}, "Detailed", {}},
        {{event(levelName, 2.0F)}, "Detailed", {}},
        {{event("a", {}, {event("b", {}, {event(levelName, number(2))})}), event(levelName)}, "Detailed", {}},
        {{event(levelName, number(2), {event(levelName)})}, "Detailed", {}},
        {{event(std::string(levelName, 22), number(2))}, "Basic", {}},  // it is that of the other execution
        {{withBelow(object(levelName, {9}), {event(levelName, number(2))})}, "Detailed", {}},
        {{object(levelName, {2})}, "Basic", {}},
        {{event(levelName)}, "Basic", notFound},
        {{event(levelName, std::string())}, "Basic", notFound},
        {{event(levelName, std::int64_t{-2})}, "Basic", {"2 Profile Level Value -2 not supported."}},
    };
    for (const auto& [events, label, lines] : cases) {
        Loaded loaded({execution(events), execution({event(levelName, number(1))})});
        const CaughtLog log(ZEB_LOG_LEVEL_WARN);
        EXPECT_PRED2(holds, loaded.csv(), "Profile Level, " + std::string(label) + "\nMarlix, 1000 us\n");
        EXPECT_EQ(log.lines(), lines);
    }
}

TEST(BackendReport, HasInitAndFinalizeSectionsWithoutLinesForObjects) {
    const test::Event config = object(
        "config",
        samplelog::encodeLayerConfig({.krelClockHz = 1'999'999, .dspClockHz = 3'000'000, .entries = {}}));
    const Bytes unread = samplelog::encodeLayerConfig({.krelClockHz = 7, .dspClockHz = 7, .entries = {}});
    Loaded loaded(
        {message(MethodType::Init, "", 40,
                 {withBelow(object("map", {}), {event("below", number(1))}), event("load", number(2))}),
         message(MethodType::Finalize, "g", 5,
                 {withBelow(event("f", number(3)), {config, object("more", unread)})}),
         message(MethodType::Finalize, "h", 6, {object("other", unread)}), execution({})});
    const CaughtLog log;
    const std::string console = loaded.console();
    EXPECT_PRED2(
        holds, console,
        "    Marlix: 40 us\n        below: 1 us\n    Backend (load): 2 us\n\nFinalize Stats:\n---------"
        "------\nGraph 0 (g):\n    Backend (f): 3 us\n\nGraph 1 (h):\n\nDe-Init Stats:\n");
    EXPECT_PRED2(holds, console,
                 "            ADSP Clock Freq:         3000000 (3 MHz) \n"
                 "            Krel Clock Freq:         1999999 (1 MHz) \n");
    EXPECT_TRUE(log.has("2 Expected 2 opaque objects for node mapping, got 1; skipping."));
}

TEST(BackendReport, HasAnExecutionSection) {
    const Bytes profile = totals(4);
    const Bytes neverRun = totals(0);
    const std::string figures =
        "            Accelerator Time:        201 us\n            Execution Count:         4\n";
    const Events all = {event("ZebGraph_execute", number(4003)), event("Input Tensor Copy Time", number(9)),
                        event(hostName, number(507)), event("graphQueueWaitUs", number(40))};
    const Events queued = {event("ZebGraph_executeAsync", number(4003)),
                           event("graphQueueWaitUs", number(41)), event("dispatcherQueueWaitUs", number(83))};
    const Events longWait = {event("ZebGraph_executeAsync", number(40)),
                             event("graphQueueWaitUs", number(9000))};
    const auto async = [&profile](const Events& events) {
        return execution(profiled(profile, events), MethodType::ExecuteAsync);
    };
    const struct {
        const char* run;
        std::vector<Message> messages;
        std::string section;
        std::string csv;
    } cases[] = {
        {"several graphs, and waits that do not count in a synchronous run",
         {execution(profiled(profile, all)), message(MethodType::Execute, "second", 7)},
         "Graph 0 (net):\n    Marlix: 1000 us\nGraph 1 (second):\n    Marlix: 7 us\n"
         "        Backend (ZebGraph_execute): 1000 us\n            Input Tensor Copy Time:  2.250 us\n",
         "Profile Level, Basic\nBackend (ZebGraph_execute), 1000 us\nInput Tensor Copy Time, 2.250 us\n"},
        {"a count of 0",
         {execution(profiled(neverRun, all))},
         "Backend (ZebGraph_execute): 0 us\n            Input Tensor Copy Time:  0.000 us\n"
         "            Accelerator Time:        0 us\n            Execution Count:         0\n",
         "execute), 0 us\nInput Tensor Copy Time, 0.000 us\nAccelerator Time,0 us\nExecution Count,0\n"},
        {"a host time below the DSP's, and none of the named events",
         {execution(profiled(profile, {event(hostName, number(99))}))},
         "Graph 0 (net):\n    Marlix: 1000 us\n" + figures,
         "Backend (ZebGraph_execute), 0 us\nAccelerator Time,201 us\n"},
        {"asynchronous, of several graphs",
         {async(queued), message(MethodType::ExecuteAsync, "second", 80)},
         "Graph 1 (second):\n    Marlix: 50 us\n        Backend (ZebGraph_executeAsync): 970 us\n" + figures,
         "Profile Level, Basic\nBackend (ZebGraph_executeAsync), 970 us\n"},
        {"waits that are longer than the run",
         {async(longWait)},
         "Graph 0 (net):\n    Marlix: 0 us\n        Backend (ZebGraph_executeAsync): 0 us\n" + figures,
         "Marlix, 0 us\nBackend (ZebGraph_executeAsync), 0 us\n"},
        {"asynchronous without the API's event",
         {async({event("ZebGraph_execute", number(9)), event("graphQueueWaitUs", number(40))})},
         "Graph 0 (net):\n" + figures,
         "Marlix, 990 us\nBackend (ZebGraph_executeAsync), 0 us\n"},
        {"profiles at other depths, which are not looked at",
         {execution(
             {object(profileName, profile),
              event("a", {}, {event("b", {}, {object(profileName, profile)}), object("other", profile)})})},
         "Graph 0 (net):\n    Marlix: 1000 us\n            Accelerator Time:        0 us\n",
         "Execution Count,0\n"},
        {"several profiles, of which the last one that is an object counts",
         {execution(profiled(neverRun, all)), execution(profiled(profile)),
          execution({event("a", {}, {event(profileName)})})},
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
    EXPECT_PRED2(holds, loaded.csv(), "0 us\nOutput Tensor Copy Time, 0.000 us\nAccelerator Time,0 us\n");
}

TEST(BackendReport, LogsTheDspTimeOfEachProfileWhenTheHostTimeIsKnown) {
    for (const bool isKnown : {false, true}) {
        const Events host = isKnown ? Events{event(hostName, number(9))} : Events{};
        Loaded loaded({execution(profiled(totals(1), host)), execution(profiled(totals(1, 4294967297U)))});
        const CaughtLog log(ZEB_LOG_LEVEL_INFO);
        loaded.console();
        EXPECT_EQ(log.has("3 dsp graph exec time is 100"), isKnown);
        EXPECT_EQ(log.has("3 dsp graph exec time is 1"), isKnown);
    }
}

TEST(BackendReport, AlignsItsTablesToTheLeftBehindADetailLine) {
    const std::pair<const char*, bool> cases[] = {
        {"Input Tensor Copy Time", true}, {hostName, true}, {"ZebGraph_execute", false}};
    for (const auto& [name, isLeft] : cases) {
        Loaded loaded(
            {execution(profiled(totals(1), {event(name, number(500)), event(levelName, number(2))}))});
        const std::string console = loaded.console();
        EXPECT_PRED2(holds, console, isLeft ? "--\nLayer Id    Layer T" : "--\n    Layer Id    Layer T");
        EXPECT_PRED2(holds, console, isLeft ? "--\nLayer Name      aDSP" : "--\n      Layer Name");
        EXPECT_PRED2(holds, console, isLeft ? "\nSummary         0%  " : "\n         Summary    ");
        EXPECT_PRED2(holds, loaded.csv(), "\nLayer Name,aDSP Time (us),");
    }
}

TEST(BackendReport, ReadsTheLayersOfTheFirstProfileUpToTheCountOfTheLast) {
    const auto profile = [](std::uint32_t layers, std::uint64_t timeUs) {
        return encodeGraphProfile(
            {.executionCount = 1,
             .layerCount = layers,
             .layerRecords = std::vector<samplelog::LayerRecord>(layers, {.totalTimeUs = timeUs})});
    };
    const Bytes config = samplelog::encodeLayerConfig(
        {.layerCount = 3, .entries = {{.layerId = 0}, {.layerId = 1}, {.layerId = 2}}});
    Loaded loaded({message(MethodType::Finalize, "net", 1, {object("c", config)}),
                   execution(profiled(profile(3, 10), {event(levelName, number(2))})),
                   execution(profiled(profile(2, 20)))});
    EXPECT_PRED2(holds, from("ORU Per", loaded.csv()),
                 "\n0,CONVOLUTION,No,-,-,0,0,10,0,0,-,-,\n1,CONVOLUTION,No,-,-,0,0,10,0,0,-,-,\n\nZEB");
}

TEST(BackendReport, SurvivesCountsThatPromiseTooMuchAndHasNoTablesAtTheFirstLevel) {
    const Bytes config = samplelog::encodeLayerConfig(
        {.krelClockHz = huge, .layerCount = huge, .entries = {{.layerId = 0}, {.layerId = huge}}});
    const Bytes profile = encodeGraphProfile({.executionCount = huge,
                                              .layerCount = huge,
                                              .layerRecords = {{.execCount = huge}, {.execCount = 1}}});
    const std::vector<samplelog::NodeMappingEntry> entries = {{0, {0}}, {huge, {1}}, {1, {huge}}};
    Bytes mapping = samplelog::encodeNodeMapping(entries);
    Bytes names = samplelog::encodeNameTable(Lines{"conv", "pool"});
    test::put32(mapping, 0, huge);
    test::put32(names, 0, huge);
    for (const std::uint64_t level : {1U, 1100U}) {
        Loaded loaded({message(MethodType::Init, "", 1, {object("m", mapping), object("n", names)}),
                       message(MethodType::Finalize, "net", 1, {object("c", config)}),
                       execution(profiled(profile, {event(levelName, number(level))}))});
        EXPECT_PRED2(holds, loaded.console(), "4294967295 (4294 MHz) \n");
        const std::string csv = loaded.csv();
        EXPECT_EQ(holds(csv, "\npool,\"-1,\"\nconv,\"0,\"\n"), level != 1);
        EXPECT_EQ(csv.ends_with("MHz) \n"), level == 1);
    }
}

TEST(BackendReport, LetsConversionsOfValuesThatAreNoNumbersPass) {
    const struct {
        const char* name;
        test::Value value;
        const char* what;
    } cases[] = {
        {levelName, std::string("deep"), "invalid stoi argument"},
        {levelName, number(2147483648U), "stoi argument out of range"},
        {hostName, 1e30, "stoull argument out of range"},
        {"ZebGraph_executeAsync", {}, "invalid stoull argument"},
        {"graphQueueWaitUs", std::string("x"), "invalid stoull argument"},
        {"dispatcherQueueWaitUs", std::string("18446744073709551616"), "stoull argument out of range"},
        {"Input Tensor Copy Time", std::string("-"), "invalid stoull argument"},
        {"Output Tensor Copy Time", Bytes{1}, "invalid stoull argument"},
    };
    for (const auto& [name, value, what] : cases) {
        const test::TempDir place;
        Loaded loaded(
            test::logOf({{message(MethodType::Init, "", 1, {object("half a mapping", {})}),
                          execution(profiled(totals(1), {event(name, value)}), MethodType::ExecuteAsync),
                          message(MethodType::DeInit, "", 1, {object("o", {1}, place.path("o"))})}}),
            true);
        const std::string path = loaded.directory.path("csv");
        const test::CaughtOutput output;
        const CaughtLog log(ZEB_LOG_LEVEL_WARN);
        try {
            loaded.reader.generateReports(path);
            ADD_FAILURE() << name << " was taken for a number";
        } catch (const std::logic_error& error) {
            EXPECT_STREQ(error.what(), what) << name;
        }
        EXPECT_EQ(output.text(), "");
        EXPECT_FALSE(std::filesystem::exists(path));
        // The level is read before any section runs; the other numbers are those of the Execution section.
        const bool sectionsRan = name != std::string_view(levelName);
        EXPECT_EQ(std::filesystem::exists(place.path("o")), sectionsRan) << name;
        EXPECT_EQ(log.has("2 Expected 2 opaque objects for node mapping, got 1; skipping."), sectionsRan);
    }
}

TEST(BackendReport, IsPrintedBeforeItsCsvFileIsOpenedAndAddsToWhatTheFileHolds) {
    Loaded loaded({execution({})});
    const std::string missing = loaded.directory.path("missing/csv");
    const CaughtLog log(ZEB_LOG_LEVEL_ERROR);
    const std::string console = loaded.wholeConsole(missing);
    EXPECT_FALSE(loaded.isReported);
    EXPECT_EQ(log.lines(), Lines{"1 Failed open file: " + missing});
    const std::string path = loaded.directory.write("csv", "old\n");
    EXPECT_EQ(loaded.wholeConsole(path), console);
    EXPECT_TRUE(loaded.isReported);
    EXPECT_EQ(test::fileText(path), "old\n" + loaded.wholeCsv());
    const std::string output =
        test::onStandardOutput([&loaded] { loaded.reader.generateReports("/dev/stdout"); });
    EXPECT_PRED2(holds, from("Execution Stats (Average):", output), "Profile Level, Basic\n");
}

// Each report works its figures out anew, and the CSV form changes none of them.
TEST(BackendReport, IsTheSameTextHoweverOftenItIsPrinted) {
    const Bytes config = samplelog::encodeLayerConfig({.layerCount = 1, .entries = {{.layerId = 0}}});
    const Bytes profile =
        encodeGraphProfile({.executionCount = 3, .layerCount = 1, .layerRecords = {{.totalTimeUs = 6}}});
    const std::vector<samplelog::NodeMappingEntry> mapping = {{0, {0}}};
    Loaded loaded({message(MethodType::Init, "", 1,
                           {object("m", samplelog::encodeNodeMapping(mapping)),
                            object("n", samplelog::encodeNameTable(Lines{"conv"}))}),
                   message(MethodType::Finalize, "net", 1, {object("c", config)}),
                   execution(profiled(profile, {event("ZebGraph_executeAsync", number(6690)),
                                                event("graphQueueWaitUs", number(429)),
                                                event("Input Tensor Copy Time", number(190)),
                                                event(levelName, number(2))}),
                             MethodType::ExecuteAsync)});
    const auto printed = [&loaded](bool csvTwice) {
        std::ostringstream console;
        std::ostringstream csv;
        loaded.reader.printBackendReport(console);
        loaded.reader.writeBackendCsv(csv);
        if (csvTwice) {
            csv.str("");
            loaded.reader.writeBackendCsv(csv);
        }
        return console.str() + csv.str();
    };
    const std::string first = printed(false);
    EXPECT_EQ(printed(true), first);
    EXPECT_EQ(loaded.wholeConsole() + loaded.wholeCsv(), first);
    EXPECT_PRED2(holds, first, "    Marlix: 857 us\n        Backend (ZebGraph_executeAsync): 2087 us\n");
    EXPECT_PRED2(holds, first, "\nconv,0,0,0,\nSummary,");
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
