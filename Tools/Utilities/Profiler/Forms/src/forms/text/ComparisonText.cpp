#include "forms/text/ComparisonText.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/FigureText.h"
#include "analysis/runs/Answer.h"
#include "console/ConsoleText.h"
#include "forms/text/ComparisonRows.h"
#include "forms/text/QuantileColumns.h"
#include "text/NumberText.h"

namespace zeb::forms {

namespace {

using analysis::Basis;
using analysis::Comparison;
using analysis::GraphComparison;
using analysis::microseconds;
using analysis::TotalChange;
using analysis::Verdict;
using console::columnsOf;
using console::ConsoleTable;
using console::left;
using console::right;
using console::shownName;
using console::wrapped;

constexpr std::size_t maxNameColumns = 48;
constexpr std::size_t fewNameColumns = 16;
constexpr std::size_t minNameColumns = 8;
constexpr std::size_t maxTextColumns = 1000;  // of a sentence
constexpr std::size_t maxLogsNamed = 3;
constexpr std::size_t maxAnswers = 20;
constexpr std::size_t indentation = 2;

// What a table shows: all of it, or what fits.
struct Shape {
    std::size_t nameColumns = maxNameColumns;
    bool hasRanges = true;
    bool hasP = true;
    bool hasIntervals = true;
    bool hasTimes = true;
};

// From the widest to the narrowest.
std::vector<Shape> shapesOf() {
    std::vector<Shape> shapes = {{},
                                 {.hasRanges = false},
                                 {.hasRanges = false, .hasP = false},
                                 {.hasRanges = false, .hasP = false, .hasIntervals = false}};
    while (shapes.back().nameColumns > minNameColumns) {
        shapes.push_back(shapes.back());
        --shapes.back().nameColumns;
        shapes.back().hasTimes = shapes.back().nameColumns >= fewNameColumns;
    }
    return shapes;
}

// A table whose rows have the colour of their verdict.
template <std::size_t columnCount>
class ChangeTable {
public:
    explicit ChangeTable(ConsoleTable<columnCount> titles) : table_(std::move(titles)) {}

    template <typename... Cells>
    void add(Verdict verdict, const Cells&... cells) {
        table_.add(cells...);
        verdicts_.push_back(verdict);
    }

    [[nodiscard]] std::size_t width() const {
        std::size_t width = 0;
        for (const std::string& line : table_.lines(indentation)) {
            width = std::max(width, columnsOf(line));
        }
        return width;
    }

    void print(std::ostream& out, bool hasColour) const {
        const std::vector<std::string> lines = table_.lines(indentation);
        out << lines.front() << '\n';
        for (std::size_t row = 0; row < verdicts_.size(); ++row) {
            const std::string_view colour = hasColour ? colourOf(verdicts_[row]) : "";
            out << colour << lines[row + 1] << (colour.empty() ? "" : "\x1B[0m") << '\n';
        }
    }

private:
    static std::string_view colourOf(Verdict verdict) {
        if (verdict == Verdict::slower) {
            return "\x1B[31m";
        }
        return verdict == Verdict::faster ? "\x1B[32m" : "";
    }

    ConsoleTable<columnCount> table_;
    std::vector<Verdict> verdicts_;
};

class ComparisonPrinter {
public:
    ComparisonPrinter(std::ostream& out, const Comparison& comparison, const ComparisonTextOptions& options)
        : out_(out), comparison_(comparison), options_(options) {}

    void print() {
        printAnswers();
        printHead();
        for (const GraphComparison& graph : comparison_.graphs) {
            out_ << "\nGraph " << name(graph.newName) << '\n';
            printExecutions(graph);
            printTotals(graph);
            printLayers("ZEB layers", "Layer", graph, graph.layers);
            printLayers("ORU layers by type", "Type", graph, graph.types);
        }
        for (const std::string& graph : comparison_.goneGraphs) {
            out_ << "\nGraph " << name(graph) << " is gone: the base alone has it.\n";
        }
        for (const std::string& graph : comparison_.addedGraphs) {
            out_ << "\nGraph " << name(graph) << " is new: the base does not have it.\n";
        }
    }

private:
    [[nodiscard]] std::string name(std::string_view text, std::size_t columns = maxNameColumns) const {
        return shownName(text, columns, options_.hasUnicode);
    }

    // On as many lines as it takes, the later ones below the first one's text.
    void printSentence(std::string_view front, std::string_view text) {
        const std::string shown = shownName(text, maxTextColumns, options_.hasUnicode);
        const std::size_t columns = options_.width.value_or(maxTextColumns + front.size());
        std::string before(front);
        for (const std::string& line : wrapped(shown, columns - std::min(columns, front.size()))) {
            out_ << before << line << '\n';
            before.assign(front.size(), ' ');
        }
    }

    void printAnswers() {
        const auto& graphs = comparison_.graphs;
        if (graphs.empty()) {
            out_ << "No graph was executed on both sides, so there is nothing to compare.\n\n";
            return;
        }
        for (const GraphComparison& graph : std::span(graphs).first(std::min(graphs.size(), maxAnswers))) {
            printSentence("", "Graph " + name(graph.newName) + ": " + graph.answer.text);
            for (const std::string& cause : graph.answer.causes) {
                printSentence("  - ", cause);
            }
        }
        if (graphs.size() > maxAnswers) {
            out_ << "and " << graphs.size() - maxAnswers << " graphs more, see below\n";
        }
        out_ << '\n';
    }

