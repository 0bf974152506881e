// The report for any backend, on the console and as CSV, over small logs.

#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using test::event;
using test::holds;
using test::inUnit;
using test::Message;
using test::message;
using test::MethodType;
using test::number;
using test::object;
using test::ofType;
using Loaded = test::Loaded<ZebProfileLogReader>;

const std::string columnLine =
    "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, Event Identifier\n";

test::Event wait(std::uint64_t us) {
    return ofType(samplelog::queueWaitEventType, event("wait", number(us)));
}

Message overall(std::vector<test::Event> events) {
    return message(MethodType::ExecuteOverall, "", 1, std::move(events), 70);
}

TEST(GenericReport, OfAnEmptyLogHasItsFixedSections) {
    Loaded loaded(std::vector<Message>{});
    EXPECT_EQ(loaded.console(),
              "Zeb Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:\n"
              "------------------------------------------------------------\n"
              "Init Stats:\n"
              "-----------\n"
              "    Marlix: 0 us\n"
              "\n"
              "Compose Graphs Stats:\n"
              "--------------\n"
              "    Marlix: 0 us\n"
              "\n"
              "Finalize Stats:\n"
              "---------------\n"
              "\n"
              "De-Init Stats:\n"
              "--------------\n"
              "    Marlix: 0 us\n"
              "\n"
              "Execute Stats (Average):\n"
              "------------------------\n"
              "Total Inference Time: \n"
              "---------------------\n"
              "\n"
              "Execute Stats (Min):\n"
              "------------------------\n"
              "Total Inference Time: \n"
              "---------------------\n"
              "\n"
              "Execute Stats (Max):\n"
              "------------------------\n"
              "Total Inference Time: \n"
              "---------------------\n"
              "\n");
    EXPECT_TRUE(loaded.isReported);
    EXPECT_EQ(loaded.csv(), columnLine +
                                "0,INIT,0,US,MARLIX,ROOT,null\n"
                                "0,COMPOSE GRAPHS,0,US,MARLIX,ROOT,null\n"
                                "0,DE-INIT,0,US,MARLIX,ROOT,null\n");
}

struct SectionCase {
    const char* section;
    std::vector<Message> messages;
    std::string console;  ///< a part of the report
    std::string csv;
};

void expectSections(const std::vector<SectionCase>& cases) {
    for (const auto& [section, messages, console, csv] : cases) {
        SCOPED_TRACE(section);
        Loaded loaded(messages);
        EXPECT_PRED2(holds, loaded.console(), console);
        EXPECT_PRED2(holds, loaded.csv(), csv);
    }
}

