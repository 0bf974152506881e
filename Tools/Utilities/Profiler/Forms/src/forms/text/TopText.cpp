#include "forms/text/TopText.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/FigureText.h"
#include "analysis/Glossary.h"
#include "console/ConsoleText.h"
#include "forms/text/QuantileColumns.h"

namespace zeb::forms {

namespace {

using analysis::counted;
using analysis::FindingGroup;
using analysis::Graph;
using analysis::othersName;
using analysis::Part;
using analysis::PartKind;
using analysis::percentOf;
using analysis::percentText;
using analysis::Run;
using analysis::timeText;
using analysis::usDigits;
using analysis::ZebLayer;
using console::columnsOf;
using console::ConsoleStyle;
using console::ConsoleTable;
using console::left;
using console::right;
using console::shownName;
using console::wrapped;

constexpr std::size_t indentation = 2;  // of tables
constexpr std::size_t barWidth = 24;
constexpr std::size_t maxNameColumns = 48;  // where no terminal says less
constexpr std::size_t minNameColumns = 12;
constexpr std::size_t maxTypes = 12;

std::string us(double value) {
    return usDigits(value) + " us";
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return lower;
}

// What a console can show of it.
class Style {
public:
    explicit Style(const ConsoleStyle& style) : style_(style) {}

    [[nodiscard]] std::string strong(const std::string& text) const { return coloured("\x1B[1m", text); }
    [[nodiscard]] std::string dim(const std::string& text) const { return coloured("\x1B[2m", text); }
    [[nodiscard]] std::string dsp(const std::string& text) const { return coloured("\x1B[33m", text); }
    [[nodiscard]] std::string krel(const std::string& text) const { return coloured("\x1B[36m", text); }

    [[nodiscard]] std::string name(std::string_view name, std::size_t besideIt) const {
        const std::size_t room =
            style_.width ? *style_.width - std::min(*style_.width, besideIt) : maxNameColumns;
        return shownName(name, std::clamp(room, minNameColumns, maxNameColumns), style_.hasUnicode);
    }

    /// A bar of two parts, each of its own character, so that they are told apart without colour.
    [[nodiscard]] std::string bar(double dspShare, double krelShare) const {
        const std::size_t all = cells(dspShare + krelShare);
        const std::size_t krelCells = std::min(all, cells(krelShare));
        return krel(repeated(style_.hasUnicode ? "\xE2\x96\x88" : "#", krelCells)) +
               dsp(repeated(style_.hasUnicode ? "\xE2\x96\x92" : "=", all - krelCells));
    }

    [[nodiscard]] std::string bar(double share) const {
        return repeated(style_.hasUnicode ? "\xE2\x96\x86" : "-", cells(share));
    }

    [[nodiscard]] std::string legend() const {
        return krel(style_.hasUnicode ? "\xE2\x96\x88" : "#") + " Krel core, " +
               dsp(style_.hasUnicode ? "\xE2\x96\x92" : "=") + " DSP";
    }

    [[nodiscard]] std::string_view branch(bool isLast) const {
        if (style_.hasUnicode) {
            return isLast ? "\xE2\x94\x94\xE2\x94\x80 " : "\xE2\x94\x9C\xE2\x94\x80 ";
        }
        return isLast ? "`- " : "|- ";
    }
    [[nodiscard]] std::string_view trunk(bool isLast) const {
        if (isLast) {
            return "   ";
        }
        return style_.hasUnicode ? "\xE2\x94\x82  " : "|  ";
    }
    [[nodiscard]] std::string_view bullet() const { return style_.hasUnicode ? "\xE2\x80\xA2 " : "- "; }

    /// @return whether a line of that many columns fits
    [[nodiscard]] bool hasRoomFor(std::size_t columns) const {
        return !style_.width || columns <= *style_.width;
    }

    [[nodiscard]] bool hasUnicode() const { return style_.hasUnicode; }
    /// For running text.
    [[nodiscard]] std::size_t width() const { return std::max<std::size_t>(style_.width.value_or(100), 40); }

private:
    [[nodiscard]] std::string coloured(std::string_view code, const std::string& text) const {
        return style_.hasColour && !text.empty() ? std::string(code) + text + "\x1B[0m" : text;
    }

    static std::size_t cells(double share) {
        return static_cast<std::size_t>(std::lround(std::clamp(share, 0.0, 1.0) * barWidth));
    }

    static std::string repeated(std::string_view part, std::size_t count) {
        std::string text;
        for (; count > 0; --count) {
            text += part;
        }
        return text;
    }

