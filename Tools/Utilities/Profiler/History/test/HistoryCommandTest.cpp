// The command from end to end: what it shows, its exit codes and their order, its inputs.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "history/HistoryOptions.h"
#include "samplelog/NetworkLog.h"
#include "support/Command.h"
#include "support/TestFiles.h"

namespace zeb::history {
namespace {

using command::test::CommandResult;
using command::test::Strings;
using samplelog::NetworkOptions;

class HistoryCommand : public testing::Test {
protected:
    std::string log(const std::string& name, const NetworkOptions& options = {}) const {
        std::ofstream out(files.path(name), std::ios::binary);
        writeNetworkLog(out, options);
        return files.path(name);
    }

    // Versions of seeds of their own, of which those from `first` on are slower.
    Strings logs(std::size_t versions, std::size_t first, NetworkOptions slower) const {
        Strings paths;
        for (std::size_t version = 0; version < versions; ++version) {
            NetworkOptions options = version < first ? NetworkOptions{} : slower;
            options.seed = 7 + version;
            options.driftMillionths = 10'000;
            paths.push_back(log('v' + std::to_string(version), options));
        }
        return paths;
    }

    static CommandResult run(Strings arguments) {
        arguments.insert(arguments.begin(), ZEB_HISTORY);
        return command::test::runCommand(arguments);
    }

    static Strings joined(Strings words, const Strings& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    const test::TempDir files;
};

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(HistoryCommand, TellsAStepWithWhatDidIt) {
    NetworkOptions slower;
    slower.slowerLayer = samplelog::SlowerLayer{"conv_pw_5", 3'000'000};
    const Strings all = logs(24, 12, slower);
    const CommandResult result = run(all);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(holds(result.out, "24 versions of 24 runs: ")) << result.out;
    EXPECT_TRUE(holds(result.out, "Marlix slower from ")) << result.out;
    EXPECT_TRUE(holds(result.out, "v12 on: +1")) << result.out;
    EXPECT_TRUE(holds(result.out, "\n      conv_pw_5 +")) << result.out;
    EXPECT_TRUE(holds(result.out, "[31 layers without a step]")) << result.out;
    EXPECT_FALSE(holds(result.out, "\x1B"));

    EXPECT_EQ(run(joined({"--fail-above", "50"}, all)).exitCode, 0);
    const CommandResult failing = run(joined({"--fail-above", "5"}, all));
    EXPECT_EQ(failing.exitCode, 6);
    EXPECT_TRUE(holds(failing.err, "zeb-profile-history: mobilenet_v1_224: Marlix grew by 1")) << failing.err;
}

TEST_F(HistoryCommand, WritesJsonThatKeepsItsSchema) {
    Strings arguments = joined({"--json", files.path("history.json"), "--fail-above=5"},
                               logs(20, 10, {.slowerMillionths = 200'000}));
    EXPECT_EQ(run(arguments).exitCode, 6);
    EXPECT_EQ(std::system((ZEB_CHECK_SCHEMA " " + files.path("history.json")).c_str()), 0);
    arguments[1] = "-";
    const CommandResult alone = run(arguments);
    EXPECT_EQ(alone.out, test::fileText(files.path("history.json")));
    EXPECT_TRUE(holds(alone.out, R"("kind":"common-factor","name":"All layers")"));
}

TEST_F(HistoryCommand, TakesVersionsFromLabelsOfAList) {
    std::string list;
    for (int run = 0; run < 6; ++run) {
        list += log("run" + std::to_string(run), {.seed = 100 + run}) + "\tbuild=b" +
                std::to_string(run / 2) + '\n';
    }
    std::ofstream(files.path("list")) << list << log("other", {.seed = 5}) << '\n';
    const CommandResult result = run({"--by", "build", "--files-from", files.path("list")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(holds(result.out, "3 versions of 6 runs: b0 to b2\n")) << result.out;
    EXPECT_EQ(result.err, "zeb-profile-history: " + files.path("other") +
                              ": the run has no \"build\" that would tell its version\n");

    const std::string json =
        command::test::runCommand({ZEB_VIEWER, log("labelled"), "--label", "build=b3", "--json", "-"}).out;
    const CommandResult ofJson = run({"--by", "build", files.write("json", json)});
    EXPECT_TRUE(holds(ofJson.out, "1 version of 1 run: b3")) << ofJson.out << ofJson.err;
}

TEST_F(HistoryCommand, PutsVersionsInTheOrderOfTheClockWhereThatIsAsked) {
    NetworkOptions early{.seed = 1};
    early.epochUs -= 3'600'000'000;
    const std::string young = log("young", {.seed = 2});
    const std::string old = log("old", early);
    const CommandResult given = run({young, old});
    EXPECT_TRUE(holds(given.out, " of 2 runs: " + young + " to " + old + '\n')) << given.out;
    const CommandResult byClock = run({"--order", "epoch", young, old});
    EXPECT_TRUE(holds(byClock.out, " of 2 runs: " + old + " to " + young + '\n')) << byClock.out;
}

TEST_F(HistoryCommand, GoesOnBehindWhatCantBeRead) {
    std::ofstream(files.path("broken")) << "no log";
    const CommandResult result = run({log("a", {.seed = 1}), files.path("broken"), log("b", {.seed = 2})});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(holds(result.err, "broken: ")) << result.err;
    EXPECT_TRUE(holds(result.out, "2 versions of 2 runs")) << result.out;
    EXPECT_TRUE(holds(result.out, "too few versions")) << result.out;
}

TEST_F(HistoryCommand, NothingToJudgeAndWrongUsageAreTold) {
    const std::string one = log("one", {.seed = 1});
    const struct {
        Strings arguments;
        int exitCode;
        std::string error;
    } cases[] = {
        {{"--fail-above", "5", one}, 0, "too few versions"},
        {{"--fail-above", "5", "--fail-unsure", one}, 7, "too few versions"},
        {{}, 2, "no RUN given"},
        {{"--fail-unsure", one}, 2, "--fail-unsure: needs --fail-above beside it"},
        {{"--order", "epohc", one}, 2, "epoch"},
        {{"--fail-above", "x", one}, 2, "is no per cent"},
        {{files.path("missing")}, 1, "missing"},
    };
    for (const auto& [arguments, exitCode, error] : cases) {
        const CommandResult result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << error << result.err;
        EXPECT_TRUE(holds(result.err, error)) << result.err;
    }
    std::ofstream(files.path("empty-list")) << "";
    EXPECT_EQ(run({"--files-from", files.path("empty-list")}).exitCode, 7);
}

}  // namespace
}  // namespace zeb::history
