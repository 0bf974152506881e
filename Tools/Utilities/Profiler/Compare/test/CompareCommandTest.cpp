// The command from end to end: its exit codes and their order, its messages, its inputs.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "analysis/MakeRun.h"
#include "command/MemoryLimit.h"
#include "command/runs/LoadRun.h"
#include "compare/CompareOptions.h"
#include "forms/json/RunJson.h"
#include "samplelog/NetworkLog.h"
#include "support/Command.h"
#include "support/FailureOf.h"
#include "support/SystemFaults.h"
#include "support/TestFiles.h"

namespace zeb::compare {
namespace {

using command::test::CommandResult;
using command::test::Strings;
using samplelog::NetworkOptions;
namespace output = command::test::output;

class CompareCommand : public testing::Test {
protected:
    std::string log(const std::string& name, const NetworkOptions& options = {}) const {
        std::ofstream out(files.path(name), std::ios::binary);
        writeNetworkLog(out, options);
        return files.path(name);
    }

    // Five logs of the seeds from `first`.
    Strings logs(const std::string& name, std::uint64_t first, NetworkOptions options = {}) const {
        Strings paths;
        for (std::uint64_t number = 0; number < 5; ++number) {
            options.seed = first + number;
            options.driftMillionths = 10'000;
            paths.push_back(log(name + std::to_string(number), options));
        }
        return paths;
    }

    static CommandResult run(Strings arguments, const std::string& to = output::captured) {
        arguments.insert(arguments.begin(), ZEB_COMPARE);
        return command::test::runCommand(arguments, to);
    }

