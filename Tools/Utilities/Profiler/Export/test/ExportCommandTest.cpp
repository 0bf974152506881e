// The command from end to end: tables, batches, exit codes and messages.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <thread>

#include "command/MemoryLimit.h"
#include "forms/tables/RunTables.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/Command.h"

namespace zeb::exports {
namespace {

namespace fs = std::filesystem;
using command::test::CommandResult;
using command::test::Strings;

class Export : public testing::Test {
protected:
    std::string log(const std::string& name, const samplelog::NetworkOptions& options = {}) const {
        std::ofstream out(place.path(name), std::ios::binary);
        writeNetworkLog(out, options);
        return place.path(name);
    }
    // Logs that differ, and some among them that can't be read.
    Strings someLogs() const {
        Strings logs;
        for (std::uint64_t seed = 0; seed < 12; ++seed) {
            const auto graphs = static_cast<std::uint32_t>(seed % 3 + 1);
            logs.push_back(log("run" + std::to_string(seed), {.graphs = graphs, .seed = seed}));
        }
        logs.insert(logs.begin() + 3, place.write("cut", "\x10"));
        logs.insert(logs.begin() + 7, place.path("none"));
        return logs;
    }
    CommandResult run(const Strings& arguments) const {
        Strings all = {ZEB_EXPORT, "--to", place.path("fleet")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return command::test::runCommand(all);
    }
    // Exports what can be read of the logs, and gives all tables of the batch in one text.
    std::string tablesOf(const Strings& options, const Strings& logs) const {
        Strings arguments = options;
        arguments.insert(arguments.end(), logs.begin(), logs.end());
        const CommandResult result = run(arguments);
        std::string text = result.err;
        for (const auto& [table, name] : forms::allTables) {
            text += command::test::fileText(result.out.substr(0, result.out.find('\n')) + "/" +
                                            std::string(name) + ".csv");
        }
        return text;
    }
    std::size_t rowsOf(const std::string& batch, const std::string& table) const {
        const std::string text =
            command::test::fileText(batch.substr(0, batch.find('\n')) + "/" + table + ".csv");
        return static_cast<std::size_t>(std::ranges::count(text, '\n')) - 1;
    }
    std::set<std::string> entries() const {
        std::set<std::string> names;
        if (fs::exists(place.path("fleet"))) {
            for (const auto& each : fs::directory_iterator(place.path("fleet"))) {
                names.insert(each.path().filename());
            }
        }
        return names;
    }

    const command::test::TempDir place;
};

TEST_F(Export, TablesHoldWhatTheJsonHoldsAndThePageTells) {
    std::string command = ZEB_CHECK_TABLES;
    command +=
        ' ' + log("plain") + ' ' + log("async", {.async = true, .level = samplelog::ProfileLevel::internal});
    command += ' ' + log("graphs", {.executions = 3, .layers = 4, .graphs = 3});
    command += ' ' + log("basic", {.level = samplelog::ProfileLevel::basic});
    command += ' ' + log("texts", {.generatorVersion = "a \"b\",\n\xC3\xA4", .backendVersion = "\xFF"});
    for (const auto& [name, write] : std::initializer_list<std::pair<const char*, void (*)(std::ostream&)>>{
             {"methods", samplelog::writeMethodsLog}, {"adapter", samplelog::writeAdapterUpdaterLog}}) {
        std::ofstream out(place.path(name), std::ios::binary);
        write(out);
        command += ' ' + place.path(name);
    }
    command += ' ' + place.write("empty header", command::test::soundLog()).insert(0, 1, '\'') + '\'';
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
}

TEST_F(Export, BytesAreTheSameForAnyNumberOfJobs) {
    const Strings logs = someLogs();
    const std::string alone = tablesOf({"--jobs", "1"}, logs);
    EXPECT_TRUE(alone.starts_with("zeb-profile-export: " + place.path("cut") + ": ")) << alone.substr(0, 500);
    EXPECT_GT(alone.size(), 100'000U);
    for (const char* const jobs : {"2", "5", "32"}) {
        EXPECT_EQ(tablesOf({"--jobs", jobs}, logs), alone) << jobs;
    }
}

// A log that takes all memory is refused, and the others, which were read beside it, are not.
TEST_F(Export, MemoryThatALogTakesIsNoFaultOfTheOthers) {
    if (!command::MemoryLimit::canBeSet) {
        GTEST_SKIP() << "no limit under a sanitizer";
    }
    Strings logs = someLogs();
    const std::string hostile = place.write("hostile", command::test::sharedEventsLog("object"));
    for (const std::size_t at : {1U, 9U}) {
        logs.insert(logs.begin() + static_cast<std::ptrdiff_t>(at), hostile);
    }
    const std::string alone = tablesOf({"--max-memory", "64M", "--jobs", "1"}, logs);
    EXPECT_NE(alone.find(hostile + ": needs more than 64M of memory\n"), std::string::npos)
        << alone.substr(0, 2000);
    EXPECT_EQ(tablesOf({"--max-memory", "64M", "--jobs", "3"}, logs), alone);
}

// Two of these at once need more than they may, and what both have freed is there for the one that is read
// alone.
TEST_F(Export, ALogForWhichThereWasTooLittleMemoryIsReadAlone) {
    if (!command::MemoryLimit::canBeSet) {
        GTEST_SKIP() << "no limit under a sanitizer";
    }
    Strings arguments = {"--max-memory", "20M", "--jobs", "2", "--tables", "runs"};
    for (std::uint64_t seed = 0; seed < 4; ++seed) {
        arguments.push_back(
            log("long" + std::to_string(seed),
                {.level = samplelog::ProfileLevel::basic, .executions = 40'000, .seed = seed}));
    }
    const CommandResult result = run(arguments);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(rowsOf(result.out, "runs"), 4U);
}

TEST_F(Export, ABatchIsNewAndNamesSortByTime) {
    const std::string run1 = log("one");
    std::string latest;
    for (int round = 0; round < 3; ++round) {
        const CommandResult result = run({run1});
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_LT(latest, result.out);
        latest = result.out;
    }
    EXPECT_EQ(entries().size(), 3U);
}

TEST_F(Export, ARunIsTakenOnceInACallAndWithSkipKnownOnceAtAll) {
    const std::string one = log("one");
    const std::string copy = log("copy");
    const std::string two = log("two", {.seed = 2});
    EXPECT_EQ(rowsOf(run({one, copy}).out, "runs"), 1U);
    EXPECT_EQ(rowsOf(run({"--skip-known", copy, two}).out, "runs"), 1U);
    EXPECT_EQ(rowsOf(run({copy, two}).out, "runs"), 2U);
    const CommandResult nothingNew = run({"--skip-known", one, two});
    EXPECT_EQ(nothingNew.exitCode, 0);
    EXPECT_EQ(nothingNew.out, "");
    EXPECT_EQ(entries().size(), 3U) << "no batch without a run";
}

TEST_F(Export, LabelsComeFromTheCommandAndTheList) {
    const std::string one = log("one");
    const std::string two = log("two", {.seed = 2});
    const std::string list = place.write("list", one + "\tboard=7\tsite=lab\r\n\r\n\n" + two + "\tempty=\n");
    // A run as JSON has labels already: one more, the same one again, and one with another value.
    const auto labelled = [&](const std::string& name, const std::string& label, std::uint64_t seed) {
        const std::string path = log(name + ".log", {.seed = seed});
        return place.write(
            name, command::test::runCommand({ZEB_VIEWER, path, "--label", label, "--json", "-"}).out);
    };
    const std::string other = labelled("other", "site=field", 5);
    const CommandResult result =
        run({"--label", "site=lab", "--files-from", list, "--tables", "labels",
             labelled("three", "board=8", 3), labelled("four", "site=lab", 4), other});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "zeb-profile-export: " + other +
                              ": the label \"site\" has two values, \"field\" and \"lab\"\n");
    const std::string batch = result.out.substr(0, result.out.find('\n'));
    std::string labels = command::test::fileText(batch + "/labels.csv");
    for (std::size_t at = labels.find("\n\""); at != std::string::npos; at = labels.find("\n\"", at + 1)) {
        labels.erase(at + 1, 35);  // the id and its comma
    }
    EXPECT_EQ(labels,
              "run_id,key,value\r\n\"board\",\"8\"\r\n\"site\",\"lab\"\r\n\"site\",\"lab\"\r\n"
              "\"board\",\"7\"\r\n\"site\",\"lab\"\r\n"
              "\"empty\",\"\"\r\n\"site\",\"lab\"\r\n");
    EXPECT_FALSE(fs::exists(batch + "/runs.csv"));
}

TEST_F(Export, RefusesWrongUsageAndLeavesNothingBehind) {
    const std::string one = log("one");
    const std::string list = place.write("list", one + "\tno label\n");
    const std::string noPath = place.write("no path", "\tkey=value\n");
    const std::string help = "; see zeb-profile-export --help";
    const std::pair<Strings, std::string> cases[] = {
        {{}, "no LOG given" + help},
        {{"--jobs", "0", one}, "--jobs: \"0\" is no number from 1 to 256" + help},
        {{"--label", "=x", one}, "--label: \"=x\" is no KEY=VALUE" + help},
        {{"--label", "a=1", "--label", "a=2", one},
         "--label: the label \"a\" has two values, \"1\" and \"2\"" + help},
        {{"--tables", "runs,graph", one},
         "--tables: \"graph\" is none of runs, labels, graphs, executions, steps, zeb_layers, oru_layers and "
         "findings, did you mean graphs?"},
        {{"--frobnicate", one}, "--frobnicate: unknown option" + help},
        {{"--files-from", list}, list + ", line 1: \"no label\" is no KEY=VALUE"},
        {{"--files-from", noPath}, noPath + ", line 1: there is no path"},
        {{"--files-from", place.path("none")},
         place.path("none") + ": the list can't be read: No such file or directory"},
    };
    for (const auto& [arguments, line] : cases) {
        command::test::expectFailure(run(arguments), 2, line, "zeb-profile-export");
    }
    command::test::expectFailure(command::test::runCommand({ZEB_EXPORT, one}), 2, "no --to given" + help,
                                 "zeb-profile-export");
    EXPECT_TRUE(entries().empty());
    const CommandResult nothing = run({place.path("none")});
    command::test::expectFailure(nothing, 1, place.path("none") + ": there is no such file",
                                 "zeb-profile-export");
    EXPECT_TRUE(entries().empty());
}

TEST_F(Export, NoticesABatchThatCantBeWritten) {
    const std::string one = log("one");
    const std::string file = place.write("file", "");
    command::test::expectFailure(command::test::runCommand({ZEB_EXPORT, "--to", file, one}), 3,
                                 file + ": it can't be written: Not a directory", "zeb-profile-export");
    const CommandResult full = command::test::runCommand(
        {"/bin/sh", "-c", "ulimit -f 8; exec \"$0\" \"$@\"", ZEB_EXPORT, "--to", place.path("fleet"), one});
    EXPECT_EQ(full.exitCode, 3);
    EXPECT_NE(full.err.find("it can't be written: File too large"), std::string::npos) << full.err;
    EXPECT_TRUE(entries().empty());
}

// On a disk of its own, which has no room for all tables, or takes nothing.
TEST_F(Export, LeavesADiskAsItWasThatTakesNoBatch) {
    const std::string disk = place.path("disk");
    fs::create_directory(disk);
    const auto exportTo = [&disk](const Strings& arguments, const std::string& options) {
        Strings all = {"/usr/bin/env",
                       "unshare",
                       "-rm",
                       "/bin/sh",
                       "-c",
                       "mount -t tmpfs -o size=128k tmpfs \"$0\" && mkdir \"$0/fleet\" && mount -o remount," +
                           options + " \"$0\" || exit 77; \"$@\"; code=$?; ls -A \"$0/fleet\"; exit $code",
                       disk,
                       ZEB_EXPORT,
                       "--to",
                       disk + "/fleet"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return command::test::runCommand(all);
    };
    const Strings logs = someLogs();
    const CommandResult readOnly = exportTo({logs[0]}, "ro");
    if (readOnly.exitCode == 77 || readOnly.err.find("unshare") != std::string::npos) {
        GTEST_SKIP() << "nobody may mount a disk here: " << readOnly.err;
    }
    command::test::expectFailure(readOnly, 3, disk + "/fleet: it can't be written: Read-only file system",
                                 "zeb-profile-export");
    EXPECT_EQ(readOnly.out, "");
    const CommandResult full = exportTo(logs, "rw");
    EXPECT_EQ(full.exitCode, 3);
    EXPECT_NE(full.err.find(".csv: it can't be written: No space left on device\n"), std::string::npos)
        << full.err;
    EXPECT_EQ(full.out, "");
}

// What stands among the batches and is none, or no longer a whole one.
TEST_F(Export, SkipKnownTakesAgainWhatNoBatchTells) {
    const std::string one = log("one");
    const std::string batch = run({one}).out;
    fs::remove(batch.substr(0, batch.find('\n')) + "/runs.csv");
    const std::string fleet = place.path("fleet/");
    std::ofstream(fleet + "9stray") << "a file";
    fs::create_directories(fleet + "9folder/runs.csv");
    fs::create_directory(fleet + "9pipe");
    ASSERT_EQ(::mkfifo((fleet + "9pipe/runs.csv").c_str(), 0600), 0);
    fs::create_symlink("9link", fleet + "9link");
    const auto skipKnown = [&] {
        return command::test::runCommand(
            {"/usr/bin/timeout", "60", ZEB_EXPORT, "--to", fleet, "--skip-known", one});
    };
    const CommandResult result = skipKnown();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(rowsOf(result.out, "runs"), 1U);
    EXPECT_EQ(skipKnown().out, "");
}

// Two at a time, each killed at some moment: what stands in the directory is whole, and what does not is
// taken away.
TEST_F(Export, AKilledProcessLeavesWholeBatchesOnly) {
    const Strings logs = someLogs();
    const std::string whole = tablesOf({"--jobs", "2"}, logs);
    std::mt19937 random(5);
    std::uniform_int_distribution<int> moment(0, 150);
    std::atomic<int> killed = 0;
    for (int round = 0; round < 20; ++round) {
        Strings arguments = {ZEB_EXPORT, "--to", place.path("fleet"), "--jobs", "2"};
        arguments.insert(arguments.end(), logs.begin(), logs.end());
        const auto exportAndKill = [&arguments, &killed](int ms) {
            const auto result =
                command::test::runCommand(arguments, command::test::output::captured, [ms](pid_t process) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
                    ::kill(process, SIGKILL);
                });
            killed += result.exitCode == 128 + SIGKILL ? 1 : 0;
        };
        const int first = moment(random);
        const int second = moment(random);
        std::thread other([&] { exportAndKill(first); });
        exportAndKill(second);
        other.join();
    }
    EXPECT_GT(killed, 0);
    Strings rest = logs;
    rest.insert(rest.begin(), "--skip-known");
    rest.push_back(log("last", {.seed = 77}));
    EXPECT_EQ(rowsOf(run(rest).out, "runs"), 1U);
    EXPECT_EQ(run(rest).out, "");
    std::size_t batches = 0;
    for (const std::string& name : entries()) {
        EXPECT_FALSE(name.starts_with('.')) << name;
        ++batches;
        EXPECT_EQ(std::distance(fs::directory_iterator(place.path("fleet/" + name)), {}), 8) << name;
        const std::size_t runs = rowsOf(place.path("fleet/" + name), "runs");
        EXPECT_TRUE(runs == 12 || runs == 1) << name << " has " << runs;
    }
    EXPECT_GT(batches, 1U);
    EXPECT_FALSE(whole.empty());
}

TEST_F(Export, LeavesWhatAnotherProcessHasNotFinished) {
    const std::string one = log("one");
    const std::string pipe = place.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    CommandResult waiting;
    std::thread other([&] { waiting = run({pipe}); });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (entries().empty() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(run({log("two", {.seed = 2})}).exitCode, 0);
    std::ofstream(pipe, std::ios::binary) << command::test::fileText(one);
    other.join();
    EXPECT_EQ(waiting.err, "");
    EXPECT_EQ(rowsOf(waiting.out, "runs"), 1U);
    EXPECT_EQ(entries().size(), 2U);
}

}  // namespace
}  // namespace zeb::exports
