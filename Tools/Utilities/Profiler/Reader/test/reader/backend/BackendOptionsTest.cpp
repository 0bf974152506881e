// The options of the backend's reader.

#include <gtest/gtest.h>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/CommandLine.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using test::CommandLine;

const std::string usage =
    "\n"
    "Command Line Options:\n"
    "  [ --help ]            Displays this help message.\n"
    "  [ --version ]         Displays version information.\n"
    "  [ --internal ]        Display MURL internal profiling info.\n"
    "  [ --extra_help ]      Display extra help message on MURL backend specific options.\n";

TEST(BackendOptions, AreTakenOrAnsweredOnStandardError) {
    const std::string extra =
        usage +
        "\nArguments Invalid:\nERROR:\tDisregard error, displaying MURL profiler viewer help message\n";
    const struct {
        CommandLine::Given given;
        bool goesOn;
        std::string said;
        bool isInternal;
    } cases[] = {
        {{{"--internal", {}}}, true, "", true},
        {{{"--unknown", {"x"}}}, true, "", false},
        {{{"--extra_help", {}}, {"--internal", {}}}, false, extra, true},
        {{{"--help", {}}, {"--version", {}}, {"--internal", {}}}, false, usage, false},
        {{{"--version", {}}, {"--extra_help", {}}}, false, "ZEB SDK v2.51.0.260929181845\n", false},
    };
    for (const auto& [given, goesOn, said, isInternal] : cases) {
        test::Loaded<ZebProfileLogReaderMURL> loaded({test::message(
            test::MethodType::Execute, "g", 1, {test::event("Execute Profiling Level", test::number(2))})});
        CommandLine line(given);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(loaded.reader.parseBackendArgs(line), goesOn);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), said);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_EQ(test::holds(loaded.console(), "Loopback Enabled"), isInternal);
    }
}

}  // namespace
}  // namespace zeb::profiling
