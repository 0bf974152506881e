// Markdown for a change or a job's summary: no name is more than text, whatever it holds, and it stays short.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "analysis/MakeRun.h"
#include "forms/markdown/ComparisonMarkdown.h"
#include "forms/markdown/MarkdownText.h"
#include "forms/markdown/RunMarkdown.h"
#include "samplelog/NetworkLog.h"
#include "support/TestFiles.h"

namespace zeb::forms {
namespace {

using analysis::Verdict;

constexpr std::string_view hostileNames[] = {
    "a|b",
    "``a`b",
    "<img src=x onerror=alert(1)>",
    "@somebody",
    "#12",
    "https://example.org",
    "www.example.org",
    "a@example.org",
    "line\nbreak",
    "| a | b |\n|---|---|",
    "**bold** _it_ ~~no~~",
    "[a](javascript:alert(1))",
    "![a](x)",
    "</details>",
    "&lt;b&gt;",
    "\\| \\`",
    " blank ",
    "`",
    "- list",
    "1. list",
    "# head",
    "\x1B[31m",
    "<!-- --> --> x",
    "\xE2\x80\xAE"
    "txt",
};

analysis::Comparison comparisonOf(const std::string& name, std::size_t graphs = 1, std::size_t layers = 3) {
    analysis::Comparison comparison;
    comparison.basis = analysis::Basis::several;
    comparison.baseLogs = comparison.newLogs = {name, name, name, name};
    comparison.warnings = {"Of " + name + " there is a warning."};
    analysis::GraphComparison graph;
    graph.baseName = graph.newName = name;
    graph.answer = {
        analysis::Answer::Kind::slower, "Slower by 10.0%: " + name, {name + " +45 us, 78% of it"}};
    graph.totals.resize(1);
    graph.totals[0].baseLogs = graph.totals[0].newLogs = 4;
    graph.totals[0].change = 0.1;
    graph.totals[0].interval = analysis::Interval{0.08, 0.12};
    graph.totals[0].verdict = Verdict::slower;
    for (std::size_t layer = 0; layer < layers; ++layer) {
        analysis::LayerChange& row = graph.layers.emplace_back();
        row.name = name;
        row.baseUs = 100;
        row.newUs = 150 - static_cast<double>(layer);
        row.change = row.excess = 0.5;
        row.verdict = layer == 0 ? Verdict::slower : Verdict::unsure;
    }
    comparison.graphs.assign(graphs, graph);
    return comparison;
}

std::string markdownOf(const analysis::Comparison& comparison) {
    std::ostringstream out;
    writeComparisonMarkdown(out, comparison, analysis::Gate{.maxGrowth = 0.05, .maxLayerGrowth = 0.05},
                            0.005);
    return out.str();
}

// Everywhere where a log has a text of its own it has this one.
analysis::Run runOf(const std::string& name, std::size_t graphs = 1, std::size_t rows = 3) {
    analysis::Run run;
    run.logFile = name;
    run.header = analysis::Header{.generatorName = name, .generatorVersion = name, .backendVersion = name};
    run.level = analysis::Level::detailed;
    analysis::Graph graph;
    graph.name = name;
    graph.spread.count = 20;
    graph.inference = {"Marlix", 100, analysis::PartKind::inference, "Its parts, " + name, {}};
    for (std::size_t row = 0; row < rows; ++row) {
        graph.inference.parts.push_back({name, 7, analysis::PartKind::event, "", {}});
        graph.zebLayers.push_back({name, row, 2, {}});
        run.labels.emplace(name + std::to_string(row), name);
        graph.layerTypes.push_back({name, 1, 2, 30});
        graph.layers.dspUs += row;
        graph.layers.krelUs += 2;
        analysis::Finding finding;
        finding.group = row == 0 ? analysis::FindingGroup::once : analysis::FindingGroup::note;
        finding.text = "Of " + name + " there is something.";
        graph.findings.push_back(finding);
    }
    graph.layers.kind = analysis::LayerKind::zeb;
    run.findings = graph.findings;
    run.graphs.assign(graphs, graph);
    return run;
}

std::string markdownOf(const analysis::Run& run) {
    std::ostringstream out;
    writeRunMarkdown(out, run);
    return out.str();
}

bool hasRenderer() {
    return std::system("cmark-gfm --version > /dev/null 2>&1") == 0;
}

// As GitHub renders it, but with raw HTML let through, so that what gets through is seen.
std::string htmlOf(const std::string& markdown) {
    const test::TempDir files;
    const std::string path = files.write("text.md", markdown);
    const std::string command = "cmark-gfm --unsafe -e table -e strikethrough -e autolink -e tagfilter " +
                                path + " > " + path + ".html";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return test::fileText(path + ".html");
}

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string_view::npos; at += part.size()) {
        ++count;
    }
    return count;
}

