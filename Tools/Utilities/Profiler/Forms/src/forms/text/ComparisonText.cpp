#include "forms/text/ComparisonText.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "forms/text/ConsoleText.h"
#include "text/NumberText.h"

namespace zeb::forms {

namespace {

using analysis::Basis;
using analysis::Comparison;
using analysis::GraphComparison;
using analysis::LayerChange;
using analysis::TotalChange;
using analysis::Verdict;
using profiling::fixedPoint;

constexpr std::size_t mostNameColumns = 48;
constexpr std::size_t mostTextColumns = 1000;  // of a warning
constexpr std::size_t mostLogsNamed = 3;
constexpr std::string_view unsure = "~";

std::string us(double value) {
    return fixedPoint(value, 1);
}

std::string withSign(double value, const std::string& text) {
    return (value > 0.0 ? "+" : "") + text;
}

std::string changeUs(double value) {
    return withSign(value, us(value));
}

std::string percent(double share) {
    return withSign(share, fixedPoint(share * 100.0, 1)) + '%';
}

std::string pText(const std::optional<double>& p) {
    if (!p) {
        return "";
    }
    return *p < 0.001 ? "<0.001" : fixedPoint(*p, 3);
}

std::string rangeText(const analysis::Range& range, std::size_t logs) {
    if (logs == 0) {
        return "-";
    }
    return us(range.median) + (logs == 1 ? "" : " (" + us(range.min) + " to " + us(range.max) + ")");
}

std::string changeText(const std::optional<double>& change, Verdict verdict) {
    if (verdict == Verdict::unsure) {
        return std::string(unsure);
    }
    return change ? percent(*change) : "";
}

std::string counted(std::size_t count, std::string_view one, std::string_view several) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? one : several);
}

// A table whose rows have the colour of their verdict.
class ChangeTable {
public:
    explicit ChangeTable(const std::vector<ConsoleTable::Column>& columns) : table_(columns) {}

    void add(std::vector<std::string> cells, Verdict verdict) {
        table_.add(std::move(cells));
        verdicts_.push_back(verdict);
    }

    void print(std::ostream& out, bool hasColour) const {
        const std::vector<std::string> lines = table_.lines(2);
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

    ConsoleTable table_;
    std::vector<Verdict> verdicts_;
};

class ComparisonPrinter {
public:
    ComparisonPrinter(std::ostream& out, const Comparison& comparison, const ComparisonTextOptions& options)
        : out_(out), comparison_(comparison), options_(options) {}

    void print() {
        printHead();
        for (const GraphComparison& graph : comparison_.graphs) {
            out_ << "\nGraph " << name(graph.newName) << '\n';
            printExecutions(graph);
            printTotals(graph);
            printLayers("ZEB layers", "Layer", graph.layers);
            printLayers("ORU layers by type", "Type", graph.types);
        }
        if (comparison_.graphs.empty()) {
            out_ << "\nNo graph was executed on both sides, so there is nothing to compare.\n";
        }
        for (const std::string& graph : comparison_.goneGraphs) {
            out_ << "\nGraph " << name(graph) << " is gone: the base alone has it.\n";
        }
        for (const std::string& graph : comparison_.addedGraphs) {
            out_ << "\nGraph " << name(graph) << " is new: the base does not have it.\n";
        }
    }

private:
    [[nodiscard]] std::string name(const std::string& text) const {
        return shownName(text, mostNameColumns, options_.hasUnicode);
    }

    void printSide(std::string_view label, const std::vector<std::string>& logs) {
        out_ << label << counted(logs.size(), "log", "logs") << ": ";
        for (std::size_t log = 0; log < std::min(logs.size(), mostLogsNamed); ++log) {
            out_ << (log == 0 ? "" : ", ") << name(logs[log]);
        }
        if (logs.size() > mostLogsNamed) {
            out_ << " and " << logs.size() - mostLogsNamed << " more";
        }
        out_ << '\n';
    }

    void printHead() {
        printSide("Base  ", comparison_.baseLogs);
        printSide("New   ", comparison_.newLogs);
        const std::string fewest = std::to_string(analysis::minLogs);
        switch (comparison_.basis) {
            case Basis::oneEach:
                out_ << "One log against one: a difference between runs can't be told from one between "
                        "versions.\n"
                     << "With " << fewest << " logs or more of each it can.\n";
                break;
            case Basis::tooFew:
                out_ << "Too few logs: it takes " << fewest
                     << " or more of each to tell a change from chance, so every change is \"~\".\n";
                break;
            case Basis::several:
                out_ << "A change stands where it is sure, else \"~\"; the interval holds the true change "
                        "of a total with 95%.\n";
                break;
        }
        for (const std::string& warning : comparison_.warnings) {
            out_ << "Warning: " << shownName(warning, mostTextColumns, options_.hasUnicode) << '\n';
        }
    }

