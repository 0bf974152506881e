// The report for any backend, over small logs: what the whole reports of the sample logs leave open.

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using test::event;
using test::holds;
using test::Message;
using test::message;
using test::MethodType;
using test::number;
using Events = std::vector<test::Event>;
using Loaded = test::Loaded<ZebProfileLogReader>;

const std::string columnLine =
    "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, Event Identifier\n";

test::Event wait(std::uint64_t us) {
    return test::ofType(samplelog::queueWaitEventType, event("wait", number(us)));
}

Message overall(Events events) {
    return message(MethodType::ExecuteOverall, "", 1, std::move(events), 70);
}

samplelog::Bytes adapterUpdaterLog(const std::vector<Message>& messages) {
    test::Header header;
    header.generatorName = "sorel-lora-adapter-bin-updater";
    return test::logOf({messages}, header);
}

TEST(GenericReport, OfAnEmptyLogHasItsFixedSections) {
    const std::string noGraphs =
        "------------------------\nTotal Inference Time: \n---------------------\n\n";
    Loaded loaded(samplelog::encodeLog(std::nullopt, {}));
    EXPECT_EQ(loaded.wholeConsole(),
              "\nZeb Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:\n"
              "------------------------------------------------------------\n"
              "Init Stats:\n-----------\n    Marlix: 0 us\n\n"
              "Compose Graphs Stats:\n--------------\n    Marlix: 0 us\n\n"
              "Finalize Stats:\n---------------\n\nDe-Init Stats:\n--------------\n    Marlix: 0 us\n\n"
              "Execute Stats (Average):\n" +
                  noGraphs + "Execute Stats (Min):\n" + noGraphs + "Execute Stats (Max):\n" + noGraphs);
    EXPECT_EQ(test::behindLines(loaded.wholeCsv(), 2), " version, \nBackend version, \n" + columnLine +
                                                           "0,INIT,0,US,MARLIX,ROOT,null\n"
                                                           "0,COMPOSE GRAPHS,0,US,MARLIX,ROOT,null\n"
                                                           "0,DE-INIT,0,US,MARLIX,ROOT,null\n");
    Loaded tooFewEvents({overall({event("duration", number(5))}), message(MethodType::DynamicLibLoad, "", 5),
                         message(MethodType::UpdateBinarySection, "", 5, {event("e")})});
    EXPECT_EQ("\n" + tooFewEvents.console(), loaded.wholeConsole());
    EXPECT_EQ(tooFewEvents.csv(), loaded.csv());
    Loaded noUpdate(adapterUpdaterLog({message(MethodType::Execute, "g", 5)}));
    EXPECT_EQ(noUpdate.console(), "");
    EXPECT_EQ(noUpdate.csv(), columnLine);
}

TEST(GenericReport, ShowsStepsAndExecutions) {
    const std::vector<Message> fewWaits = {message(MethodType::ExecuteAsync, "a", 10, {wait(3)}),
                                           message(MethodType::ExecuteAsync, "b", 5, {wait(2)}),
                                           message(MethodType::ExecuteAsync, "b", 7)};
    const struct {
        const char* section;
        std::vector<Message> messages;
        std::string console;  ///< a part of the report
        std::string csv;
    } cases[] = {
        {"Init by its steps",
         {message(MethodType::InitStep, "lib", 5, {}, 11),
          message(MethodType::ComposeGraphs, "g", 13, {}, 20), message(MethodType::Finalize, "g", 7, {}, 40)},
         "Init Stats:\n-----------\n    Marlix: 25 us\n\n",
         "\n11,INIT,25,US,MARLIX,ROOT,lib (init)\n20,COMPOSE GRAPHS,13,US,MARLIX,ROOT,g\n40,FINALIZE,7,US"},
        {"no Init events, once a later message had some and the last one has none",
         {message(MethodType::Init, "", 40, {event("own")}),
          message(MethodType::Execute, "g", 1, {test::ofType(samplelog::initEventType, event("late"))}),
          message(MethodType::Execute, "g", 1)},
         "Init Stats:\n-----------\n    Marlix: 40 us\n\nCompose",
         "\n1000,INIT,40,US,MARLIX,ROOT,null\n0,COMPOSE"},
        {"synchronous executions",
         {message(MethodType::Execute, "g", 10, {wait(3)}, 1), message(MethodType::Execute, "h", 7, {}, 2),
          message(MethodType::Execute, "g", 13, {}, 3)},
         "Graph 0 (g):\n    Marlix: 11 us\n    Backend (wait): 3 us\n\nGraph 1 (h):\n    Marlix: 7 us\n\n"
         "Execute Stats (Min):\n",
         "1,EXECUTE,10,US,MARLIX,ROOT,Graph 0: g\n1,EXECUTE,3,US,BACKEND,ROOT,wait\n"
         "3,EXECUTE,13,US,MARLIX,ROOT,Graph 0: g\n2,EXECUTE,7,US,MARLIX,ROOT,Graph 1: h\n"},
        {"a wait that is longer than the execution",
         {message(MethodType::ExecuteAsync, "g", 10, {wait(30)})},
         "(Host Round-Trip): 10 us\n    Marlix (Host Round-Trip excluding queue wait): "
         "18446744073709551596\n",
         "EXECUTE,10,"},
        {"waits whose mean takes more than 64 bits",
         {message(MethodType::ExecuteAsync, "g", 10, {wait(~std::uint64_t{0})})},
         "excluding queue wait): 11\n    Backend (wait): 18446744073709551615 us\n\nExecute Stats (Min):",
         "EXECUTE,10,"},
        {"waits that only the fastest executions have, on average", fewWaits,
         "Graph 1 (b):\n    Marlix (Host Round-Trip): 6 us\n    Backend (wait): 2 us\n\nExecute Stats (Min):",
         "EXECUTE,10,"},
        {"waits that only the fastest executions have, at the minimum", fewWaits,
         "Graph 1 (b):\n    Marlix (Host Round-Trip): 5 us\n"
         "    Marlix (Host Round-Trip excluding queue wait): 3\n    Backend (wait): 2 us\n\nExecute Stats (M",
         "EXECUTE,10,"},
    };
    for (const auto& [section, messages, console, csv] : cases) {
        SCOPED_TRACE(section);
        Loaded loaded(messages);
        EXPECT_PRED2(holds, loaded.console(), console);
        EXPECT_PRED2(holds, loaded.csv(), csv);
    }
}

