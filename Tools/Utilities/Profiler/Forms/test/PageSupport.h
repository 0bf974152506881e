#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "analysis/MakeRun.h"
#include "forms/page/ComparisonPage.h"
#include "forms/page/Page.h"
#include "samplelog/NetworkLog.h"
#include "support/TestLog.h"

namespace zeb::test {

inline std::string pageOf(const analysis::Run& run) {
    std::ostringstream page;
    forms::writePage(page, run);
    return page.str();
}

/// A comparison, and what it is shown with.
struct Compared {
    analysis::Comparison comparison;
    std::optional<analysis::Gate> gate;
    double hideBelow = 0.005;
};

inline std::string pageOf(const Compared& compared) {
    std::ostringstream page;
    forms::writeComparisonPage(page, compared.comparison, compared.gate, compared.hideBelow);
    return page.str();
}

template <typename Write>
analysis::Run runOf(Write write) {
    std::ostringstream log;
    write(log);
    const TempDir directory;
    std::optional<analysis::Run> run =
        analysis::makeRun(directory.write("log", log.str()), profiling::VisibilityLevel{127});
    run.value().logFile = "log";
    return std::move(*run);
}

inline analysis::Run runOf(const samplelog::NetworkOptions& options) {
    return runOf([&options](std::ostream& log) { samplelog::writeNetworkLog(log, options); });
}

/// What the checks of a page find, and the exit code of the program that made them.
struct Checked {
    std::string text;
    int status = 0;
};

inline Checked check(const std::string& page, const std::string& checks) {
    const TempDir directory;
    const std::string command =
        ZEB_CHECK_PAGE " " + directory.write("page.html", page) + " " + checks + " 2>&1";
    std::FILE* const pipe = popen(command.c_str(), "r");
    Checked checked;
    for (int character = 0; (character = std::fgetc(pipe)) != EOF;) {
        checked.text += static_cast<char>(character);
    }
    checked.status = WEXITSTATUS(pclose(pipe));
    return checked;
}

constexpr int noBrowser = 77;

/// Opens the page in a browser that is installed here and has the checks of page_checks.js made. What stands
/// on the browser's console comes behind what they find.
#define EXPECT_IN_BROWSER(shown, checks, found)                                      \
    do {                                                                             \
        const test::Checked checked = test::check(test::pageOf(shown), checks);      \
        if (checked.status == test::noBrowser) {                                     \
            GTEST_SKIP() << "no browser is installed, so the page is not looked at"; \
        }                                                                            \
        EXPECT_EQ(checked.text, found);                                              \
    } while (false)

/// @return how often a part comes
inline std::size_t countOf(const std::string& text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

/// @return what a browser takes for the data of that name: all up to the first end of a script
inline std::string dataOf(const std::string& page, const std::string& id) {
    const std::string mark = "<script type=\"application/json\" id=\"" + id + "\">";
    const std::size_t start = page.find(mark) + mark.size();
    return page.substr(start, page.find("</", start) - start);
}

/// What no page has: it would ask for something from elsewhere, or make markup of a text.
constexpr std::string_view partsOfWiderPages[] = {
    "src=",           "href=\"h",       "@import", "innerHTML", "outerHTML",
    "insertAdjacent", "document.write", "eval(",   "fetch(",    "XMLHttpRequest"};

/// Parts of the names of a log that try to be more than text.
inline const std::string hostileScript = "</script><script>window.broken = 1</script>";
inline const std::string hostileImage = "<img src=x onerror=\"window.broken = 2\">";

/// Names that try to be more than text.
inline analysis::Run hostileRun() {
    analysis::Run run = runOf(samplelog::NetworkOptions{.executions = 5});
    const std::string& script = hostileScript;
    const std::string& image = hostileImage;
    run.logFile = "<!--<script>" + script;
    run.header->generatorName = "&lt;b&gt;" + image;
    run.steps.front().text = image;
    run.steps.front().events.front().name = script;
    analysis::Graph& graph = run.graphs.front();
    graph.name = script + "\xFF";
    graph.findings.front().text = image;
    graph.zebLayers[0].name = image;
    graph.zebLayers[1].name = std::string("\0\x1B[31m \" ' ` \\u003c \xE2\x80\xA8 \xE2\x80\xAE", 26) + script;
    graph.zebLayers[2].name = "__proto__";
    graph.zebLayers[3].name = "=1+1";
    graph.oruLayers[0].typeName = "]]>" + image;
    graph.layerTypes.front().name = "constructor" + image;
    run.otherMethods.push_back({image, script, 1, 2, 2, 2});
    return run;
}

}  // namespace zeb::test
