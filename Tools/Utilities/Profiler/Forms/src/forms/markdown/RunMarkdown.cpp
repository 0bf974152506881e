#include "forms/markdown/RunMarkdown.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/FigureText.h"
#include "forms/markdown/MarkdownText.h"

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
using Cells = std::vector<std::string>;

constexpr std::size_t maxLayers = 10;
constexpr std::size_t maxTypes = 20;
constexpr std::size_t maxParts = 40;
constexpr std::size_t maxLabels = 20;

std::string shareText(double part, double whole) {
    return whole > 0.0 ? percentText(percentOf(part, whole)) : "";
}

std::string timeSection(const Run& run, const Graph& graph) {
    const analysis::Spread& spread = graph.spread;
    const std::string head = "### Graph " + markdownName(graph.name, false) + "\n\n";
    if (spread.count == 0) {
        return head + "No execution of this graph has both times.\n\n";
    }
    Cells titles = {"Executions"};
    Cells cells = {std::to_string(spread.count)};
    const auto add = [&](std::string_view title, const std::optional<double>& value) {
        if (value) {
            titles.push_back(std::string(title) + " us");
            cells.push_back(usDigits(*value));
        }
    };
    for (std::size_t position = 0; position < std::size(analysis::quantiles); ++position) {
        add(analysis::quantiles[position].title, spread.shownUs(position));
    }
    add("First", spread.firstUs);
    return head + "**An inference takes " + timeText(spread.medianUs()) +
           (run.isAsync ? " with queue wait" : "") + "**, the median of " +
           counted(spread.count, "execution") + ".\n\n" + markdownTable(titles, {cells}) + '\n';
}

// The parts of an inference, each below what it is part of.
class PartRows {
public:
    explicit PartRows(const Part& whole) : wholeUs_(whole.us) { add(whole, 0); }

    [[nodiscard]] std::string text() const {
        const std::string more = leftOut_ == 0 ? "" : "\nand " + counted(leftOut_, "part") + " more\n";
        return markdownTable({"Where an inference goes, on average", "us", "Share"}, rows_) + more + '\n' +
               (notes_.empty() ? "" : markdownList(notes_) + '\n');
    }

private:
    void add(const Part& part, std::size_t depth) {
        if (!part.note.empty()) {
            notes_.push_back(part.note);
        }
        if (rows_.size() == maxParts) {
            ++leftOut_;
        } else {
            std::string name;
            for (std::size_t level = 0; level < depth; ++level) {
                name += "&emsp;";
            }
            name += part.kind == PartKind::event ? markdownName(part.name, true) : part.name;
            rows_.push_back({std::move(name), usDigits(part.us), shareText(part.us, wholeUs_)});
        }
        for (const Part& inner : part.parts) {
            add(inner, depth + 1);
        }
    }

    double wholeUs_;
    std::vector<Cells> rows_;
    std::vector<std::string> notes_;
    std::size_t leftOut_ = 0;
};

struct LayerCost {
    std::string name;
    std::uint64_t dspUs = 0;
    std::uint64_t krelUs = 0;

    [[nodiscard]] std::uint64_t timeUs() const { return dspUs + krelUs; }
};

std::string layersSection(const Graph& graph) {
    std::vector<LayerCost> layers;
    forEachLayer(graph, [&layers](const auto& layer) {
        layers.push_back({layerName(layer), layer.onDspUs(), layer.onKrelUs()});
    });
    if (layers.empty()) {
        return "The log has no data on layers.\n\n";
    }
    std::stable_sort(layers.begin(), layers.end(), [](const LayerCost& left, const LayerCost& right) {
        return left.timeUs() > right.timeUs();
    });
    const auto wholeUs = static_cast<double>(graph.layers.timeUs());
    std::vector<Cells> rows;
    const auto addRow = [&](std::string name, const LayerCost& cost) {
        rows.push_back({std::move(name), std::to_string(cost.timeUs()),
                        shareText(static_cast<double>(cost.timeUs()), wholeUs), std::to_string(cost.dspUs),
                        std::to_string(cost.krelUs)});
    };
    LayerCost others{"", graph.layers.dspUs, graph.layers.krelUs};
    const std::size_t shown = std::min(maxLayers, layers.size());
    for (std::size_t position = 0; position < shown; ++position) {
        const LayerCost& layer = layers[position];
        others.dspUs -= layer.dspUs;
        others.krelUs -= layer.krelUs;
        addRow(markdownName(layer.name, true), layer);
    }
    if (shown < layers.size()) {
        addRow(othersName(layers.size() - shown), others);
    }
    addRow("Sum", {"", graph.layers.dspUs, graph.layers.krelUs});
    const bool areZeb = graph.layers.kind == analysis::LayerKind::zeb;
    return markdownTable({areZeb ? "Costliest ZEB layers" : "Costliest ORU layers", "us", "Share",
                          "on the DSP us", "on Krel us"},
                         rows) +
           '\n';
}