TEST(GenericReport, ShowsTheLifeOfTheGraphs) {
    expectSections({
        {"Init",
         {message(MethodType::Init, "unused", 40, {event("load", number(30))}, 7)},
         "Init Stats:\n-----------\n    Marlix: 40 us\n    Backend (load): 30 us\n\nCompose",
         "\n7,INIT,40,US,MARLIX,ROOT,null\n7,INIT,30,US,BACKEND,ROOT,load\n0,COMPOSE"},
        {"Init with events that came with another message",
         {message(MethodType::Init, "", 40, {event("load", number(30))}, 7),
          message(MethodType::GraphEvents, "g", 0, {ofType(samplelog::initEventType, event("early"))})},
         "    Marlix: 40 us\n    Backend (early):  us\n\nCompose",
         "\n7,INIT,40,US,MARLIX,ROOT,null\n7,INIT,,US,BACKEND,ROOT,early\n0,COMPOSE"},
        {"Init by its steps, with graphs that are composed and finalized",
         {message(MethodType::InitStep, "lib", 5, {}, 11),
          message(MethodType::ComposeGraphs, "g1", 10, {}, 20),
          message(MethodType::ComposeGraphs, "g2", 3, {}, 30),
          message(MethodType::Finalize, "g1", 3, {event("e", number(2))}, 40),
          message(MethodType::Finalize, "g2", 4, {}, 41)},
         "Init Stats:\n-----------\n    Marlix: 25 us\n\n"
         "Compose Graphs Stats:\n--------------\n    Marlix: 13 us\n\n"
         "Finalize Stats:\n---------------\n"
         "Graph 0 (g1):\n    Marlix: 3 us\n    Backend (e): 2 us\n\nGraph 1 (g2):\n    Marlix: 4 "
         "us\n\nDe-Init",
         "\n11,INIT,25,US,MARLIX,ROOT,lib (init)\n20,COMPOSE GRAPHS,13,US,MARLIX,ROOT,g1; g2\n"
         "40,FINALIZE,3,US,MARLIX,ROOT,Graph 0: g1\n40,FINALIZE,2,US,BACKEND,ROOT,e\n"
         "41,FINALIZE,4,US,MARLIX,ROOT,Graph 1: g2\n0,DE-INIT"},
        {"De-Init",
         {message(MethodType::DeInit, "bye", 9, {event("e", number(1))}, 50)},
         "De-Init Stats:\n--------------\n    Marlix: 9 us\n    Backend (e): 1 us\n\nExecute Stats (Average)",
         "\n50,DE-INIT,9,US,MARLIX,ROOT,bye (deinit)\n50,DE-INIT,1,US,BACKEND,ROOT,e\n"},
        {"context binaries, in the order of their first message",
         {message(MethodType::ContextGetBinary, "x", 8, {}, 60),
          message(MethodType::ContextGetBinarySize, "", 3, {}, 61),
          message(MethodType::ContextGetBinary, "y", 4, {}, 62)},
         "Context Retrieval Stats:\n------------------------\n"
         "Get Binary:\n    Marlix: 4 us\n\nGet Binary Size:\n    Marlix: 3 us\n\nExecute",
         "\n62,CONTEXT GET BINARY,4,US,MARLIX,ROOT,y\n61,CONTEXT GET BINARY SIZE,3,US,MARLIX,ROOT,null\n"},
        {"context sections",
         {message(MethodType::ContextGetBinarySectionSize, "s", 2, {}, 1),
          message(MethodType::ContextGetBinarySectionSize, "", 9, {}, 2),
          message(MethodType::ContextGetBinarySectionSize, "t", 4, {}, 3)},
         "Context Section Retrieval Stats (Average):\n-----------------------------------------------\n"
         "Get Binary Section Size:\n    Marlix: 5 us\n\n"
         "Context Section Retrieval Stats (Min):\n------------------------------------------\n"
         "Get Binary Section Size:\n    Marlix: 2 us\n\n"
         "Context Section Retrieval Stats (Max):\n------------------------------------------\n"
         "Get Binary Section Size:\n    Marlix: 9 us\n\nExecute",
         "\n1,CONTEXT GET BINARY SECTION SIZE,2,US,MARLIX,ROOT,s\n"
         "2,CONTEXT GET BINARY SECTION SIZE,9,US,MARLIX,ROOT,null\n"
         "3,CONTEXT GET BINARY SECTION SIZE,4,US,MARLIX,ROOT,t\n"},
        {"the load of the library",
         {message(MethodType::DynamicLibLoad, "", 1, {event("e", number(33)), event("f", number(1))}, 80)},
         "Dynamic Lib Load Stats:\n------------------------\n    Backend Latency: 33 us\n\n",
         "\n80,DLOPEN LATENCY,33,US,MARLIX,ROOT,null\n"},
        {"binary sections",
         {message(MethodType::ApplyBinarySection, "a", 4, {event("e", number(1))}, 1),
          message(MethodType::ApplyBinarySectionAlternate, "a", 9, {event("e", number(3))}, 2)},
         "ApplyBinarySection Stats (Average):\n-----------------------------------\n"
         "Graph 0 (a):\n    Marlix: 6 us\n    Backend (e): 2 us\n\n"
         "ApplyBinarySection Stats (Min):\n-----------------------------------\n"
         "Graph 0 (a):\n    Marlix: 4 us\n    Backend (e): 1 us\n\n"
         "ApplyBinarySection Stats (Max):\n-----------------------------------\n"
         "Graph 0 (a):\n    Marlix: 9 us\n    Backend (e): 3 us\n\n",
         "\n1,APPLY BINARY SECTION,4,US,MARLIX,ROOT,Graph 0: a\n1,APPLYBINARY,1,US,BACKEND,ROOT,e\n"
         "2,APPLY BINARY SECTION,9,US,MARLIX,ROOT,Graph 0: a\n2,APPLYBINARY,3,US,BACKEND,ROOT,e\n"},
        {"tensor updates, whose CSV rows keep the whole text",
         {message(MethodType::FinalizeAfterTensorUpdates, "f [1]", 4, {event("e", number(1))}, 1),
          message(MethodType::FinalizeAfterTensorUpdates, "f [2]", 6, {}, 2)},
         "FinalizeAfterTensorUpdates Stats (Average):\n---------------------------------------------\n"
         "Graph 0 (f):\n    Marlix: 5 us\n    Backend (e): 1 us\n\n"
         "FinalizeAfterTensorUpdates Stats (Min):\n----------------------------------------\n"
         "Graph 0 (f):\n    Marlix: 4 us\n    Backend (e): 1 us\n\n"
         "FinalizeAfterTensorUpdates Stats (Max):\n----------------------------------------\n"
         "Graph 0 (f):\n    Marlix: 6 us\n\n",
         "\n1,FINALIZE AFTER TENSOR UPDATES,4,US,MARLIX,ROOT,Graph 0: f [1]\n"
         "1,FINALIZE_AFTER_TENSOR_UPDATES,1,US,BACKEND,ROOT,e\n"
         "2,FINALIZE AFTER TENSOR UPDATES,6,US,MARLIX,ROOT,Graph 0: f [2]\n"},
    });
}