    const ConsoleStyle& style_;
};

// A table's lines, the titles dimmed, with bars behind the rows that have one.
void printTable(std::ostream& out, const Style& style, const std::vector<std::string>& lines,
                const std::vector<std::string>& bars) {
    std::size_t widest = 0;
    for (const std::string& line : lines) {
        widest = std::max(widest, columnsOf(line));
    }
    const bool showsBars = style.hasRoomFor(widest + 2 + barWidth);
    for (std::size_t row = 0; row < lines.size(); ++row) {
        out << (row == 0 ? style.dim(lines[row]) : lines[row]);
        if (showsBars && row > 0 && row <= bars.size() && !bars[row - 1].empty()) {
            out << std::string(widest + 2 - columnsOf(lines[row]), ' ') << bars[row - 1];
        }
        out << '\n';
    }
}

void printTitle(std::ostream& out, const Style& style, const std::string& title) {
    out << '\n' << style.strong(title) << '\n';
}

// A sentence, with its lines below one another.
void printText(std::ostream& out, const Style& style, std::string_view front, std::string_view text) {
    const std::size_t indent = columnsOf(front);
    std::string before(front);
    for (const std::string& line : wrapped(text, style.width() - indent)) {
        out << std::exchange(before, std::string(indent, ' ')) << line << '\n';
    }
}

class Tree {
public:
    Tree(const Style& style, double wholeUs) : style_(style), wholeUs_(wholeUs) {}

    void add(const Part& part, const std::string& front, const std::string& below) {
        table_.add(front + shownName(part.name, maxNameColumns, style_.hasUnicode()), us(part.us),
                   percentText(percentOf(part.us, wholeUs_)));
        bars_.push_back(barOf(part));
        if (!part.note.empty()) {
            notes_.push_back(part.note);
        }
        for (std::size_t position = 0; position < part.parts.size(); ++position) {
            const bool isLast = position + 1 == part.parts.size();
            add(part.parts[position], below + std::string(style_.branch(isLast)),
                below + std::string(style_.trunk(isLast)));
        }
    }

    void print(std::ostream& out) const {
        printTable(out, style_, table_.lines(indentation), bars_);
        for (const std::string& note : notes_) {
            printText(out, style_, "  ", note);
        }
    }

private:
    [[nodiscard]] std::string barOf(const Part& part) const {
        const double share = wholeUs_ > 0.0 ? part.us / wholeUs_ : 0.0;
        if (part.kind == PartKind::krel) {
            return style_.bar(0.0, share);
        }
        if (part.kind == PartKind::dsp) {
            return style_.bar(share, 0.0);
        }
        return style_.bar(share);
    }