// Whatever the name is, there are the elements that a plain name has, and none that could do anything.
void expectText(const std::string& markdown, const std::string& plain) {
    const std::string html = htmlOf(markdown);
    for (const std::string_view part : {"<table", "<tr", "<td", "<th", "<h", "<p", "<li", "<ul", "<details",
                                        "</details", "<code", "<strong", "<br"}) {
        EXPECT_EQ(countOf(html, part), countOf(plain, part)) << part << "\n" << html;
    }
    for (const std::string_view part : {"<a ", "<img", "<em", "<del", "<ol", "\x1B", "\xE2\x80\xAE"}) {
        EXPECT_EQ(countOf(html, part), 0U) << part << "\n" << html;
    }
}

TEST(Markdown, AHostileNameIsNothingButText) {
    if (!hasRenderer()) {
        GTEST_SKIP() << "there is no cmark-gfm, so nothing was rendered";
    }
    const std::string comparison = htmlOf(markdownOf(comparisonOf("conv1")));
    const std::string run = htmlOf(markdownOf(runOf("conv1")));
    for (const std::string_view name : hostileNames) {
        SCOPED_TRACE(name);
        expectText(markdownOf(comparisonOf(std::string(name))), comparison);
        expectText(markdownOf(runOf(std::string(name))), run);
    }
    EXPECT_EQ(countOf(comparison, "<td"), 7U + 6U * 5U);
    // Executions with the least, the median, p90 and the most; Marlix and three parts; layers and their sum;
    // types.
    EXPECT_EQ(countOf(run, "<td"), 5U + 4U * 3U + 4U * 5U + 3U * 5U);
    // Outside of code nothing follows an at sign or a number sign at once.
    EXPECT_EQ(countOf(htmlOf(markdownSentence("for @somebody of #12")), "@somebody"), 0U);
    EXPECT_EQ(countOf(htmlOf(markdownSentence("for @somebody of #12")), "#12"), 0U);
}

TEST(Markdown, StaysShortAndCountsWhatItLeavesOut) {
    const std::string longNames[] = {std::string(300, '@'), std::string(300, '|'), [] {
                                         std::string wide;
                                         for (int count = 0; count < 64; ++count) {
                                             wide += "\xF0\x9F\x92\xA9";
                                         }
                                         return wide;
                                     }()};
    for (const std::string& name : longNames) {
        for (const std::size_t graphs : {1U, 30U, 100U}) {
            const std::string comparison = markdownOf(comparisonOf(name, graphs, 500));
            const std::string run = markdownOf(runOf(name, graphs, 500));
            for (const std::string& markdown : {comparison, run}) {
                EXPECT_LE(markdown.size(), maxMarkdownBytes) << graphs;
                EXPECT_EQ(markdown.find("graphs that did not fit in here") != std::string::npos, graphs > 1);
                EXPECT_EQ(markdown.find("1 more graph that did not"), std::string::npos)
                    << "the first has room";
            }
            EXPECT_NE(comparison.find("[480 others]"), std::string::npos);
            EXPECT_NE(run.find("[490 others]"), std::string::npos);
            EXPECT_NE(run.find("and 461 parts more"), std::string::npos);
            EXPECT_NE(run.find("[480 others]"), std::string::npos) << "types";
            EXPECT_NE(run.find("| 480 | 960 | 14400 | 96.0% |"), std::string::npos) << "of those types";
        }
    }
}