TEST(GenericReport, ShowsExecutions) {
    const auto run = [](std::uint64_t accelerator, std::uint64_t us) {
        return std::vector<test::Event>{event("accelerator", number(accelerator),
                                              {inUnit(samplelog::Unit::cycles, event("core", number(700)))}),
                                        wait(us)};
    };
    expectSections({
        {"synchronous",
         {message(MethodType::Execute, "g", 10, {wait(3)}, 1), message(MethodType::Execute, "h", 7, {}, 2),
          message(MethodType::Execute, "g", 13, {}, 3)},
         "Execute Stats (Average):\n------------------------\nTotal Inference Time: \n---------------------\n"
         "Graph 0 (g):\n    Marlix: 11 us\n    Backend (wait): 3 us\n\nGraph 1 (h):\n    Marlix: 7 us\n\n"
         "Execute Stats (Min):\n",
         "1,EXECUTE,10,US,MARLIX,ROOT,Graph 0: g\n1,EXECUTE,3,US,BACKEND,ROOT,wait\n"
         "3,EXECUTE,13,US,MARLIX,ROOT,Graph 0: g\n2,EXECUTE,7,US,MARLIX,ROOT,Graph 1: h\n"},
        {"asynchronous",
         {message(MethodType::ExecuteAsync, "g", 1200, run(900, 50), 5000),
          message(MethodType::ExecuteAsync, "g", 1300, run(1000, 61), 5001)},
         "Execute Stats (Average):\n------------------------\nTotal Inference Time: \n---------------------\n"
         "Graph 0 (g):\n    Marlix (Host Round-Trip): 1250 us\n"
         "    Marlix (Host Round-Trip excluding queue wait): 1195\n"
         "    Backend (accelerator): 950 us\n        core: 700 cycles\n    Backend (wait): 55 us\n\n"
         "Execute Stats (Min):\n------------------------\nTotal Inference Time: \n---------------------\n"
         "Graph 0 (g):\n    Marlix (Host Round-Trip): 1200 us\n"
         "    Marlix (Host Round-Trip excluding queue wait): 1150\n"
         "    Backend (accelerator): 900 us\n        core: 700 cycles\n    Backend (wait): 50 us\n\n"
         "Execute Stats (Max):\n------------------------\nTotal Inference Time: \n---------------------\n"
         "Graph 0 (g):\n    Marlix (Host Round-Trip): 1300 us\n"
         "    Marlix (Host Round-Trip excluding queue wait): 1239\n",
         "5000,EXECUTE,1200,US,MARLIX,ROOT,Graph 0: g\n5000,EXECUTE,900,US,BACKEND,ROOT,accelerator\n"
         "5000,EXECUTE,700,CYCLES,BACKEND,SUB-EVENT,core\n5000,EXECUTE,50,US,BACKEND,ROOT,wait\n"
         "5001,EXECUTE,1300"},
        {"a wait that is longer than the execution",
         {message(MethodType::ExecuteAsync, "g", 10, {wait(30)})},
         "Marlix (Host Round-Trip): 10 us\n"
         "    Marlix (Host Round-Trip excluding queue wait): 18446744073709551596\n",
         "EXECUTE,10,"},
        {"waits that only the fastest executions have, on average",
         {message(MethodType::ExecuteAsync, "a", 10, {wait(3)}),
          message(MethodType::ExecuteAsync, "b", 5, {wait(2)}), message(MethodType::ExecuteAsync, "b", 7)},
         "Graph 0 (a):\n    Marlix (Host Round-Trip): 10 us\n    Backend (wait): 3 us\n\n"
         "Graph 1 (b):\n    Marlix (Host Round-Trip): 6 us\n    Backend (wait): 2 us\n\nExecute Stats "
         "(Min):\n",
         "EXECUTE,10,"},
        {"waits that only the fastest executions have, at the minimum",
         {message(MethodType::ExecuteAsync, "a", 10, {wait(3)}),
          message(MethodType::ExecuteAsync, "b", 5, {wait(2)}), message(MethodType::ExecuteAsync, "b", 7)},
         "Graph 1 (b):\n    Marlix (Host Round-Trip): 5 us\n"
         "    Marlix (Host Round-Trip excluding queue wait): 3\n    Backend (wait): 2 us\n\nExecute Stats "
         "(Max)",
         "EXECUTE,10,"},
    });
}