    const Style& style_;
    double wholeUs_;
    ConsoleTable<3> table_{left("Part"), right("Time"), right("Share")};
    std::vector<std::string> bars_;
    std::vector<std::string> notes_;
};

void printInference(std::ostream& out, const Style& style, const Graph& graph) {
    const std::uint64_t count = graph.spread.count;
    printTitle(out, style, "Where an inference goes (averages of " + counted(count, "execution") + ')');
    Tree tree(style, graph.inference.us);
    tree.add(graph.inference, "", "");
    tree.print(out);
}

void printFinding(std::ostream& out, const Style& style, const analysis::Finding& finding) {
    constexpr std::size_t maxColumns = 400;  // a name in it may have any length
    const std::string front = "  " + std::string(style.bullet());
    printText(out, style, front, shownName(finding.text, maxColumns, style.hasUnicode()));
    printText(out, style, std::string(columnsOf(front), ' '), "Next: " + finding.next);
}

// What is paid once stands apart from what every inference pays.
void printFindings(std::ostream& out, const Style& style, const std::vector<analysis::Finding>& findings) {
    for (const bool isOnce : {false, true}) {
        const char* title = isOnce ? "Paid once" : "What stands out";
        for (const analysis::Finding& finding : findings) {
            if ((finding.group == FindingGroup::once) != isOnce) {
                continue;
            }
            if (const char* const first = std::exchange(title, nullptr)) {
                printTitle(out, style, first);
            }
            printFinding(out, style, finding);
        }
    }
}

std::vector<const ZebLayer*> orderedLayers(const Graph& graph, const TopOptions& options) {
    const std::string wanted = lowerCase(options.filter);
    std::vector<const ZebLayer*> layers;
    for (const ZebLayer& layer : graph.zebLayers) {
        if (wanted.empty() || lowerCase(layer.name).find(wanted) != std::string::npos) {
            layers.push_back(&layer);
        }
    }
    if (options.order == LayerOrder::time) {
        std::stable_sort(layers.begin(), layers.end(), [](const ZebLayer* left, const ZebLayer* right) {
            return left->timeUs() > right->timeUs();
        });
    } else if (options.order == LayerOrder::name) {
        std::stable_sort(layers.begin(), layers.end(), [](const ZebLayer* left, const ZebLayer* right) {
            return left->name < right->name;
        });
    }
    return layers;
}

constexpr std::size_t layerNumbersWidth = 64;  // of all columns but the name, bar included

void printZebLayers(std::ostream& out, const Style& style, const Graph& graph, const TopOptions& options) {
    const std::vector<const ZebLayer*> layers = orderedLayers(graph, options);
    const std::size_t shown = std::min(options.rows, layers.size());
    const double dspUs = static_cast<double>(graph.layers.dspUs);
    const double krelUs = static_cast<double>(graph.layers.krelUs);
    const double wholeUs = dspUs + krelUs;
    const std::string title = options.order == LayerOrder::time ? "Costliest ZEB layers" : "ZEB layers";
    printTitle(out, style,
               title + " (" + std::to_string(shown) + " of " + std::to_string(graph.zebLayers.size()) + ')');
    ConsoleTable table(left("Layer"), right("Time"), right("Share"), right("Sum"), right("DSP"),
                       right("Krel"));
    std::vector<std::string> bars;
    double longestUs = 0.0;
    for (const ZebLayer* const layer : std::span(layers).first(shown)) {
        longestUs = std::max(longestUs, static_cast<double>(layer->timeUs()));
    }
    double sumUs = 0.0;
    double sumDspUs = 0.0;
    double sumKrelUs = 0.0;
    for (const ZebLayer* const layer : std::span(layers).first(shown)) {
        const auto dsp = static_cast<double>(layer->dspUs);
        const auto krel = static_cast<double>(layer->krelUs);
        sumUs += dsp + krel;
        sumDspUs += dsp;
        sumKrelUs += krel;
        table.add(style.name(layer->name, layerNumbersWidth), us(dsp + krel),
                  percentText(percentOf(dsp + krel, wholeUs)), percentText(percentOf(sumUs, wholeUs)),
                  us(dsp), us(krel));
        bars.push_back(longestUs > 0.0 ? style.bar(dsp / longestUs, krel / longestUs) : "");
    }
    if (const std::size_t others = graph.zebLayers.size() - shown; others > 0) {
        table.add(othersName(others), us(wholeUs - sumUs), percentText(percentOf(wholeUs - sumUs, wholeUs)),
                  "", us(dspUs - sumDspUs), us(krelUs - sumKrelUs));
        bars.emplace_back();
    }
    table.add("Total", us(wholeUs), percentText(percentOf(wholeUs, wholeUs)), "", us(dspUs), us(krelUs));
    bars.push_back(style.legend());
    printTable(out, style, table.lines(indentation), bars);
}

std::string placeOf(const analysis::LayerType& type) {
    if (type.krelLayers == 0) {
        return "DSP";
    }
    return type.dspLayers == 0 ? "Krel"
                               : "Krel (" + std::to_string(type.krelLayers) + "), DSP (" +
                                     std::to_string(type.dspLayers) + ')';
}

void printLayerTypes(std::ostream& out, const Style& style, const Graph& graph, const TopOptions& options) {
    printTitle(out, style, "ORU layers by type");
    ConsoleTable table(left("Type"), right("Layers"), right("Time"), right("Share"), left("Runs on"));
    const std::string wanted = lowerCase(options.filter);
    std::uint64_t layers = 0;
    std::uint64_t otherLayers = 0;
    double wholeUs = 0.0;
    double otherUs = 0.0;
    for (const analysis::LayerType& type : graph.layerTypes) {
        wholeUs += static_cast<double>(type.timeUs);
    }
    std::size_t shown = 0;
    std::size_t others = 0;
    for (const analysis::LayerType& type : graph.layerTypes) {
        const std::uint64_t count = type.dspLayers + type.krelLayers;
        const auto time = static_cast<double>(type.timeUs);
        layers += count;
        const bool isWanted = wanted.empty() || lowerCase(type.name).find(wanted) != std::string::npos;
        if (!isWanted || shown == maxTypes) {
            ++others;
            otherLayers += count;
            otherUs += time;
            continue;
        }
        ++shown;
        table.add(type.name, std::to_string(count), us(time), percentText(percentOf(time, wholeUs)),
                  placeOf(type));
    }
    if (others > 0) {
        table.add(othersName(others), std::to_string(otherLayers), us(otherUs),
                  percentText(percentOf(otherUs, wholeUs)), "");
    }
    table.add("Total", std::to_string(layers), us(wholeUs), percentText(percentOf(wholeUs, wholeUs)), "");
    printTable(out, style, table.lines(indentation), {});
}

std::string signedPercent(double value) {
    return (value < 0.0 ? "" : "+") + percentText(value);
}

// One table over all graphs.
void printExecutionTimes(std::ostream& out, const Style& style, const Run& run) {
    printTitle(out, style, run.isAsync ? "Execution times with queue wait (us)" : "Execution times (us)");
    ConsoleTable table(left("Graph"), right("Count"), quantileColumns(), right("First"),
                       right("against median"));
    constexpr std::size_t numbersWidth = 72;
    for (const Graph& graph : run.graphs) {
        const analysis::Spread& spread = graph.spread;
        table.add(style.name(graph.name, numbersWidth), std::to_string(spread.count),
                  quantileCells(spread, usDigits), spread.firstUs ? usDigits(*spread.firstUs) : "-",
                  spread.firstUs
                      ? signedPercent(percentOf(*spread.firstUs - spread.medianUs(), spread.medianUs()))
                      : "-");
    }
    printTable(out, style, table.lines(indentation), {});
}

// The figure to remember of a graph: the median, for the average holds what few executions take.
void printHeadline(std::ostream& out, const Style& style, const Graph& graph) {
    const std::uint64_t count = graph.spread.count;
    if (count == 0) {
        printText(out, style, "  ", "No execution of it has both times.");
        return;
    }
    printText(out, style, "  ",
              "Time of an inference: " + timeText(graph.spread.medianUs()) + ", the median of " +
                  counted(count, "execution") + "; " +
                  timeText(static_cast<double>(graph.average.durationUs)) + " on average.");
}

void printGlossary(std::ostream& out, const Style& style) {
    std::string words;
    for (const analysis::Term& term : analysis::glossary) {
        words += (words.empty() ? "" : ". ") + std::string(term.word) + ": " + std::string(term.meaning);
    }
    printText(out, style, "  ", words + '.');
}

// All graphs, where there are several.
void printGraphs(std::ostream& out, const Style& style, const Run& run) {
    printTitle(out, style, "Graphs of the run");
    ConsoleTable table(left("Graph"), right("Median"), right("Of the run"), right("Accelerator"),
                       left("First finding"));
    constexpr std::size_t numbersWidth = 66;
    double wholeUs = 0.0;
    for (const Graph& graph : run.graphs) {
        wholeUs += static_cast<double>(graph.totalUs);
    }
    for (const Graph& graph : run.graphs) {
        const auto acceleratorUs = graph.breakdown ? graph.breakdown->acceleratorUs : std::nullopt;
        const auto averageUs = static_cast<double>(graph.average.durationUs);
        table.add(
            style.name(graph.name, numbersWidth), graph.spread.count > 0 ? us(graph.spread.medianUs()) : "-",
            percentText(percentOf(static_cast<double>(graph.totalUs), wholeUs)),
            acceleratorUs ? percentText(percentOf(static_cast<double>(*acceleratorUs), averageUs)) : "-",
            graph.findings.empty() ? "" : graph.findings.front().rule);
    }
    printTable(out, style, table.lines(indentation), {});
}

void printGraph(std::ostream& out, const Style& style, const Graph& graph, const TopOptions& options) {
    printInference(out, style, graph);
    if (!graph.zebLayers.empty()) {
        printZebLayers(out, style, graph, options);
    }
    if (!graph.layerTypes.empty()) {
        printLayerTypes(out, style, graph, options);
    }
}

}  // namespace

void printTop(std::ostream& out, const Run& run, const TopOptions& options) {
    const Style style(options.style);
    if (run.graphs.empty()) {
        out << "\nNo graph was executed in this log, so there is nothing to rank.\n";
        return;
    }
    if (run.graphs.size() > 1) {
        printGraphs(out, style, run);
    }
    for (const Graph& graph : run.graphs) {
        out << '\n' << style.strong("Graph " + style.name(graph.name, 0)) << '\n';
        printHeadline(out, style, graph);
        if (&graph == &run.graphs.front()) {
            printGlossary(out, style);
        }
        std::vector<analysis::Finding> findings = graph.findings;
        if (run.graphs.size() == 1) {
            findings.insert(findings.end(), run.findings.begin(), run.findings.end());
        }
        printFindings(out, style, findings);
        printGraph(out, style, graph, options);
    }
    if (run.graphs.size() > 1 && !run.findings.empty()) {
        printTitle(out, style, "Paid once by the run");
        for (const analysis::Finding& finding : run.findings) {
            printFinding(out, style, finding);
        }
    }
    printExecutionTimes(out, style, run);
}

}  // namespace zeb::forms