std::string typesSection(const Graph& graph) {
    if (graph.layerTypes.empty()) {
        return "";
    }
    double wholeUs = 0.0;
    std::vector<Cells> rows;
    analysis::LayerType others;
    for (const analysis::LayerType& type : graph.layerTypes) {
        wholeUs += static_cast<double>(type.timeUs);
    }
    const auto addRow = [&](std::string name, const analysis::LayerType& type) {
        rows.push_back({std::move(name), std::to_string(type.dspLayers), std::to_string(type.krelLayers),
                        std::to_string(type.timeUs), shareText(static_cast<double>(type.timeUs), wholeUs)});
    };
    for (const analysis::LayerType& type : graph.layerTypes) {
        if (rows.size() < maxTypes) {
            addRow(markdownName(type.name, true), type);
        } else {
            others.dspLayers += type.dspLayers;
            others.krelLayers += type.krelLayers;
            others.timeUs += type.timeUs;
        }
    }
    if (graph.layerTypes.size() > maxTypes) {
        addRow(othersName(graph.layerTypes.size() - maxTypes), others);
    }
    return markdownFold("ORU layers by type",
                        markdownTable({"Type", "Layers on the DSP", "Layers on Krel", "us", "Share"}, rows)) +
           '\n';
}

// What is paid once stands apart from what every inference pays.
std::string findingsSection(const std::vector<analysis::Finding>& findings) {
    std::string section;
    for (const bool isOnce : {false, true}) {
        std::vector<std::string> sentences;
        for (const analysis::Finding& finding : findings) {
            if ((finding.group == FindingGroup::once) == isOnce) {
                sentences.push_back(finding.text);
            }
        }
        if (!sentences.empty()) {
            section += std::string(isOnce ? "Paid once:" : "What stands out:") + "\n\n" +
                       markdownList(sentences) + '\n';
        }
    }
    return section;
}

// Of one graph the run is told with it.
bool isOneGraph(const Run& run) {
    return run.graphs.size() == 1;
}

std::string graphSection(const Run& run, const Graph& graph) {
    const bool isTimed = graph.spread.count != 0;
    std::vector<analysis::Finding> findings = graph.findings;
    if (isOneGraph(run)) {
        findings.insert(findings.end(), run.findings.begin(), run.findings.end());
    }
    return timeSection(run, graph) + (isTimed ? PartRows(graph.inference).text() : "") +
           layersSection(graph) + findingsSection(findings) + typesSection(graph);
}

std::string labelsOf(const Run& run) {
    std::string text;
    std::size_t count = 0;
    for (const auto& [key, value] : run.labels) {
        if (++count <= maxLabels) {
            text += (count == 1 ? "" : ", ") + markdownName(key + '=' + value, false);
        }
    }
    return count <= maxLabels ? text : text + " and " + std::to_string(count - maxLabels) + " more";
}

std::string endOf(const Run& run) {
    const bool hasFindings = !isOneGraph(run) && !run.findings.empty();
    std::string end = hasFindings ? "### The run as a whole\n\n" + findingsSection(run.findings) : "";
    end += "Log: " + markdownName(run.logFile, false);
    const auto add = [&end](const char* fact, const std::string& value) {
        end += std::string("\\\n") + fact + ": " + markdownName(value, false);
    };
    if (run.header) {
        add("Runtime", run.header->generatorName + ' ' + run.header->generatorVersion);
        add("Backend", run.header->backendVersion);
    }
    if (run.level) {
        add("Level", std::string(nameOf(*run.level)));
    }
    if (!run.labels.empty()) {
        end += "\\\nLabels: " + labelsOf(run);
    }
    return end + '\n';
}

}  // namespace

void writeRunMarkdown(std::ostream& out, const Run& run) {
    MarkdownDocument document(endOf(run));
    document.add(std::string("## Profile of a run\n\n") +
                 (run.graphs.empty() ? "No graph was executed.\n\n" : ""));
    for (const Graph& graph : run.graphs) {
        document.add(graphSection(run, graph));
    }
    out << document.text("graph", "graphs");
}

}  // namespace zeb::forms
