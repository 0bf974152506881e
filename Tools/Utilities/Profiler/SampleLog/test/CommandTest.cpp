// The command from end to end: exit codes, messages and files.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "samplelog/NetworkLog.h"
#include "support/TestFiles.h"

namespace zeb::samplelog {
namespace {

struct Result {
    int exitCode = -1;
    std::string text;  // of both streams
};

class Command : public testing::Test {
protected:
    // Runs the command in the test's directory, with arguments as a shell reads them.
    Result run(const std::string& arguments) const {
        const std::string line = "{ cd " + files.directory().string() + " && " ZEB_SAMPLE_WRITER " " +
                                 arguments + "; } >" + captures.path("text") + " 2>&1";
        const int status = std::system(line.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                test::fileText(captures.path("text"))};
    }

    void expectFailure(const std::string& arguments, int exitCode, const std::string& line) const {
        const Result result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << arguments;
        EXPECT_EQ(result.text, "write-sample-log: " + line + "\n");
    }

    const test::TempDir files;
    const test::TempDir captures;
};

TEST_F(Command, WritesWhatTheOptionsSay) {
    const std::pair<std::string, NetworkOptions> cases[] = {
        {"", {}},
        {"--async --level internal --executions 3", {true, ProfileLevel::internal, 3, 32, 1, {}}},
        {"--level 1 --layers 40 --graphs 2 --seed 18446744073709551615",
         {false, ProfileLevel::basic, 20, 40, 2, 18'446'744'073'709'551'615U}},
        {"--kind network --level 2 --", {}},
        {"--seed 3 --drift 2.5", {.seed = 3, .driftMillionths = 25'000}},
        {"--seed 3 --drift 2 --drift-seed 8", {.seed = 3, .driftMillionths = 20'000, .driftSeed = 8}},
        {"--slower 10 --slower-layer conv1=0.0001",
         {.slowerMillionths = 100'000, .slowerLayer = SlowerLayer{"conv1", 1}}},
        {"--epoch-us 5 --generator-version v3 --backend-version v4",
         {.epochUs = 5, .generatorVersion = "v3", .backendVersion = "v4"}},
        {"--seed 3 --slowing 5 --noise 2 --wander 70",
         {.seed = 3, .slowingMillionths = 50'000, .noiseMillionths = 20'000, .wanderMillionths = 700'000}},
    };
    for (const auto& [arguments, options] : cases) {
        std::ostringstream log;
        writeNetworkLog(log, options);
        EXPECT_EQ(run(arguments + " run.zlog").text, "");
        EXPECT_EQ(test::fileText(files.path("run.zlog")), log.str()) << arguments;
        EXPECT_EQ(run(arguments + " /dev/stdout").text, log.str());
    }
}

TEST_F(Command, WritesEachKindOverWhatWasThere) {
    files.write("old.zlog", std::string(100'000, 'x'));
    for (const std::string kind : {"network", "methods", "adapter-updater", "shared-events"}) {
        EXPECT_EQ(run("--kind " + kind + " old.zlog").exitCode, 0) << kind;
        const std::string log = test::fileText(files.path("old.zlog"));
        EXPECT_TRUE(log.size() > 900 && log.size() < 20'000) << kind << " " << log.size();
        EXPECT_EQ(log.find("xxxx"), std::string::npos);
    }
}

TEST_F(Command, RefusesWrongUsage) {
    const std::string counted = " is no number from 1 to 1000000";
    const std::pair<std::string, std::string> cases[] = {
        {"", "no FILE given"},
        {"a b c", "b: a word too many, there is one FILE"},
        {"a --frobnicate", "--frobnicate: unknown option"},
        {"a --layers 0", "--layers: \"0\"" + counted},
        {"a --graphs 1000001", "--graphs: \"1000001\"" + counted},
        {"a --executions 2x", "--executions: \"2x\"" + counted},
        {"a --seed -1", "--seed: \"-1\" is no number from 0 to 18446744073709551615"},
        {"a --layers= 5", "--layers: needs a value"},
        {"a --layers", "--layers: needs a value"},
        {"a --layers 3 --layers 4", "--layers: to be given once, with a value"},
        {"a --level 3", "--level: \"3\" is none of basic, detailed, internal, 1, 2 and 1100"},
        {"a --kind x", "--kind: \"x\" is none of network, methods, adapter-updater and shared-events"},
        {"a --drift 2", "--drift: needs --seed beside it"},
        {"a --noise 2", "--noise: needs --seed beside it"},
        {"a --seed 1 --drift-seed 2", "--drift-seed: needs --drift beside it"},
        {"a --seed 1 --drift 16",
         "--drift: \"16\" is no per cent from 0 to 15, with four digits at most behind the point"},
        {"a --slower -1",
         "--slower: \"-1\" is no per cent from 0 to 1000, with four digits at most behind the point"},
        {"a --slower 1.00001",
         "--slower: \"1.00001\" is no per cent from 0 to 1000, with four digits at most behind the point"},
        {"a --slower-layer conv1", "--slower-layer: \"conv1\" is no NAME=PERCENT"},
        {"a --layers 2 --slower-layer conv_pw_1=5", "--slower-layer: the network has no layer \"conv_pw_1\""},
        {"a --kind methods --slower 5", "--slower: is for a log of the kind network only"},
        {"a --epoch-us today", "--epoch-us: \"today\" is no number from 0 to 18446744073709551615"},
        {"a --kind methods --backend-version v1", "--backend-version: is for a log of the kind network only"},
        {"a --kind methods --async", "--async: is for a log of the kind network only"},
        {"a --kind shared-events --seed 1", "--seed: is for a log of the kind network only"},
    };
    for (const auto& [arguments, line] : cases) {
        expectFailure(arguments, 2, line + "; see write-sample-log --help");
    }
    expectFailure(
        "a --kind netwrok", 2,
        "--kind: \"netwrok\" is none of network, methods, adapter-updater and shared-events, did you "
        "mean network?");
    expectFailure("a --layer 5", 2, "--layer: unknown option, did you mean --layers?");
    EXPECT_TRUE(std::filesystem::is_empty(files.directory()));
}

TEST_F(Command, NoticesAFileThatCantBeWritten) {
    expectFailure("none/run.zlog", 3, "none/run.zlog: it can't be written: No such file or directory");
    expectFailure(".", 3, ".: it can't be written: Is a directory");
    expectFailure("'a\nb/c'", 3, "a?b/c: it can't be written: No such file or directory");
    for (const std::string options : {"", "--kind shared-events ", "--executions 2000 "}) {
        expectFailure(options + "/dev/full", 3, "/dev/full: it can't be written: No space left on device");
    }
    EXPECT_EQ(run("--layers 5000 /dev/stdout 2>errors | true").text, "");
    EXPECT_EQ(test::fileText(files.path("errors")),
              "write-sample-log: /dev/stdout: it can't be written: Broken pipe\n");
}

TEST_F(Command, ShowsHelpAndVersion) {
    const Result help = run("--help --kind nonsense");
    EXPECT_EQ(help.exitCode, 0);
    for (const std::string text : {"Usage: write-sample-log [options] FILE\n", "--async", "--seed N",
                                   "small\n                   enough to check its reports by hand\n",
                                   "  3  FILE can't be written\n"}) {
        EXPECT_NE(help.text.find(text), std::string::npos) << text;
    }
    EXPECT_TRUE(run("--version").text.starts_with("write-sample-log v2.51.0.260929181845\nBuilt by "));
    EXPECT_EQ(run("--help > /dev/full").exitCode, 3);
}

}  // namespace
}  // namespace zeb::samplelog