TEST(GenericReport, ShowsTheRateOfAWholeRun) {
    const struct {
        Events events;
        std::string console;
        std::string csv;
    } cases[] = {
        {{event("duration", number(3)), event("n", number(1))}, "333333.3438", "333333.343750"},
        {{event("a", number(100)), event("b", number(2'000'000)), event("c")}, "50.0000", "50.000000"},
        {{event("duration", number(7000)), event("n", number(1075))}, "153571.4375", "153571.437500"},
        {{event("duration", number(0)), event("n", number(9))}, "0.0000", "0.000000"},
    };
    for (const auto& [events, console, csv] : cases) {
        Loaded loaded({overall(events), message(MethodType::DynamicLibLoad, "", 1, {event("e", 0.5)}, 80)});
        EXPECT_PRED2(holds, loaded.console(), "misc. time): " + console + " inf/sec \n\nExecute Stats (Ave");
        EXPECT_PRED2(holds, loaded.csv(), "\n70,EXECUTE IPS," + csv + ",INF/SEC,MARLIX,ROOT,null\n80,DLOPEN");
    }
}

TEST(GenericReport, IsNotPrintedWhenItsCsvFileCannotBeOpened) {
    Loaded loaded(std::vector<Message>{});
    const std::string path = loaded.directory.path("missing/csv");
    const test::CaughtLog log(ZEB_LOG_LEVEL_ERROR);
    EXPECT_EQ(loaded.wholeConsole(path), "");
    EXPECT_FALSE(loaded.isReported);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"1 Invalid output file: [" + path + "]"});
    EXPECT_FALSE(loaded.wholeConsole().empty()) << "another path can be tried";
    EXPECT_TRUE(loaded.isReported);
}

TEST(GenericReport, SavesObjectsAsItMeetsThem) {
    const test::TempDir place;
    const auto saved = [&place](const char* name) { return test::object("o", {1}, place.path(name)); };
    const auto counts = [&place] {
        std::map<char, int> files;
        for (const auto& entry : std::filesystem::directory_iterator(place.directory())) {
            ++files[entry.path().filename().string()[0]];
        }
        return files;
    };
    test::Event noObject = event("e", {}, {saved("b"), event("f", {}, {saved("c")})});
    noObject.fileName = place.path("no object");
    const samplelog::Bytes log = test::logOf({{message(MethodType::Execute, "g", 5, {saved("a"), noObject}),
                                               message(MethodType::Execute, "g", 9, {saved("d")})}});
    Loaded(log).wholeConsole();
    EXPECT_TRUE(counts().empty());
    // The average has no objects of the top level; then every execution's own are saved, two levels deep;
    // then those of the fastest and of the slowest execution.
    Loaded loaded(log, true);
    loaded.wholeConsole();
    EXPECT_EQ(counts(), (std::map<char, int>{{'a', 2}, {'b', 3}, {'c', 2}, {'d', 2}}));
    std::filesystem::remove(place.path("a"));
    loaded.wholeConsole();
    EXPECT_EQ(counts(), (std::map<char, int>{{'a', 3}, {'b', 6}, {'c', 4}, {'d', 4}}));
    EXPECT_TRUE(std::filesystem::exists(place.path("a"))) << "the first name that is free";
}

TEST(GenericReport, OnOneStreamFollowsItsCsvAndThatOfAnAdapterUpdaterComesBeforeIt) {
    const std::pair<samplelog::Bytes, std::vector<std::string>> cases[] = {
        {test::logOf({{message(MethodType::Execute, "g", 5)}}), {"Msg Timestamp", "Execute Stats (Max)"}},
        {adapterUpdaterLog({message(MethodType::UpdateBinarySection, "", 5)}),
         {"UpdateBinarySection Stats:", "Msg Timestamp"}},
    };
    for (const auto& [log, parts] : cases) {
        Loaded loaded(log);
        const std::string output =
            test::onStandardOutput([&loaded] { loaded.reader.generateReports("/dev/stdout"); });
        EXPECT_PRED2(holds, output, parts[0]);
        EXPECT_PRED2(holds, output.substr(output.find(parts[0])), parts[1]) << "behind " << parts[0];
    }
}

}  // namespace
}  // namespace zeb::profiling
