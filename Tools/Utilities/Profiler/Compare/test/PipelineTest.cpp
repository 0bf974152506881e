// The script of a pipeline, as docs/compare.md has it: it is run on made logs.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "samplelog/NetworkLog.h"
#include "support/Command.h"
#include "support/TestFiles.h"

namespace zeb::compare {
namespace {

namespace fs = std::filesystem;

using samplelog::NetworkOptions;
using samplelog::SlowerLayer;

std::string scriptOfThePage() {
    const std::string page = test::fileText(ZEB_COMPARE_PAGE);
    const std::string fence = "```sh\n";
    const std::size_t begin = page.find(fence);
    if (begin == std::string::npos) {
        return "exit 99";
    }
    const std::size_t from = begin + fence.size();
    return page.substr(from, page.find("```\n", from) - from);
}

class Pipeline : public testing::Test {
protected:
    // Five logs of a job, in place of those of the one before.
    void makeLogs(std::uint64_t seed, NetworkOptions options = {}) const {
        fs::remove_all(files.path("job"));
        fs::create_directory(files.path("job"));
        for (std::uint64_t log = 0; log < 5; ++log) {
            options.seed = seed + log;
            options.driftMillionths = 10'000;
            std::ofstream out(files.path("job/run" + std::to_string(log) + ".zlog"), std::ios::binary);
            writeNetworkLog(out, options);
        }
    }

    [[nodiscard]] command::test::CommandResult runStep(const std::string& branch) const {
        fs::remove(summary);
        return command::test::runCommand({"/usr/bin/env", "-C", files.path(""),
                                          "PATH=" ZEB_COMMANDS ":/usr/bin:/bin", "BRANCH=" + branch,
                                          "SUMMARY=" + summary, "/bin/sh", script});
    }

    const test::TempDir files;
    const std::string script = files.write("gate.sh", scriptOfThePage());
    const std::string summary = files.path("summary");
};

TEST_F(Pipeline, KeepsTheMainBranchAndGatesAChange) {
    makeLogs(1);
    const auto kept = runStep("main");
    EXPECT_EQ(kept.exitCode, 0) << kept.err;
    EXPECT_EQ(kept.out, "");
    EXPECT_TRUE(fs::exists(files.path("main/run4.json")));
    EXPECT_FALSE(fs::exists(summary));

    const struct {
        std::string name;
        NetworkOptions options;
        int exitCode;
        std::string inSummary;
    } jobs[] = {
        {"as fast", {}, 0, "The gate passes**"},
        {"all of it slower", {.slowerMillionths = 150'000}, 6, "The gate fails**"},
        {"one layer slower",
         {.slowerLayer = SlowerLayer{"conv_pw_5", 420'000}},
         6,
         "layer conv\\_pw\\_5 grew by"},
        {"another level", {.level = samplelog::ProfileLevel::basic}, 7, "nothing that it can compare**"},
    };
    std::uint64_t seed = 100;
    for (const auto& [name, options, exitCode, inSummary] : jobs) {
        SCOPED_TRACE(name);
        makeLogs(seed += 100, options);
        const auto job = runStep("change");
        EXPECT_EQ(job.exitCode, exitCode) << job.err;
        EXPECT_EQ(job.out, "");
        EXPECT_NE(test::fileText(summary).find(inSummary), std::string::npos) << test::fileText(summary);
        EXPECT_TRUE(test::fileText(files.path("comparison.html")).starts_with("<!DOCTYPE html>"));
        EXPECT_NE(test::fileText(files.path("comparison.txt")), "");
    }

    files.write("job/run2.zlog", std::string("no log"));
    EXPECT_EQ(runStep("change").exitCode, 1);
    EXPECT_FALSE(fs::exists(summary)) << "there was no comparison";
}

}  // namespace
}  // namespace zeb::compare
