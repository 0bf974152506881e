// The options of the backend's reader.

#include <gtest/gtest.h>

#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/CommandLine.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using test::CommandLine;
using test::Strings;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

const std::string usage =
    "\n"
    "Command Line Options:\n"
    "  [ --help ]            Displays this help message.\n"
    "  [ --version ]         Displays version information.\n"
    "  [ --internal ]        Display MURL internal profiling info.\n"
    "  [ --extra_help ]      Display extra help message on MURL backend specific options.\n";

TEST(BackendOptions, AreTakenOrAnsweredOnStandardError) {
    const struct {
        std::map<std::string, Strings> given;
        bool goesOn;
        std::string said;
        bool isInternal;
    } cases[] = {
        {{}, true, "", false},
        {{{"--internal", {}}}, true, "", true},
        {{{"--unknown", {"x"}}}, true, "", false},
        {{{"--extra_help", {}}},
         false,
         usage +
             "\nArguments Invalid:\nERROR:\tDisregard error, displaying MURL profiler viewer help message\n",
         false},
        {{{"--extra_help", {}}, {"--internal", {}}},
         false,
         usage +
             "\nArguments Invalid:\nERROR:\tDisregard error, displaying MURL profiler viewer help message\n",
         true},
        {{{"--help", {}}, {"--version", {}}, {"--internal", {}}}, false, usage, false},
        {{{"--version", {}}, {"--extra_help", {}}}, false, "ZEB SDK v2.51.0.260929181845\n", false},
    };
    for (const auto& [given, goesOn, said, isInternal] : cases) {
        test::Loaded<ZebProfileLogReaderMURL> loaded({test::message(
            test::MethodType::Execute, "g", 1, {test::event("Execute Profiling Level", test::number(2))})});
        CommandLine line(given);
        CaptureStdout();
        CaptureStderr();
        EXPECT_EQ(loaded.reader.parseBackendArgs(line), goesOn);
        EXPECT_EQ(GetCapturedStderr(), said);
        EXPECT_EQ(GetCapturedStdout(), "");
        EXPECT_EQ(test::holds(loaded.console(), "Loopback Enabled"), isInternal);
    }
}

TEST(BackendOptions, AreUnknownToTheGenericReader) {
    CommandLine line({{"--help", {}}, {"--extra_help", {}}});
    CaptureStderr();
    EXPECT_TRUE(ZebProfileLogReader("log", VisibilityLevel{1}).parseBackendArgs(line));
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(line.asked, Strings{});
}

}  // namespace
}  // namespace zeb::profiling