TEST(GenericReport, ShowsTheRateOfAWholeRun) {
    const struct {
        std::vector<test::Event> events;
        std::string console;
        std::string csv;
    } cases[] = {
        {{event("duration", number(2'000'000)), event("count", number(100))}, "50.0000", "50.000000"},
        {{event("count", number(100)), event("duration", number(2'000'000))}, "50.0000", "50.000000"},
        {{event("a", number(100)), event("b", number(2'000'000)), event("c", number(7))},
         "50.0000",
         "50.000000"},
        {{event("duration", number(3)), event("n", number(1))}, "333333.3438", "333333.343750"},
        {{event("duration", number(0)), event("n", number(9))}, "0.0000", "0.000000"},
    };
    for (const auto& [events, console, csv] : cases) {
        Loaded loaded({overall(events), message(MethodType::DynamicLibLoad, "", 1, {event("e", 0.5)}, 80)});
        EXPECT_PRED2(holds, loaded.console(),
                     "\n\nExecute Stats (Overall):\n------------------------\n"
                     "    Marlix IPS (includes IO and misc. time): " +
                         console + " inf/sec \n\nExecute Stats (Average):\n");
        EXPECT_PRED2(holds, loaded.csv(),
                     "\n70,EXECUTE IPS," + csv + ",INF/SEC,MARLIX,ROOT,null\n80,DLOPEN LATENCY,");
    }
}

TEST(GenericReport, SaysNothingOfWhatHasTooFewEvents) {
    Loaded nothing(std::vector<Message>{});
    Loaded tooFew({overall({event("duration", number(5))}), message(MethodType::DynamicLibLoad, "", 5),
                   message(MethodType::UpdateBinarySection, "", 5, {event("e")})});
    EXPECT_EQ(tooFew.console(), nothing.console());
    EXPECT_EQ(tooFew.csv(), nothing.csv());
}

// Each line that has a line of dashes below it, and how many.
std::vector<std::string> headsOf(const std::string& report) {
    std::vector<std::string> heads;
    std::istringstream lines(report);
    std::string before;
    for (std::string line; std::getline(lines, line); before = line) {
        if (!line.empty() && line.find_first_not_of('-') == std::string::npos) {
            heads.push_back(before + " " + std::to_string(line.size()));
        }
    }
    return heads;
}

