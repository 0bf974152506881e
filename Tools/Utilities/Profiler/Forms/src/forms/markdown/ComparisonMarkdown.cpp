#include "forms/markdown/ComparisonMarkdown.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "analysis/FigureText.h"
#include "analysis/runs/Answer.h"
#include "forms/markdown/MarkdownText.h"
#include "forms/text/ComparisonRows.h"

namespace zeb::forms {

namespace {

using analysis::Comparison;
using analysis::GateOutcome;
using analysis::GraphComparison;
using analysis::LayerChange;
using analysis::Verdict;
using Cells = std::vector<std::string>;

constexpr std::size_t maxRows = 20;  // of a table

std::string gateSection(const Comparison& comparison, const analysis::Gate& gate) {
    const analysis::GateResult result = judge(comparison, gate);
    const auto wordsOf = [&gate](GateOutcome outcome) {
        switch (outcome) {
            case GateOutcome::pass:
                return "\xE2\x9C\x85 The gate passes";
            case GateOutcome::unsure:
                return gate.failsUnsure ? "\xE2\x9D\x8C The gate can't tell, and fails then"
                                        : "\xE2\x9A\xA0\xEF\xB8\x8F The gate can't tell, and passes";
            case GateOutcome::slower:
                return "\xE2\x9D\x8C The gate fails";
            case GateOutcome::incomparable:
                return "\xE2\x9D\x8C The gate has nothing that it can compare";
        }
        return "";
    };
    return "**" + std::string(wordsOf(result.outcome)) + "**\n\n" + markdownList(result.reasons) + '\n';
}

std::string answerSection(const GraphComparison& graph) {
    return "### Graph " + markdownName(graph.newName, false) + "\n\n**" +
           markdownSentence(graph.answer.text) + "**\n\n" + markdownList(graph.answer.causes) + '\n';
}

// "~" twice would strike the text out.
std::string plain(const std::string& cell) {
    return cell == "~" ? "\\~" : cell;
}

std::string totalsTable(const GraphComparison& graph) {
    std::vector<Cells> rows;
    for (const analysis::TotalChange& row : graph.totals) {
        rows.push_back({std::string(row.name()), rangeText(row, row.base, row.baseLogs, false),
                        rangeText(row, row.changed, row.newLogs, false),
                        row.isOnBoth() ? changeUsOf(row) : "-", plain(changeOf(row)),
                        row.interval ? textOf(*row.interval) : "", wordOf(row.verdict)});
    }
    return markdownTable({"", "Base us", "New us", "Change us", "Change", "95% interval", ""}, rows);
}

class LayerTable {
public:
    LayerTable(const Comparison& comparison, const GraphComparison& graph, const char* title)
        : comparison_(comparison), hasShared_(graph.shared.has_value()), title_(title) {}

    void add(const LayerChange& row) {
        addCells(row, markdownName(row.name, true), changeOf(row, comparison_.basis, hasShared_),
                 beyondOf(row));
    }
    void addSum(const LayerChange& row) { addCells(row, row.name, "", ""); }

    [[nodiscard]] bool isEmpty() const { return rows_.empty(); }

    [[nodiscard]] std::string text() const {
        Cells titles = {title_, "Base us", "New us", "Change us", "Change"};
        if (hasShared_) {
            titles.emplace_back("Beyond");
        }
        titles.emplace_back();
        return markdownTable(titles, rows_);
    }

private:
    void addCells(const LayerChange& row, std::string name, const std::string& change,
                  const std::string& beyond) {
        Cells cells = {std::move(name), timeOf(row, row.baseUs), timeOf(row, row.newUs), changeUsOf(row),
                       plain(change)};
        if (hasShared_) {
            cells.push_back(plain(beyond));
        }
        cells.push_back(wordOf(row.verdict));
        rows_.push_back(std::move(cells));
    }

    const Comparison& comparison_;
    bool hasShared_;
    const char* title_;
    std::vector<Cells> rows_;
};

std::string markedLayers(const Comparison& comparison, const GraphComparison& graph) {
    LayerTable table(comparison, graph, "Layer");
    std::size_t marked = 0;
    for (const LayerChange& row : graph.layers) {
        if (row.verdict == Verdict::slower || row.verdict == Verdict::faster) {
            if (++marked <= maxRows) {
                table.add(row);
            }
        }
    }
    if (table.isEmpty()) {
        return "";
    }
    const std::string more =
        marked > maxRows ? "\nand " + std::to_string(marked - maxRows) + " layers more that are marked\n"
                         : "";
    return "\n" + table.text() + more;
}

std::string foldedLayers(const Comparison& comparison, const GraphComparison& graph, const char* summary,
                         const char* title, const std::vector<LayerChange>& changes, double hideBelow) {
    if (changes.empty()) {
        return "";
    }
    LayerTable table(comparison, graph, title);
    const ShownRows rows = shownRows(changes, hideBelow, maxRows);
    for (const LayerChange* const row : rows.shown) {
        table.add(*row);
    }
    if (rows.hidden != 0) {
        table.addSum(rows.others);
    }
    table.addSum(rows.sum);
    const std::string shared = graph.shared ? sharedWords(*graph.shared) + "\n\n" : "";
    return '\n' + markdownFold(summary, shared + table.text());
}

std::string graphSection(const Comparison& comparison, const GraphComparison& graph, double hideBelow) {
    return answerSection(graph) + totalsTable(graph) + markedLayers(comparison, graph) +
           foldedLayers(comparison, graph, "ZEB layers", "Layer", graph.layers, hideBelow) +
           foldedLayers(comparison, graph, "ORU layers by type", "Type", graph.types, hideBelow) + '\n';
}

std::string sideOf(std::string_view title, const std::vector<std::string>& logs) {
    constexpr std::size_t maxNamed = 3;
    std::string text = std::string(title) + ' ' + analysis::counted(logs.size(), "log") + ": ";
    for (std::size_t log = 0; log < std::min(logs.size(), maxNamed); ++log) {
        text += (log == 0 ? "" : ", ") + markdownName(logs[log], false);
    }
    return text + (logs.size() > maxNamed ? " and " + std::to_string(logs.size() - maxNamed) + " more" : "") +
           "\\\n";
}

std::string endOf(const Comparison& comparison) {
    std::string end = comparison.graphs.empty()
                          ? "No graph was executed on both sides, so there is nothing to compare.\n\n"
                          : "";
    end += sideOf("Base:", comparison.baseLogs) + sideOf("New:", comparison.newLogs) +
           "Times are means over the logs.\n";
    const auto addOneSide = [&end](const std::vector<std::string>& graphs, const char* where) {
        if (!graphs.empty()) {
            end += "\n" + analysis::counted(graphs.size(), "graph is ", "graphs are ") + where + ".\n";
        }
    };
    addOneSide(comparison.goneGraphs, "in the base alone");
    addOneSide(comparison.addedGraphs, "new");
    return end + (comparison.warnings.empty() ? "" : "\nWarnings:\n\n" + markdownList(comparison.warnings));
}

}  // namespace

void writeComparisonMarkdown(std::ostream& out, const Comparison& comparison,
                             const std::optional<analysis::Gate>& gate, double hideBelow) {
    MarkdownDocument document(endOf(comparison));
    document.add("## Two versions compared\n\n" + (gate ? gateSection(comparison, *gate) : ""));
    for (const GraphComparison& graph : comparison.graphs) {
        document.add(graphSection(comparison, graph, hideBelow));
    }
    out << document.text("graph", "graphs");
}

}  // namespace zeb::forms
