// Markdown for a change or a job's summary: no name is more than text, whatever it holds, and it stays short.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "forms/markdown/ComparisonMarkdown.h"
#include "forms/markdown/MarkdownText.h"
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

TEST(Markdown, AHostileNameIsNothingButText) {
    if (!hasRenderer()) {
        GTEST_SKIP() << "there is no cmark-gfm, so nothing was rendered";
    }
    const std::string plain = htmlOf(markdownOf(comparisonOf("conv1")));
    for (const std::string_view name : hostileNames) {
        SCOPED_TRACE(name);
        const std::string html = htmlOf(markdownOf(comparisonOf(std::string(name))));
        for (const std::string_view part : {"<table", "<tr", "<td", "<th", "<h", "<p", "<li", "<ul",
                                            "<details", "</details", "<code", "<strong", "<br"}) {
            EXPECT_EQ(countOf(html, part), countOf(plain, part)) << part << "\n" << html;
        }
        for (const std::string_view part : {"<a ", "<img", "<em", "<del", "<ol", "\x1B"}) {
            EXPECT_EQ(countOf(html, part), 0U) << part << "\n" << html;
        }
    }
    EXPECT_EQ(countOf(plain, "<td"), 7U + 3U * 0U + 6U * 5U);
    // Outside of code nothing follows an at sign or a number sign at once.
    EXPECT_EQ(countOf(htmlOf(markdownSentence("for @somebody of #12")), "@somebody"), 0U);
    EXPECT_EQ(countOf(htmlOf(markdownSentence("for @somebody of #12")), "#12"), 0U);
}

TEST(Markdown, StaysShortAndCountsWhatItLeavesOut) {
    const std::string longName(300, '@');
    for (const std::size_t graphs : {1U, 30U, 100U}) {
        const std::string markdown = markdownOf(comparisonOf(longName, graphs, 500));
        EXPECT_LE(markdown.size(), maxMarkdownBytes) << graphs;
        EXPECT_EQ(markdown.find("graphs that did not fit in here") != std::string::npos, graphs > 1);
        EXPECT_NE(markdown.find("[480 others]"), std::string::npos);
    }
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
