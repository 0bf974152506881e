#pragma once

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>

#include "MakeRun.h"
#include "NetworkLog.h"
#include "Page.h"
#include "support/TestLog.h"

namespace zeb::test {

inline std::string pageOf(const analysis::Run& run) {
    std::ostringstream page;
    forms::writePage(page, run);
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

/// Names that try to be more than text.
inline analysis::Run hostileRun() {
    analysis::Run run = runOf(samplelog::NetworkOptions{.executions = 5});
    const std::string script = "</script><script>window.broken = 1</script>";
    const std::string image = "<img src=x onerror=\"window.broken = 2\">";
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
    graph.oruLayers[0].typeName = "]]>" + image;
    graph.layerTypes.front().name = "constructor" + image;
    run.otherMethods.push_back({image, script, 1, 2, 2, 2});
    return run;
}

}  // namespace zeb::test