// The message column, each text once for the rows that follow one another.
std::vector<std::string> messageColumnOf(const std::string& csv) {
    std::vector<std::string> texts;
    std::istringstream lines(csv);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t start = line.find(',') + 1;
        const std::string text = line.substr(start, line.find(',', start) - start);
        if (texts.empty() || texts.back() != text) {
            texts.push_back(text);
        }
    }
    return texts;
}

TEST(GenericReport, KeepsItsSectionsInOrder) {
    std::vector<Message> messages;
    for (int method = 17; method > 0; --method) {
        messages.push_back(message(static_cast<MethodType>(method), "g", 5,
                                   {event("duration", number(4)), event("n", number(2))}));
    }
    Loaded loaded(messages);
    EXPECT_EQ(headsOf(loaded.console()),
              (std::vector<std::string>{"Zeb Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics: 60",
                                        "Init Stats: 11",
                                        "Compose Graphs Stats: 14",
                                        "Finalize Stats: 15",
                                        "De-Init Stats: 14",
                                        "Context Retrieval Stats: 24",
                                        "Context Section Retrieval Stats (Average): 47",
                                        "Context Section Retrieval Stats (Min): 42",
                                        "Context Section Retrieval Stats (Max): 42",
                                        "Execute Stats (Overall): 24",
                                        "Execute Stats (Average): 24",
                                        "Total Inference Time:  21",
                                        "Execute Stats (Min): 24",
                                        "Total Inference Time:  21",
                                        "Execute Stats (Max): 24",
                                        "Total Inference Time:  21",
                                        "Dynamic Lib Load Stats: 24",
                                        "ApplyBinarySection Stats (Average): 35",
                                        "ApplyBinarySection Stats (Min): 35",
                                        "ApplyBinarySection Stats (Max): 35",
                                        "FinalizeAfterTensorUpdates Stats (Average): 45",
                                        "FinalizeAfterTensorUpdates Stats (Min): 40",
                                        "FinalizeAfterTensorUpdates Stats (Max): 40"}));
    EXPECT_EQ(messageColumnOf(test::behindLines(loaded.csv(), 1)),
              (std::vector<std::string>{
                  "INIT", "COMPOSE GRAPHS", "FINALIZE", "DE-INIT", "EXECUTE", "EXECUTE IPS", "DLOPEN LATENCY",
                  "APPLY BINARY SECTION", "APPLYBINARY", "APPLY BINARY SECTION", "APPLYBINARY",
                  "FINALIZE AFTER TENSOR UPDATES", "FINALIZE_AFTER_TENSOR_UPDATES", "CONTEXT GET BINARY",
                  "CONTEXT GET BINARY SIZE", "CONTEXT GET BINARY SECTION SIZE"}));
}

Message update(std::uint64_t us) {
    return message(MethodType::UpdateBinarySection, "", us, {event("e", number(us / 3))}, 90);
}

samplelog::Bytes adapterUpdaterLog(const std::vector<Message>& messages) {
    test::Header header;
    header.generatorName = "sorel-lora-adapter-bin-updater";
    return test::logOf({messages}, header);
}

TEST(AdapterUpdaterReport, IsOfTheLatestUpdateAlone) {
    Loaded loaded(adapterUpdaterLog({message(MethodType::Execute, "g", 5), update(3), update(6)}));
    EXPECT_EQ(loaded.console(),
              "UpdateBinarySection Stats:\n--------------------------------\n"
              "    Marlix: 6 us\n    Backend (e): 2 us\n\n");
    EXPECT_EQ(loaded.csv(), columnLine +
                                "90,UPDATE BINARY SECTION,6,US,LABU,ROOT,null\n"
                                "90,UPDATE_BINARY_SECTION,2,US,BACKEND,ROOT,e\n");
    Loaded without(adapterUpdaterLog({message(MethodType::Execute, "g", 5)}));
    EXPECT_EQ(without.console(), "");
    EXPECT_EQ(without.csv(), columnLine);
}

