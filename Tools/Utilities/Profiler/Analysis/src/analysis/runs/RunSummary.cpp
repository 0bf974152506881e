#include "analysis/runs/RunSummary.h"

#include <algorithm>
#include <iterator>

#include "analysis/MakeRun.h"
#include "analysis/RunId.h"
#include "analysis/Spread.h"

namespace zeb::analysis {

namespace {

constexpr std::string_view totalNames[totalCount] = {
    "Marlix, median", "Marlix, average", "Backend", "Accelerator", "Outside accelerator", "IPC",
    "Copies",         "Queue wait",      "Init",    "Finalize",    "ZEB layers"};

constexpr std::string_view namesWithQueueWait[totalCount] = {"Marlix with queue wait, median",
                                                             "Marlix with queue wait, average",
                                                             "Backend with queue wait",
                                                             "Accelerator",
                                                             "Outside accelerator with queue wait",
                                                             "IPC",
                                                             "Copies",
                                                             "Queue wait",
                                                             "Init",
                                                             "Finalize",
                                                             "ZEB layers"};

std::optional<double> asTime(const std::optional<std::uint64_t>& us) {
    return us ? std::optional(static_cast<double>(*us)) : std::nullopt;
}

void addTo(std::optional<double>& sum, const std::optional<double>& us) {
    if (us) {
        sum = sum.value_or(0.0) + *us;
    }
}

template <typename Rows, typename Time>
std::vector<LayerTime> timesOf(const Rows& rows, Time time) {
    std::vector<LayerTime> times;
    times.reserve(rows.size());
    for (const auto& row : rows) {
        times.push_back({row.name, static_cast<double>(time(row))});
    }
    return times;
}

void addExecutions(GraphSummary& summary, const Executions& all) {
    Executions withoutFirst;
    if (all.count() > 1) {
        withoutFirst.durationUs.assign(all.durationUs.begin() + 1, all.durationUs.end());
    }
    Spread spread = spreadOf(withoutFirst);
    if (spread.count == 0) {
        spread = spreadOf(all);
    }
    if (spread.count != 0) {
        summary.totalsUs[static_cast<std::size_t>(Total::marlix)] = spread.medianUs();
    }
    summary.spread = spread;
    summary.spread.firstUs.reset();  // the warm-up, which is no part of it
}

// Events may be many, and tell how the log was written more than where an inference goes.
Part withoutEvents(const Part& part) {
    Part kept;
    kept.name = part.name;
    kept.us = part.us;
    kept.kind = part.kind;
    const bool areEvents = std::any_of(part.parts.begin(), part.parts.end(),
                                       [](const Part& inner) { return inner.kind == PartKind::event; });
    if (!areEvents) {
        std::transform(part.parts.begin(), part.parts.end(), std::back_inserter(kept.parts), withoutEvents);
    }
    return kept;
}

GraphSummary summaryOf(const Run& run, const Graph& graph) {
    GraphSummary summary;
    summary.name = graph.name;
    summary.holdsQueueWait = run.isAsync || (graph.breakdown && graph.breakdown->queueWaitUs);
    summary.inference = withoutEvents(graph.inference);
    summary.layers = timesOf(graph.zebLayers, [](const ZebLayer& layer) { return layer.timeUs(); });
    summary.types = timesOf(graph.layerTypes, [](const LayerType& type) { return type.timeUs; });
    summary.dspClockHz = graph.dspClockHz;
    summary.krelClockHz = graph.krelClockHz;
    const auto set = [&summary](Total total, const std::optional<double>& us) {
        summary.totalsUs[static_cast<std::size_t>(total)] = us;
    };
    addExecutions(summary, graph.executions);
    if (const auto& breakdown = graph.breakdown) {
        std::optional<double> copiesUs = breakdown->inputCopyUs;
        addTo(copiesUs, breakdown->outputCopyUs);
        set(Total::backend, asTime(breakdown->backendUs));
        set(Total::accelerator, asTime(breakdown->acceleratorUs));
        set(Total::ipc, asTime(breakdown->ipcUs));
        set(Total::copies, copiesUs);
        set(Total::queueWait, asTime(breakdown->queueWaitUs));
    }
    if (summary.spread.count != 0) {
        set(Total::average, static_cast<double>(graph.average.durationUs));
    }
    const auto& averageUs = summary.totalUs(Total::average);
    if (const auto& acceleratorUs = summary.totalUs(Total::accelerator); averageUs && acceleratorUs) {
        set(Total::outside, std::max(0.0, *averageUs - *acceleratorUs));
    }
    set(Total::init, asTime(run.initUs));
    set(Total::finalize, asTime(graph.finalizeUs));
    std::optional<double> layersUs;
    for (const LayerTime& layer : summary.layers) {
        addTo(layersUs, layer.us);
    }
    set(Total::layers, layersUs);
    return summary;
}

}  // namespace

std::string_view nameOf(Total total) {
    return nameOf(total, false);
}

std::string_view nameOf(Total total, bool holdsQueueWait) {
    return (holdsQueueWait ? namesWithQueueWait : totalNames)[static_cast<std::size_t>(total)];
}

RunSummary summarize(const Run& run) {
    RunSummary summary;
    summary.logFile = run.logFile;
    summary.runId = run.runId;
    summary.idOfFigures = runIdOfFigures(run);
    summary.labels = run.labels;
    summary.level = run.level;
    summary.isAsync = run.isAsync;
    summary.lacksStart = !run.initUs && std::any_of(run.steps.begin(), run.steps.end(), isOfInit);
    if (run.header) {
        summary.generator = run.header->generatorName + ' ' + run.header->generatorVersion;
        summary.backendVersion = run.header->backendVersion;
        summary.epochUs = run.header->epochUs;
    }
    summary.graphs.reserve(run.graphs.size());
    for (const Graph& graph : run.graphs) {
        summary.graphs.push_back(summaryOf(run, graph));
    }
    return summary;
}

}  // namespace zeb::analysis