    static void expectFailure(const Strings& arguments, int exitCode, const std::string& line,
                              const std::string& to = output::captured) {
        command::test::expectFailure(run(arguments, to), exitCode, line, "zeb-profile-compare");
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

TEST_F(CompareCommand, ComparesOneLogWithOne) {
    const CommandResult result =
        run({log("a"), log("b", {.slowerLayer = samplelog::SlowerLayer{"conv_pw_3", 300'000}})});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(holds(result.out, "One log against one")) << result.out;
    EXPECT_TRUE(holds(result.out, "\n  conv_pw_3  "));
    EXPECT_TRUE(holds(result.out, " others]"));
    EXPECT_TRUE(holds(result.out, "\n  SUPERCONV "));
    EXPECT_FALSE(holds(result.out, "\x1B"));
}

TEST_F(CompareCommand, GatesSeveralLogs) {
    const Strings sides = joined(joined({"--base"}, logs("a", 1)),
                                 joined({"--new"}, logs("b", 11, {.slowerMillionths = 100'000})));
    EXPECT_EQ(run(sides).exitCode, 0);
    const CommandResult slower = run(joined({"--fail-above", "5%"}, sides));
    EXPECT_EQ(slower.exitCode, 6);
    EXPECT_TRUE(holds(slower.err,
                      "zeb-profile-compare: Graph mobilenet_v1_224: the time for Marlix, median grew by "))
        << slower.err;
    EXPECT_TRUE(holds(slower.out, "  slower\n"));
    const Strings passing[] = {{"--fail-above", "20"}, {"--fail-above=5", "--min-change-us=1000"}};
    for (const Strings& gate : passing) {
        const CommandResult passed = run(joined(gate, sides));
        EXPECT_EQ(passed.exitCode, 0);
        EXPECT_TRUE(holds(passed.out, "\nThe gate passes: nothing grew by more than is allowed."))
            << passed.out;
    }
    EXPECT_EQ(run(joined({"--fail-above", "5", "--gate", "layers"}, sides)).exitCode, 6);
}

TEST_F(CompareCommand, EndsWithTheExitCodeThatWeighsMost) {
    const std::string good = log("good");
    const std::string slow = log("slow", {.slowerMillionths = 200'000});
    const std::string basic = log("basic", {.level = samplelog::ProfileLevel::basic});
    const std::string none = files.path("none");
    const std::string gone = none + ": there is no such file";
    EXPECT_EQ(run({"--fail-above", "5", good, slow}).exitCode, 6);
    expectFailure({"--fail-above", "5", good, basic}, 7,
                  "The versions can't be compared: the logs have different profiling levels.");
    const std::string slowBasic =
        log("slowBasic", {.level = samplelog::ProfileLevel::basic, .slowerMillionths = 200'000});
    expectFailure({"--fail-above", "5", "--gate", "layers", basic, slowBasic}, 7,
                  "Graph mobilenet_v1_224: it can't be compared: a time for ZEB layers is in 0 of 1 base "
                  "logs and in 0 of 1 new ones.");
    expectFailure({"--fail-above", "5", "--base", good, good, basic, "--new", slow}, 7,
                  "The versions can't be compared: several logs a side have to be 4 at least, and there "
                  "are 2 and 1.");
    expectFailure({"--fail-above", "5", "--base", good, "--new", good}, 7,
                  "The versions can't be compared: a run is on both sides.");
    const CommandResult unsure = run({"--fail-above", "30", good, slow});
    EXPECT_EQ(unsure.exitCode, 0);
    EXPECT_TRUE(
        holds(unsure.err, "can't tell whether the time for Marlix, median grew by more than the 30.0%"));
    EXPECT_TRUE(holds(unsure.out, "\nThe gate passes, since nothing is known to have grown"));
    EXPECT_EQ(run({"--fail-above", "30", "--fail-unsure", good, slow}).exitCode, 7);
    const std::string layer = log("layer", {.slowerLayer = samplelog::SlowerLayer{"conv_pw_5", 420'000}});
    const CommandResult culprit = run({"--fail-layer-above", "5", good, layer});
    EXPECT_EQ(culprit.exitCode, 6);
    EXPECT_TRUE(holds(culprit.err, "layer conv_pw_5 grew by 4")) << culprit.err;
    EXPECT_EQ(run({"--fail-layer-above", "5", good, slow}).exitCode, 0);
    for (const std::string& log : {slow, basic}) {  // 3 before 6 and 7
        expectFailure({"--fail-above", "5", good, log}, 3,
                      "standard output: it can't be written: No space left on device", output::full);
    }
    expectFailure({"--fail-above", "5", good, none}, 1, gone, output::full);
    expectFailure({"--hide-below", "x", good, none}, 2,
                  "--hide-below: \"x\" is no per cent like 5, 0.5 or 5%; see zeb-profile-compare --help");
}

TEST_F(CompareCommand, RefusesWrongUsage) {
    const std::pair<Strings, std::string> cases[] = {
        {{}, "no BASE given"},
        {{"a"}, "no NEW given"},
        {{"--base", "a"}, "no NEW given"},
        {{"--new", "a"}, "no BASE given"},
        {{"a", "b", "c"}, "c: a word too many; several logs go behind --base and --new"},
        {{"x", "--base", "a", "--new", "b"}, "x: a word too many beside --base and --new"},
        {{"--frobnicate", "a", "b"}, "--frobnicate: unknown option"},
        {{"--json=", "a", "b"}, "--json: needs a value"},
        {{"--fail-above", "-5", "a", "b"}, "--fail-above: \"-5\" is no per cent like 5, 0.5 or 5%"},
        {{"--fail-above", "inf", "a", "b"}, "--fail-above: \"inf\" is no per cent like 5, 0.5 or 5%"},
        {{"--fail-above", "", "a", "b"}, "--fail-above: needs a value"},
        {{"--gate", "layers", "a", "b"}, "--gate: needs --fail-above beside it"},
        {{"--min-change-us", "5", "a", "b"},
         "--min-change-us: needs --fail-above or --fail-layer-above beside it"},
        {{"--fail-unsure", "a", "b"}, "--fail-unsure: needs --fail-above beside it"},
        {{"--fail-unsure", "--fail-above", "0", "a", "b"},
         "--fail-unsure: needs a limit above 0, since no change is known to be 0"},
        {{"--fail-layer-above", "x", "a", "b"}, "--fail-layer-above: \"x\" is no per cent like 5, 0.5 or 5%"},
        {{"--paired", "--base", "a", "b", "--new", "c"},
         "--paired: takes as many logs of the base as new ones, and there are 2 and 1"},
        {{"--rows", "0", "a", "b"}, "--rows: \"0\" is no number from 1 to 1000000"},
        {{"--fail-above", "5", "--gate", "ipc", "a", "b"},
         "--gate: \"ipc\" is none of marlix, accelerator and layers"},
        {{"--fail-above", "5", "--min-change-us", "nan", "a", "b"},
         "--min-change-us: \"nan\" is no number of microseconds"},
        {{"--fail-above", "5", "--min-change-us", "inf", "a", "b"},
         "--min-change-us: \"inf\" is no number of microseconds"},
        {{"--fail-above", "5", "--fail-above", "6", "a", "b"},
         "--fail-above: to be given once, with a value"},
        {{"--rename", "a=", "a", "b"}, "--rename: \"a=\" is no OLD=NEW"},
        {{"--html", "", "a", "b"}, "--html: needs a value"},
        {{"--json", "-", "--html", "-", "a", "b"},
         "--html: standard output takes one form, and --json has it"},
        {{"--html", "x", "--json", "./x", "a", "b"}, "--html: goes to where --json goes"},
        {{"--max-memory", "1T", "a", "b"}, "--max-memory: \"1T\" is no size like 800M, 2G or 1000000"},
    };
    for (const auto& [arguments, line] : cases) {
        expectFailure(arguments, 2, line + "; see zeb-profile-compare --help");
    }
    expectFailure({"--fail-abov", "5", "a", "b"}, 2,
                  "--fail-abov: unknown option, did you mean --fail-above?");
    expectFailure({"--fail-above", "5", "--gate", "layer", "a", "b"}, 2,
                  "--gate: \"layer\" is none of marlix, accelerator and layers, did you mean layers?");
}

TEST_F(CompareCommand, TellsWhyALogCannotBeRead) {
    const std::string good = log("good");
    const std::string bytes = test::fileText(good);
    const std::string cut = files.write("cut", bytes.substr(0, bytes.size() / 2));
    const std::string empty = files.write("empty", std::string());
    const std::string json = files.write("json", R"({"schema":"zeb-profile-run/9"})");
    EXPECT_EQ(run({good, cut}).exitCode, 1);
    EXPECT_TRUE(holds(run({good, cut}).err, cut + ": the log can't be read: chunk "));
    expectFailure({empty, good}, 1, empty + ": the file is empty");
    EXPECT_EQ(run({json, good}).exitCode, 1);
    EXPECT_TRUE(holds(run({json, good}).err, json + ": the run can't be read: "));
    std::string nested = R"({"schema":"zeb-profile-run/1","steps":[)";
    std::string ends;
    for (int level = 0; level < 60'000; ++level) {
        nested += R"({"events":[)";
        ends += "]}";
    }
    const std::string deep = files.write("deep", nested + ends + "]}");
    expectFailure({deep, good}, 1, deep + ": the run can't be read: its events nest deeper than 62 levels");
}

// Where reading stops, the system's error and the end look alike.
TEST_F(CompareCommand, TellsAReadErrorOfALog) {
    command::MemoryLimit memory(command::defaultMemorySize());
    const std::string good = log("good");
    const std::string size = std::to_string(std::filesystem::file_size(good));
    command::test::badByte = std::stoll(size);
    const std::string told = command::test::failureOf([&] { command::loadRun(good, memory); });
    command::test::badByte.reset();
    EXPECT_EQ(told, "1 " + good + ": the log can't be read beyond byte " + size + ": Input/output error");
}

TEST_F(CompareCommand, TakesTheJsonOfARunForItsLog) {
    const std::string base = log("a");
    const std::string changed = log("b", {.slowerMillionths = 50'000});
    const auto jsonOf = [this](const std::string& path, const std::string& before) {
        std::ostringstream out;
        forms::writeRunJson(out, analysis::makeRun(path, profiling::VisibilityLevel{127}).value());
        return files.write("json", before + out.str());
    };
    const auto tablesOf = [](const std::string& text) { return text.substr(text.find("\nTotals")); };
    const std::string expected = tablesOf(run({base, changed}).out);
    for (const std::string before : {"", "\n  ", "\n \t   "}) {
        const std::string json = jsonOf(base, before);
        const CommandResult result = run({json, changed});
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(tablesOf(result.out), expected);
        EXPECT_TRUE(holds(result.out, "/json")) << result.out;
    }
    EXPECT_TRUE(holds(expected, "\n  Init "));
    const std::string old =
        std::regex_replace(test::fileText(files.path("json")),
                           std::regex("\"(init_us|finalize_us|inference|run_id)\":"), "\"x\":");
    const CommandResult result = run({files.write("old", old), changed});
    EXPECT_TRUE(
        holds(result.out, "/old is JSON of an earlier version, which has neither Init nor Finalize.\n"))
        << result.out;
    EXPECT_FALSE(holds(result.out, "\n  Init ") || holds(result.out, "\n  Finalize ")) << result.out;
}

// A log and the JSON of a run alike, each read as often as it takes.
TEST_F(CompareCommand, TakesEitherThroughAPipe) {
    const std::string base = log("a");
    const std::string json = files.path("json");
    std::ofstream jsonOfRun(json);
    forms::writeRunJson(jsonOfRun, analysis::makeRun(base, profiling::VisibilityLevel{127}).value());
    jsonOfRun.close();
    const auto through = [&](const std::string& script, const std::string& piped) {
        return command::test::runCommand({"/bin/bash", "-c", script, "sh", ZEB_COMPARE, piped, base});
    };
    for (const std::string& piped : {base, json}) {
        const CommandResult standardInput = through("cat \"$2\" | \"$1\" - \"$3\"", piped);
        EXPECT_EQ(standardInput.exitCode, 0) << standardInput.err;
        EXPECT_TRUE(holds(standardInput.out, "/dev/stdin")) << standardInput.out;
        EXPECT_EQ(through("\"$1\" <(cat \"$2\") <(cat \"$3\")", piped).exitCode, 0);
    }
    const std::string cut = files.write("cut", test::fileText(base).substr(0, 50));
    EXPECT_TRUE(holds(through("cat \"$2\" | \"$1\" - \"$3\"", cut).err,
                      "/dev/stdin: the log can't be read: chunk 1 at byte 0, "));
    command::test::expectFailure(
        through(": | \"$1\" - \"$3\"", base), 1,
        "/dev/stdin: nothing came through the pipe; has the command that writes to it "
        "failed?",
        "zeb-profile-compare");
}

TEST_F(CompareCommand, WritesJsonThatKeepsToItsSchema) {
    const std::string good = log("good");
    const std::string basic = log("basic", {.level = samplelog::ProfileLevel::basic, .graphs = 2});
    const Strings several = joined(joined({"--base"}, logs("a", 1)),
                                   joined({"--new"}, logs("b", 11, {.slowerMillionths = 100'000})));
    const std::string json = files.path("json");
    const Strings comparisons[] = {
        {good, good}, {good, basic, "--fail-above=5"}, joined({"--fail-above=5", "--gate=layers"}, several)};
    for (const Strings& arguments : comparisons) {
        const CommandResult toFile = run(joined({"--json=" + json}, arguments));
        EXPECT_TRUE(holds(toFile.out, "\nTotals\n") || holds(toFile.out, "nothing to compare"));
        const CommandResult toOutput = run(joined({"--json=-"}, arguments));
        EXPECT_EQ(toOutput.out, test::fileText(json));
        EXPECT_EQ(toOutput.err, toFile.err);
        EXPECT_EQ(toOutput.exitCode, toFile.exitCode);
        EXPECT_EQ(std::system((ZEB_CHECK_SCHEMA " " + json).c_str()), 0) << toOutput.out;
    }
    EXPECT_TRUE(holds(test::fileText(json), R"("outcome":"slower")"));
    const std::string before = test::fileText(good);
    EXPECT_EQ(run({"--json", good, basic, good}).exitCode, 2);  // it would overwrite a log
    EXPECT_EQ(test::fileText(good), before);
    EXPECT_EQ(run({"--json", files.path("none/json"), good, good}).exitCode, 3);
}

TEST_F(CompareCommand, WritesThePageBesideTheTextOrInItsPlace) {
    const std::string good = log("good");
    const std::string slow = log("slow", {.slowerMillionths = 200'000});
    const std::string html = files.path("html");
    const std::string json = files.path("json");
    const Strings comparison = {"--fail-above", "5", "--hide-below", "3", good, slow};
    const CommandResult text = run(comparison);
    const CommandResult both = run(joined({"--html", html, "--json", json}, comparison));
    EXPECT_EQ(both.out, text.out);
    EXPECT_EQ(both.err, text.err);
    EXPECT_EQ(both.exitCode, 6);
    const std::string page = test::fileText(html);
    EXPECT_TRUE(page.starts_with("<!DOCTYPE html>") && page.ends_with("</html>\n"));
    EXPECT_TRUE(holds(page, R"({"hide_below":0.03,)"));
    const std::string object = test::fileText(json);
    EXPECT_TRUE(holds(page, object.substr(0, object.size() - 1)));
    EXPECT_EQ(run(joined({"--json", "-"}, comparison)).out, object);
    const CommandResult alone = run(joined({"--html=-"}, comparison));
    EXPECT_EQ(alone.out, page);
    EXPECT_EQ(alone.err, text.err);
    EXPECT_EQ(alone.exitCode, 6);
    EXPECT_EQ(run({"--fail-above", "30", "--html=-", good, slow}).out.find("The gate passes: "),
              std::string::npos);
}

TEST_F(CompareCommand, LeavesAFileAsItWasUnlessAllOfThePageIsThere) {
    const std::string good = log("good");
    const std::string html = files.write("html", "what was there");
    const std::string json = files.path("json");
    expectFailure({"--html", html, good, files.path("none")}, 1,
                  files.path("none") + ": there is no such file");
    EXPECT_EQ(test::fileText(html), "what was there");
    const std::string before = test::fileText(good);
    const std::string other = log("other");
    expectFailure({"--html", good, other, good}, 2, good + ": the file is the log itself");
    expectFailure({"--html", good, good, other}, 2, good + ": the file is the log itself");
    EXPECT_EQ(test::fileText(good), before);
    expectFailure({"--json", json, "--html", files.path("none/html"), good, good}, 3,
                  files.path("none/html") + ": the file can't be created in " + files.path("none") +
                      ": No such file or directory");
    EXPECT_FALSE(std::ifstream(json).is_open());  // nor is the other form
    expectFailure({"--html=-", good, good}, 3,
                  "standard output: the file can't be written: No space left on device", output::full);
}

TEST_F(CompareCommand, ManyLogsTakeTheMemoryOfOne) {
    if (!command::MemoryLimit::canBeSet) {
        GTEST_SKIP() << "a sanitizer needs more than any limit";
    }
    const std::string large = log("large", {.executions = 20'000});
    const auto with = [&large](const std::string& size, int count) {
        Strings arguments = {"--max-memory", size, "--base"};
        arguments.insert(arguments.end(), static_cast<std::size_t>(count), large);
        arguments.emplace_back("--new");
        arguments.insert(arguments.end(), static_cast<std::size_t>(count), large);
        return run(arguments);
    };
    int megabytes = 8;
    while (with(std::to_string(megabytes) + "M", 1).exitCode != 0 && megabytes < 1024) {
        megabytes += megabytes / 4;
    }
    EXPECT_EQ(with(std::to_string(megabytes + megabytes / 4) + "M", 6).exitCode, 0) << megabytes;
    const CommandResult result = with("4M", 1);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "zeb-profile-compare: " + large + ": needs more than 4M of memory\n");
}

TEST_F(CompareCommand, ShowsHelpAndVersion) {
    const CommandResult help = run({"--version", "--help", "--gate", "x"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(run({"-h"}).out, help.out);
    for (const std::string text :
         {"Usage: zeb-profile-compare [options] BASE NEW\n", " [options] --base BASE... --new NEW...\n",
          "Default marlix. Needs --fail-above.", "  --base LOG...", "  --rename OLD=NEW",
          "  7  a gate has nothing that it can compare, or can't tell and has --fail-unsure\n",
          "A build pipeline"}) {
        EXPECT_TRUE(holds(help.out, text)) << text;
    }
    EXPECT_TRUE(run({"--version"}).out.starts_with("zeb-profile-compare v2.51.0.260929181845\nBuilt by "));
    EXPECT_EQ(run({"--help"}, output::full).exitCode, 3);
}

}  // namespace
}  // namespace zeb::compare