TEST(GenericReport, BeginsWithTheHeader) {
    test::Header header;
    header.generatorName = "tool";
    header.generatorVersion = "1,2";
    header.backendInfo = "murl";
    Loaded loaded(test::logOf({{}}, header));
    const std::string head = loaded.reader.printHeader() + "\nZeb Init/";
    EXPECT_EQ(loaded.wholeConsole().substr(0, head.size()), head);
    const std::string preamble = "input log file location, " + loaded.reader.logFilePath() +
                                 "\nzeb-profile-viewer version, v2.51.0.260929181845\ntool version, 1,2\n"
                                 "Backend version, murl\n" +
                                 columnLine;
    EXPECT_EQ(loaded.wholeCsv().substr(0, preamble.size()), preamble);

    Loaded headless(samplelog::encodeLog(std::nullopt, {}));
    EXPECT_EQ(headless.wholeConsole().substr(0, 11), "\nZeb Init/P");
    EXPECT_PRED2(holds, headless.wholeCsv(), "\n version, \nBackend version, \nMsg");
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

TEST(GenericReport, IsTheSameTheSecondTime) {
    Loaded loaded({message(MethodType::ExecuteAsync, "g", 5, {wait(2)}), overall({event("a"), event("b")})});
    const std::string path = loaded.directory.path("csv");
    const std::string first = loaded.wholeConsole(path);
    const std::string firstCsv = test::fileText(path);
    EXPECT_EQ(loaded.wholeConsole(path), first);
    EXPECT_EQ(test::fileText(path), firstCsv + firstCsv);
}

// Object files by name, with how often each was saved.
std::string savedObjects(const test::TempDir& place) {
    std::string counts;
    for (const char* const name : {"a", "b", "c", "d"}) {
        int count = 0;
        std::string path = place.path(name);
        while (std::filesystem::exists(path)) {
            path = place.path(std::string(name) + "_" + std::to_string(++count));
        }
        counts += name + std::to_string(count) + " ";
    }
    return counts;
}

TEST(GenericReport, SavesObjectsAsItMeetsThem) {
    const test::TempDir place;
    const auto saved = [&place](const char* name) { return object("o", {1}, place.path(name)); };
    const samplelog::Bytes log =
        test::logOf({{message(MethodType::Execute, "g", 5,
                              {saved("a"), event("e", {}, {saved("b"), event("f", {}, {saved("c")})})}),
                      message(MethodType::Execute, "g", 9, {saved("d")})}});
    Loaded unsaved(log);
    unsaved.wholeConsole();
    EXPECT_EQ(savedObjects(place), "a0 b0 c0 d0 ");
    // The average has no objects of the top level; then every execution's own are saved, two levels deep;
    // then those of the fastest and of the slowest execution.
    Loaded loaded(log, true);
    loaded.wholeConsole();
    EXPECT_EQ(savedObjects(place), "a2 b3 c2 d2 ");
    loaded.wholeConsole();
    EXPECT_EQ(savedObjects(place), "a4 b6 c4 d4 ");
    std::filesystem::remove(place.path("a"));
    loaded.wholeConsole();
    EXPECT_TRUE(std::filesystem::exists(place.path("a"))) << "the first name that is free";
}

TEST(GenericReport, OnOneStreamFollowsItsCsvAndThatOfAnAdapterUpdaterComesBeforeIt) {
    const struct {
        samplelog::Bytes log;
        std::string first;
        std::string last;
    } cases[] = {
        {test::logOf({{message(MethodType::Execute, "g", 5)}}), "Msg Timestamp", "Execute Stats (Max)"},
        {adapterUpdaterLog({update(3)}), "UpdateBinarySection Stats:", "Msg Timestamp"},
    };
    for (const auto& [log, first, last] : cases) {
        Loaded loaded(log);
        const std::string output =
            test::onStandardOutput([&loaded] { loaded.reader.generateReports("/dev/stdout"); });
        EXPECT_PRED2(holds, output, first);
        EXPECT_PRED2(holds, output.substr(output.find(first)), last) << "behind " << first;
    }
}

}  // namespace
}  // namespace zeb::profiling