TEST(Markdown, CountsTheLabelsThatItDoesNotShow) {
    const std::string markdown = markdownOf(runOf("x", 1, 25));
    EXPECT_EQ(countOf(markdown, "=x"), 20U) << markdown;
    EXPECT_NE(markdown.find(" and 5 more"), std::string::npos);
}

TEST(Markdown, KeepsWhatASentenceSays) {
    EXPECT_EQ(markdownSentence(" x  y "), "x  y");  // blanks at an end could not be emphasised
    if (hasRenderer()) {
        EXPECT_EQ(htmlOf(markdownSentence("a &lt;b&gt; \\| [c](d) *e* 1. f")),
                  "<p>a &amp;lt;b&amp;gt; \\| [c](d) *e* 1. f</p>\n");
    }
}

TEST(Markdown, HasRoomForTheCountOfWhatHasNoRoom) {
    for (const std::size_t bytes : {maxMarkdownBytes - 300, maxMarkdownBytes - 100, maxMarkdownBytes}) {
        MarkdownDocument document("");
        document.add(std::string(bytes, 'x'));
        document.add(std::string(300, 'y'));
        document.add(std::string(maxMarkdownBytes, 'z'));
        const std::string text = document.text("graph", "graphs");
        EXPECT_LE(text.size(), maxMarkdownBytes);
        EXPECT_NE(text.find("that did not fit in here"), std::string::npos);
    }
}

void expectWholeText(const std::string& name, const std::string& actual) {
    if (actual != test::fileText(std::string(ZEB_EXPECTED_TEXTS) + '/' + name)) {
        std::ofstream(name, std::ios::binary) << actual;
        ADD_FAILURE() << name << " is not as expected; compare with " << std::filesystem::absolute(name);
    }
}

TEST(Markdown, OfARunHasItsTimesItsTreeItsLayersAndWhatStandsOut) {
    const test::TempDir files;
    const auto textOf = [&files](const samplelog::NetworkOptions& options) {
        std::ofstream log(files.path("run.log"), std::ios::binary);
        writeNetworkLog(log, options);
        log.close();
        analysis::Run run = analysis::makeRun(files.path("run.log"), profiling::VisibilityLevel{127}).value();
        run.logFile = "run.log";
        return markdownOf(run);
    };
    expectWholeText("network.md", textOf({}));
    expectWholeText(
        "async-basic.md",
        textOf({.async = true, .level = samplelog::ProfileLevel::basic, .executions = 2, .graphs = 2}));
    EXPECT_EQ(markdownOf(analysis::Run{}),
              "## Profile of a run\n\nNo graph was executed.\n\nLog: (no name)\n");
}

TEST(Markdown, BeginsWithGateAndAnswerAndFoldsTheRest) {
    const std::string markdown = markdownOf(comparisonOf("conv1"));
    const std::string_view parts[] = {"**\xE2\x9D\x8C The gate fails**",
                                      "### Graph `conv1`",
                                      "**Slower by 10",
                                      "- conv1",
                                      "| Marlix, median |",
                                      "| `conv1` | 100 | 150 |",
                                      "<details>",
                                      "Base: 4 logs"};
    std::size_t at = 0;
    for (const std::string_view part : parts) {
        const std::size_t found = markdown.find(part, at);
        EXPECT_NE(found, std::string::npos) << part << "\n" << markdown;
        at = found == std::string::npos ? at : found;
    }
}

}  // namespace
}  // namespace zeb::forms
