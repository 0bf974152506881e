#include "analysis/Inference.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>

#include "analysis/FigureText.h"
#include "analysis/Spread.h"
#include "text/Saturation.h"

namespace zeb::analysis {

namespace {

void addLayerSums(Graph& graph) {
    LayerSums& sums = graph.layers;
    sums = {};
    std::uint64_t seenByDspUs = 0;
    std::uint64_t countedUs = 0;
    for (const OruLayer& layer : graph.oruLayers) {
        seenByDspUs += layer.averageUs;
        countedUs += layer.timeUs();
    }
    sums.handingOverUs = profiling::differenceOrZero(seenByDspUs, countedUs);
    if (!graph.zebLayers.empty()) {
        sums.kind = LayerKind::zeb;
    } else if (!graph.oruLayers.empty()) {
        sums.kind = LayerKind::oru;
    }
    forEachLayer(graph, [&sums](const auto& layer) {
        sums.dspUs += layer.onDspUs();
        sums.krelUs += layer.onKrelUs();
    });
}

double sumOf(const std::vector<Part>& parts) {
    return std::accumulate(parts.begin(), parts.end(), 0.0,
                           [](double sum, const Part& part) { return sum + part.us; });
}

class InferenceTree {
public:
    explicit InferenceTree(const Graph& graph) : graph_(graph) {}

    Part make() const {
        Part inference =
            partOf("Marlix", PartKind::inference, static_cast<double>(graph_.average.durationUs));
        if (!graph_.breakdown) {
            return withEvents(std::move(inference));
        }
        const double waitUs = static_cast<double>(graph_.breakdown->queueWaitUs.value_or(0));
        if (!graph_.breakdown->queueWaitUs) {
            return marlix(inference.us, 0.0);
        }
        inference.name = "Marlix with queue wait";
        inference.parts.push_back(marlix(std::max(0.0, inference.us - waitUs), waitUs));
        inference.parts.push_back(partOf("Queue wait", PartKind::queueWait, waitUs));
        explainExcess(inference);
        return inference;
    }

private:
    static Part partOf(std::string name, PartKind kind, double us) {
        Part part;
        part.name = std::move(name);
        part.kind = kind;
        part.us = us;
        return part;
    }

    // The time of the backend's call holds the queue wait, as the caller's does.
    [[nodiscard]] Part marlix(double us, double waitUs) const {
        Part marlix = partOf("Marlix", PartKind::inference, us);
        if (!graph_.breakdown->backendUs) {
            marlix.parts = backendParts();
            addRest(marlix, "not accounted for");
            return marlix;
        }
        Part backend = partOf("Backend", PartKind::backend,
                              std::max(0.0, static_cast<double>(*graph_.breakdown->backendUs) - waitUs));
        backend.parts = backendParts();
        addRest(backend, "not accounted for");
        marlix.parts.push_back(std::move(backend));
        addRest(marlix, "outside the backend");
        return marlix;
    }

    [[nodiscard]] std::vector<Part> backendParts() const {
        const Breakdown& breakdown = *graph_.breakdown;
        std::vector<Part> parts;
        const auto add = [&parts](const char* name, PartKind kind, const auto& us) {
            if (us) {
                parts.push_back(partOf(name, kind, static_cast<double>(*us)));
            }
        };
        add("Accelerator", PartKind::accelerator, breakdown.acceleratorUs);
        if (!parts.empty()) {
            addLayers(parts.back());
        }
        add("IPC", PartKind::host, breakdown.ipcUs);
        add("Input tensor copy", PartKind::host, breakdown.inputCopyUs);
        add("Output tensor copy", PartKind::host, breakdown.outputCopyUs);
        return parts;
    }

    void addLayers(Part& accelerator) const {
        const LayerSums& layers = graph_.layers;
        if (layers.timeUs() == 0) {
            return;
        }
        accelerator.parts = {
            partOf("Layers on the Krel core", PartKind::krel, static_cast<double>(layers.krelUs)),
            partOf("Layers on the DSP", PartKind::dsp, static_cast<double>(layers.dspUs)),
            partOf("Handing over", PartKind::handingOver, static_cast<double>(layers.handingOverUs))};
        addRest(accelerator, "in no layer");
    }

    // What the parts leave of the whole, once they are known.
    void addRest(Part& whole, const char* name) const {
        if (!whole.parts.empty()) {
            explainExcess(whole);
            whole.parts.push_back(partOf(name, PartKind::rest, std::max(0.0, whole.us - sumOf(whole.parts))));
        }
    }

    // Averages are cut to whole microseconds, which makes less than one of a difference.
    void explainExcess(Part& whole) const {
        const double excessUs = sumOf(whole.parts) - whole.us;
        if (excessUs < 1.0) {
            return;
        }
        whole.note = "The parts of " + whole.name + " take " + timeText(excessUs) + " more than it";
        if (graph_.breakdown && graph_.breakdown->executionCount != graph_.spread.count) {
            const std::uint64_t timed = graph_.spread.count;
            whole.note += ": Marlix is the average of " + counted(timed, "execution") +
                          ", the backend's figures are of " +
                          std::to_string(graph_.breakdown->executionCount) + ".";
        } else {
            whole.note += ", and the log does not tell why.";
        }
    }

    // Without data of the backend there is what the log has of its own: the average execution's events.
    [[nodiscard]] Part withEvents(Part inference) const {
        inference.parts = partsOf(graph_.average.events, 1);
        addRest(inference, "not accounted for");
        return inference;
    }

    static std::optional<double> timeOf(const Event& event) {
        if (event.unit != profiling::EventUnit::microseconds) {
            return std::nullopt;
        }
        if (const auto* const us = std::get_if<std::uint64_t>(&event.value)) {
            return static_cast<double>(*us);
        }
        if (const auto* const us = std::get_if<double>(&event.value)) {
            return std::isfinite(*us) && *us >= 0.0 ? std::optional(*us) : std::nullopt;
        }
        const auto* const us = std::get_if<std::int64_t>(&event.value);
        return us != nullptr && *us >= 0 ? std::optional(static_cast<double>(*us)) : std::nullopt;
    }

    // Of many events the first are told apart, and the others are one part.
    [[nodiscard]] std::vector<Part> partsOf(const std::vector<Event>& events, int depth) const {
        constexpr int maxDepth = 4;
        constexpr std::size_t maxParts = 12;
        std::vector<Part> parts;
        std::size_t others = 0;
        double othersUs = 0.0;
        for (const Event& event : events) {
            const auto us = timeOf(event);
            if (!us) {
                continue;
            }
            if (parts.size() == maxParts) {
                ++others;
                othersUs += *us;
                continue;
            }
            Part& part = parts.emplace_back(partOf(std::string(event.name.text()), PartKind::event, *us));
            if (depth < maxDepth) {
                part.parts = partsOf(event.events, depth + 1);
                explainExcess(part);
            }
        }
        if (others > 0) {
            parts.push_back(partOf(othersName(others), PartKind::event, othersUs));
        }
        return parts;
    }

    const Graph& graph_;
};

std::uint64_t totalOf(const std::vector<std::optional<std::uint64_t>>& durations) {
    std::uint64_t sum = 0;
    for (const auto& us : durations) {
        sum = profiling::sumOrMost(sum, us.value_or(0));
    }
    return sum;
}

}  // namespace

void addDerivedFigures(Graph& graph) {
    graph.totalUs = totalOf(graph.executions.durationUs);
    graph.outliers = outliersOf(graph.executions, graph.spread);
    addLayerSums(graph);
    graph.inference = InferenceTree(graph).make();
}

}  // namespace zeb::analysis