    void printSide(std::string_view label, const std::vector<std::string>& logs) {
        std::string text = analysis::counted(logs.size(), "log") + ": ";
        for (std::size_t log = 0; log < std::min(logs.size(), maxLogsNamed); ++log) {
            text.append(log == 0 ? "" : ", ").append(name(logs[log]));
        }
        if (logs.size() > maxLogsNamed) {
            text += " and " + std::to_string(logs.size() - maxLogsNamed) + " more";
        }
        printSentence(label, text);
    }

    void printHead() {
        printSide("Base  ", comparison_.baseLogs);
        printSide("New   ", comparison_.newLogs);
        printSentence("", basisWords());
        for (const std::string& warning : comparison_.warnings) {
            printSentence("Warning: ", warning);
        }
    }

    [[nodiscard]] std::string basisWords() const {
        const std::string sure =
            "A change stands where it is sure, else \"~\"; the interval holds the true change of a total "
            "with 95%.";
        switch (comparison_.basis) {
            case Basis::oneEach:
                return "One log against one: a difference between runs can't be told from one between "
                       "versions. With " +
                       std::to_string(analysis::minLogs) + " logs or more of each it can.";
            case Basis::tooFew:
                return "Too few logs: it takes " +
                       (comparison_.isPaired ? std::to_string(analysis::minPairs) + " pairs or more"
                                             : std::to_string(analysis::minLogs) + " or more of each") +
                       " to tell a change from chance, so every change is \"~\".";
            case Basis::several:
                return sure;
            case Basis::paired:
                return "Compared in pairs, the n-th log of the base with the n-th new one. " + sure;
        }
        return "";
    }

    void printExecutions(const GraphComparison& graph) {
        if (!graph.executions) {
            return;
        }
        out_ << "\nExecutions, without the first\n";
        ConsoleTable table(left(""), right("Count"), quantileColumns(" us"));
        const auto add = [&table](const char* side, const analysis::Spread& spread) {
            table.add(side, std::to_string(spread.count), quantileCells(spread, microseconds));
        };
        add("Base", graph.executions->first);
        add("New", graph.executions->second);
        for (const std::string& line : table.lines(indentation)) {
            out_ << line << '\n';
        }
    }

    // Prints the table that fits, of those that `make` returns for a shape.
    template <typename Make>
    void printFitting(const Make& make) {
        const std::size_t width = options_.width.value_or(std::string::npos);
        static const std::vector<Shape> shapes = shapesOf();
        const auto fits = [&](const Shape& shape) { return make(shape).width() <= width; };
        const auto shape = std::find_if(shapes.begin(), shapes.end() - 1, fits);
        make(*shape).print(out_, options_.hasColour);
    }

    void printTotals(const GraphComparison& graph) {
        out_ << "\nTotals\n";
        printFitting([&](const Shape& shape) {
            ChangeTable table(ConsoleTable(
                left(""), right("Base us", shape.hasTimes), right("New us", shape.hasTimes),
                right("Change us"), right("Change"), right("95% interval", isSure() && shape.hasIntervals),
                right("p", isSure() && shape.hasP), left("")));
            for (const TotalChange& row : graph.totals) {
                table.add(row.verdict, row.name(), rangeText(row, row.base, row.baseLogs, shape.hasRanges),
                          rangeText(row, row.changed, row.newLogs, shape.hasRanges),
                          row.isOnBoth() ? changeUsOf(row) : "-", changeOf(row),
                          row.interval ? textOf(*row.interval) : "", pText(row.p), wordOf(row.verdict));
            }
            return table;
        });
    }

    [[nodiscard]] bool isSure() const {
        return comparison_.basis == Basis::several || comparison_.basis == Basis::paired;
    }

    void printLayers(std::string_view title, const char* nameTitle, const GraphComparison& graph,
                     const std::vector<analysis::LayerChange>& changes) {
        if (changes.empty()) {
            return;
        }
        out_ << '\n' << title << '\n';
        if (graph.shared) {
            printSentence("  ", sharedWords(*graph.shared));
        }
        const ShownRows rows = shownRows(changes, options_.hideBelow, options_.rows);
        printFitting([&](const Shape& shape) {
            ChangeTable table(ConsoleTable(left(nameTitle), right("Base us", shape.hasTimes),
                                           right("New us", shape.hasTimes), right("Change us"),
                                           right("Change"), right("Beyond", graph.shared.has_value()),
                                           right("p", isSure() && shape.hasP), left("")));
            const auto add = [&](const analysis::LayerChange& row, const std::string& change,
                                 const std::string& beyond) {
                table.add(row.verdict, name(row.name, shape.nameColumns), timeOf(row, row.baseUs),
                          timeOf(row, row.newUs), changeUsOf(row), change, beyond, pText(row.p),
                          wordOf(row.verdict));
            };
            for (const analysis::LayerChange* const row : rows.shown) {
                add(*row, changeOf(*row, comparison_.basis, graph.shared.has_value()), beyondOf(*row));
            }
            if (rows.hidden != 0) {
                add(rows.others, "", "");
            }
            add(rows.sum, "", "");
            return table;
        });
    }

    std::ostream& out_;
    const Comparison& comparison_;
    const ComparisonTextOptions& options_;
};

}  // namespace

void printComparison(std::ostream& out, const Comparison& comparison, const ComparisonTextOptions& options) {
    ComparisonPrinter(out, comparison, options).print();
}

}  // namespace zeb::forms
