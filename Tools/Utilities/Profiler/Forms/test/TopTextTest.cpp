// What --top shows, whole texts. The expected ones stand in expected/, a file each. When one differs, the
// text is left in the test's build directory for a comparison.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "analysis/MakeRun.h"
#include "console/ConsoleText.h"
#include "forms/text/TopText.h"
#include "samplelog/AdapterUpdaterLog.h"
#include "samplelog/MethodsLog.h"
#include "samplelog/NetworkLog.h"
#include "support/TestFiles.h"

namespace zeb::forms {
namespace {

using analysis::Run;

std::string topOf(const Run& run, const TopOptions& options = {}) {
    std::ostringstream out;
    printTop(out, run, options);
    return out.str();
}

Run runOf(const std::function<void(std::ostream&)>& write) {
    const test::TempDir place;
    {
        std::ofstream log(place.path("log"), std::ios::binary);
        write(log);
    }
    return analysis::makeRun(place.path("log"), profiling::VisibilityLevel{127}).value();
}

Run networkRun(const samplelog::NetworkOptions& options) {
    return runOf([&options](std::ostream& out) { writeNetworkLog(out, options); });
}

void expectText(const std::string& name, const std::string& actual) {
    if (actual != test::fileText(std::string(ZEB_EXPECTED_TEXTS) + '/' + name)) {
        std::ofstream(name, std::ios::binary) << actual;
        ADD_FAILURE() << name << " is not as expected; compare with " << std::filesystem::absolute(name);
    }
}

TEST(TopText, OfEveryKindOfLog) {
    expectText("network.top.txt", topOf(networkRun({})));
    expectText(
        "network-unicode.top.txt",
        topOf(networkRun({}), {.rows = 4, .style = {.hasColour = true, .hasUnicode = true, .width = 80}}));
    expectText("async.top.txt", topOf(networkRun({.async = true, .level = samplelog::ProfileLevel::internal}),
                                      {.rows = 3, .order = LayerOrder::name, .filter = "CONV_D"}));
    expectText("graphs.top.txt", topOf(networkRun({.executions = 6, .layers = 5, .graphs = 3, .seed = 2}),
                                       {.rows = 2, .order = LayerOrder::order}));
    expectText("basic.top.txt", topOf(networkRun({.level = samplelog::ProfileLevel::basic})));
    expectText("methods.top.txt", topOf(runOf(samplelog::writeMethodsLog)));
    EXPECT_EQ(topOf(runOf(samplelog::writeAdapterUpdaterLog)),
              "\nNo graph was executed in this log, so there is nothing to rank.\n");
}

// Every line fits, whatever the names are.
TEST(TopText, KeepsToTheWidthOfATerminal) {
    analysis::Run run = networkRun({});
    run.graphs[0].name = std::string(3000, 'g');
    run.graphs[0].zebLayers[7].name = std::string("\x1B[2J\n\xFF") + std::string(1'000'000, 'n') + "end";
    run.graphs[0].zebLayers[9].name = "\xC3\xA4\xC3\xB6\xC3\xBC";
    for (const std::size_t width : {80U, 100U, 200U}) {
        std::istringstream text(topOf(run, {.rows = 32, .style = {.hasUnicode = true, .width = width}}));
        for (std::string line; std::getline(text, line);) {
            EXPECT_LE(console::columnsOf(line), width) << line;
            EXPECT_EQ(line.find('\x1B'), std::string::npos);
        }
    }
}

TEST(ConsoleText, CutsNamesInTheirMiddle) {
    const struct {
        const char* name;
        std::size_t columns;
        const char* shown;
    } cases[] = {
        {"short", 5, "short"},
        {"longer", 5, "lo..r"},
        {"\xC3\xA4\xC3\xB6\xC3\xBC", 3, "\xC3\xA4\xC3\xB6\xC3\xBC"},
        {"\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", 3, "\xC3\xA4.."},
        {"a\tb\x7F", 4, "a?b?"},
    };
    for (const auto& [name, columns, shown] : cases) {
        EXPECT_EQ(console::shownName(name, columns, false), shown);
    }
    EXPECT_EQ(console::shownName("longer", 5, true),
              "lo\xE2\x80\xA6"
              "er");
}

}  // namespace
}  // namespace zeb::forms