    void printExecutions(const GraphComparison& graph) {
        if (!graph.executions) {
            return;
        }
        out_ << "\nExecutions, without the first\n";
        std::vector<ConsoleTable::Column> columns = {{"", Side::left}, {"Count", Side::right}};
        for (const analysis::Quantile& quantile : analysis::quantiles) {
            columns.push_back({std::string(quantile.title) + " us", Side::right});
        }
        ConsoleTable table(std::move(columns));
        const auto add = [&table](const char* side, const analysis::Spread& spread) {
            std::vector<std::string> cells = {side, std::to_string(spread.count)};
            for (std::size_t position = 0; position < std::size(analysis::quantiles); ++position) {
                const std::optional<double> shown = spread.shownUs(position);
                cells.push_back(shown ? us(*shown) : "-");
            }
            table.add(std::move(cells));
        };
        add("Base", graph.executions->first);
        add("New", graph.executions->second);
        for (const std::string& line : table.lines(2)) {
            out_ << line << '\n';
        }
    }

    void printTotals(const GraphComparison& graph) {
        out_ << "\nTotals\n";
        ChangeTable table(columns("", {"95% interval", "p"}));
        for (const TotalChange& row : graph.totals) {
            const bool isOnBoth = row.baseLogs != 0 && row.newLogs != 0;
            add(table,
                {std::string(nameOf(row.total)), rangeText(row.base, row.baseLogs),
                 rangeText(row.changed, row.newLogs), isOnBoth ? changeUs(row.changeUs()) : "-",
                 changeText(row.change, row.verdict)},
                {row.interval ? percent(row.interval->low) + " to " + percent(row.interval->high) : "",
                 pText(row.p)},
                row.verdict);
        }
        table.print(out_, options_.hasColour);
    }

    // A table's columns; `sure` are those on how sure a change is, which it takes several logs a side to
    // tell.
    [[nodiscard]] std::vector<ConsoleTable::Column> columns(const char* name,
                                                            const std::vector<const char*>& sure) const {
        std::vector<ConsoleTable::Column> all = {{name, Side::left},
                                                 {"Base us", Side::right},
                                                 {"New us", Side::right},
                                                 {"Change us", Side::right},
                                                 {"Change", Side::right}};
        if (isSeveral()) {
            for (const char* const title : sure) {
                all.push_back({title, Side::right});
            }
        }
        all.push_back({"", Side::left});
        return all;
    }

    void add(ChangeTable& table, std::vector<std::string> cells, const std::vector<std::string>& sure,
             Verdict verdict) const {
        if (isSeveral()) {
            cells.insert(cells.end(), sure.begin(), sure.end());
        }
        cells.emplace_back(verdict == Verdict::unsure ? "" : nameOf(verdict));
        table.add(std::move(cells), verdict);
    }

    [[nodiscard]] bool isSeveral() const { return comparison_.basis == Basis::several; }

    void printLayers(std::string_view title, const char* nameTitle, const std::vector<LayerChange>& rows) {
        if (rows.empty()) {
            return;
        }
        LayerChange sum{.name = "Sum", .change = {}, .p = {}};
        for (const LayerChange& row : rows) {
            sum.baseUs += row.baseUs;
            sum.newUs += row.newUs;
        }
        out_ << '\n' << title << '\n';
        ChangeTable table(columns(nameTitle, {"p"}));
        LayerChange others{.name = {}, .change = {}, .p = {}};
        std::size_t hidden = 0;
        for (const LayerChange& row : rows) {
            if (std::abs(row.changeUs()) < options_.hideBelow * sum.baseUs) {
                ++hidden;
                others.baseUs += row.baseUs;
                others.newUs += row.newUs;
            } else {
                add(table, row, changeText(row.change, row.verdict));
            }
        }
        if (hidden != 0) {
            others.name = '[' + counted(hidden, "other", "others") + ']';
            add(table, others, "");
        }
        add(table, sum, "");
        table.print(out_, options_.hasColour);
    }

    void add(ChangeTable& table, const LayerChange& row, const std::string& change) const {
        add(table, {name(row.name), us(row.baseUs), us(row.newUs), changeUs(row.changeUs()), change},
            {pText(row.p)}, row.verdict);
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
