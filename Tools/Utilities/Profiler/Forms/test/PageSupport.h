#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

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

/// What a program writes, and its exit code.
struct Ran {
    std::string text;
    int status = 0;
};

inline Ran checkPage(const std::string& arguments) {
    std::FILE* const pipe = popen((ZEB_CHECK_PAGE " " + arguments + " 2>&1").c_str(), "r");
    Ran ran;
    for (int character = 0; (character = std::fgetc(pipe)) != EOF;) {
        ran.text += static_cast<char>(character);
    }
    ran.status = WEXITSTATUS(pclose(pipe));
    return ran;
}

inline std::string policyOf(const std::string& page) {
    const TempDir directory;
    return checkPage("--policy " + directory.write("page.html", page)).text;
}

/// A page, the steps of check_page.py that are made with it, and what has to be found; what stands on the
/// browser's console comes behind that.
struct InBrowser {
    std::string name;
    std::string page;
    std::string steps;
    std::string found;
};

/// Opens all pages in one start of a browser that is installed here.
inline void expectInBrowser(const std::vector<InBrowser>& cases) {
    const TempDir directory;
    std::string arguments;
    for (std::size_t index = 0; index < cases.size(); ++index) {
        arguments += (index == 0 ? "" : " -- ") +
                     directory.write("page" + std::to_string(index) + ".html", cases[index].page) + " " +
                     cases[index].steps;
    }
    const Ran ran = checkPage(arguments);
    constexpr int noBrowser = 77;
    if (ran.status == noBrowser) {
        GTEST_SKIP() << "no browser is installed, so the pages are not looked at";
    }
    ASSERT_EQ(ran.status, 0) << ran.text;
    std::size_t at = 0;
    for (const InBrowser& shown : cases) {
        at = ran.text.find('\n', at) + 1;  // behind the mark of a page
        const std::size_t end = std::min(ran.text.find("==\n", at), ran.text.size());
        EXPECT_EQ(ran.text.substr(at, end - at), shown.found) << shown.name;
        at = end;
    }
}

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
    run.labels = {{image, script}, {"__proto__", ""}, {"turned \xE2\x80\xAE", "\xE2\x80\xAE"}};
    run.header->generatorName = "&lt;b&gt;" + image;
    run.steps.front().text = image;
    run.steps.front().events.front().name = script;
    analysis::Graph& graph = run.graphs.front();
    graph.name = script + "\xFF";
    graph.findings.front().text = image;
    graph.zebLayers[0].name = image;
    graph.zebLayers[1].name = std::string("\0\x1B[31m \" ' ` \\u003c \xE2\x80\xA8 \xE2\x80\xAE", 27) + script;
    graph.zebLayers[2].name = "__proto__";
    graph.zebLayers[3].name = "=1+1";
    graph.zebLayers[4].name = "\tTab \"quoted\"";
    graph.zebLayers[5].name = "\rReturn";
    graph.oruLayers[0].typeName = "]]>" + image;
    graph.layerTypes.front().name = "constructor" + image;
    run.otherMethods.push_back({image, script, 1, 2, 2, 2});
    return run;
}

}  // namespace zeb::test
