#include "samplelog/NetworkLog.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "samplelog/BackendObjectWriter.h"
#include "samplelog/ChunkedLog.h"
#include "samplelog/EventMakers.h"
#include "samplelog/NetworkTiming.h"

namespace zeb::samplelog {

namespace {

constexpr const char* networkName = "mobilenet_v1_224";
constexpr std::uint64_t steadyClockUs = 731'204'518;

constexpr std::uint64_t libraryLoadUs = 3'214;
constexpr std::uint64_t initStepUs = 41'730;
constexpr std::uint64_t composeUs = 6'920;
constexpr std::uint64_t composeLayerUs = 83;
constexpr std::uint64_t finalizeUs = 12'400;
constexpr std::uint64_t finalizeLayerUs = 1'460;
constexpr std::uint64_t deInitUs = 8'350;
constexpr std::uint64_t pauseUs = 140;      // between two calls
constexpr std::uint64_t submissionUs = 16;  // between two asynchronous executions

// Types of the events of an execution.
constexpr std::uint32_t executionEventType = 200;
constexpr std::uint32_t profileEventType = 201;

// Sums over all executions of a graph.
struct RunTotals {
    std::uint64_t acceleratorUs = 0;
    std::uint64_t dspGraphUs = 0;
    std::uint64_t hlosUs = 0;
    std::uint64_t backendUs = 0;
    std::uint64_t inputCopyNs = 0;
    std::uint64_t outputCopyNs = 0;
    std::uint64_t graphQueueWaitUs = 0;
    std::uint64_t dispatcherQueueWaitUs = 0;

    void add(const ExecutionTimes& times) {
        acceleratorUs += times.acceleratorUs;
        dspGraphUs += times.dspGraphUs;
        hlosUs += times.hlosUs;
        backendUs += times.backendUs;
        inputCopyNs += times.inputCopyNs;
        outputCopyNs += times.outputCopyNs;
        graphQueueWaitUs += times.graphQueueWaitUs;
        dispatcherQueueWaitUs += times.dispatcherQueueWaitUs;
    }
};

std::string graphName(std::uint32_t graph) {
    return graph == 0 ? networkName : std::string(networkName) + "_" + std::to_string(graph + 1);
}

Bytes layerConfigObject(const Network& network, bool withLayers) {
    LayerConfig config{.krelClockHz = krelClockHz, .dspClockHz = dspClockHz, .layerCount = 0, .entries = {}};
    if (withLayers) {
        config.layerCount = static_cast<std::uint32_t>(network.oruLayers.size());
        config.entries.reserve(network.oruLayers.size());
        for (const OruLayer& layer : network.oruLayers) {
            config.entries.push_back({
                .layerId = static_cast<std::uint32_t>(config.entries.size()),
                .layerType = static_cast<std::uint32_t>(layer.type),
                .offloaded = layer.offloaded,
                .linked = layer.linked(),
                .loopbackEnabled = layer.loopback,
                .mergedGroup = layer.mergedGroup,
            });
        }
    }
    return encodeLayerConfig(config);
}

Bytes nodeMappingObject(const Network& network) {
    std::vector<NodeMappingEntry> entries;
    entries.reserve(network.oruLayers.size());
    for (const OruLayer& layer : network.oruLayers) {
        NodeMappingEntry entry{static_cast<std::uint32_t>(entries.size()), {layer.zebLayer}};
        if (layer.alsoForZebLayer) {
            entry.nameIndexes.push_back(*layer.alsoForZebLayer);
        }
        entries.push_back(std::move(entry));
    }
    return encodeNodeMapping(entries);
}

// What takes a part of a whole that is given in per cent; the last part takes the rest.
std::vector<Event> partsOf(std::uint64_t us,
                           const std::vector<std::pair<const char*, std::uint64_t>>& parts) {
    std::vector<Event> events;
    std::uint64_t rest = us;
    for (const auto& [name, percent] : parts) {
        const bool last = events.size() + 1 == parts.size();
        const std::uint64_t partUs = last ? rest : us * percent / 100;
        rest -= partUs;
        events.push_back(timeEvent(name, partUs));
    }
    return events;
}

Header headerOf(const NetworkOptions& options) {
    return {.timeScale = 1.0F,
            .epochTimestamp = options.epochUs,
            .steadyClockTimestamp = steadyClockUs,
            .generatorName = "sorel-graph-runner",
            .generatorVersion = options.generatorVersion,
            .backendInfo = options.backendVersion};
}

class NetworkRun {
public:
    NetworkRun(const NetworkOptions& options, std::ostream& out)
        : options_(options),
          log_(out, headerOf(options_)),
          network_(makeNetwork(options.layers)),
          runPace_(runPaceOf(options)) {}

    void run() {
        initialize();
        const std::uint64_t firstStartUs = nowUs_;
        for (std::uint32_t graph = 0; graph < options_.graphs; ++graph) {
            executeGraph(graph);
        }
        finish(firstStartUs);
        log_.finish();
    }

private:
    [[nodiscard]] bool hasLayers() const { return options_.level != ProfileLevel::basic; }

    // A call that ends that long after it began; the next one follows after a pause.
    void call(MethodType type, std::optional<std::string> text, std::uint64_t durationUs,
              std::vector<Event> events = {}) {
        Message message;
        message.methodType = type;
        message.text = std::move(text);
        message.timing = {nowUs_, nowUs_ + durationUs};
        message.timestamp = nowUs_ + durationUs;
        message.events = std::move(events);
        log_.add(message);
        nowUs_ += durationUs + pauseUs;
    }

    void initialize() {
        const std::uint64_t loadUs = runPace_.of(libraryLoadUs);
        call(MethodType::DynamicLibLoad, std::nullopt, loadUs, {timeEvent("Backend Library Load", loadUs)});
        call(MethodType::InitStep, networkName, runPace_.of(initStepUs));
        for (std::uint32_t graph = 0; graph < options_.graphs; ++graph) {
            call(MethodType::ComposeGraphs, graphName(graph),
                 runPace_.of(composeUs + options_.layers * composeLayerUs));
        }
        for (std::uint32_t graph = 0; graph < options_.graphs; ++graph) {
            finalize(graph);
        }
    }

    void finalize(std::uint32_t graph) {
        const std::uint64_t us = runPace_.of(finalizeUs + options_.layers * finalizeLayerUs);
        const std::uint64_t backendUs = us - us / 50;
        Event preparation = timeEvent(
            "Graph Preparation", backendUs,
            partsOf(backendUs, {{"Layer Merging", 21}, {"Memory Planning", 34}, {"Code Generation", 0}}));
        Event config = objectEvent("Layer Configuration", layerConfigObject(network_, hasLayers()),
                                   "layer_configuration.bin");
        call(MethodType::Finalize, graphName(graph), us,
             {ofType(finalizeEventType, std::move(preparation)),
              ofType(finalizeEventType, std::move(config))});
    }

    void executeGraph(std::uint32_t graph) {
        const NetworkTiming timing(network_, graph, options_);
        RunTotals totals;
        for (std::uint32_t position = 0; position < options_.executions; ++position) {
            const ExecutionTimes times = timing.execution(position);
            totals.add(times);
            std::vector<Event> events = executionEvents(times);
            if (position + 1 == options_.executions) {
                events.push_back(profileEvent(totals, timing));
                if (graph + 1 == options_.graphs) {
                    addInitEvents(events);
                }
            }
            execute(graph, times, std::move(events));
        }
    }

    void execute(std::uint32_t graph, const ExecutionTimes& times, std::vector<Event> events) {
        if (!options_.async) {
            call(MethodType::Execute, graphName(graph), times.roundTripUs, std::move(events));
            return;
        }
        // It was handed over while the one before it was still running.
        nowUs_ -= times.graphQueueWaitUs == 0 ? 0 : pauseUs - submissionUs + times.queueWaitUs();
        call(MethodType::ExecuteAsync, graphName(graph), times.roundTripUs + times.queueWaitUs(),
             std::move(events));
    }

    [[nodiscard]] std::vector<Event> executionEvents(const ExecutionTimes& times) const {
        std::vector<Event> events;
        if (options_.async) {
            events.push_back(ofType(queueWaitEventType, timeEvent("Queue Wait", times.queueWaitUs())));
        }
        Event execution = timeEvent("Accelerator Execution", times.acceleratorUs);
        if (hasLayers()) {
            execution.subEvents.push_back(event("Krel Core Cycles", times.coreCycles, cycles));
            execution.subEvents.push_back(event("DSP Cycles", times.dspCycles, cycles));
        }
        if (options_.level == ProfileLevel::internal) {
            execution.subEvents.push_back(
                event("Tensor Bytes", network_.inputBytes + network_.outputBytes, bytes));
            execution.subEvents.push_back(
                event("ORU Layers", std::uint64_t{network_.oruLayers.size()}, count));
        }
        events.push_back(ofType(executionEventType, std::move(execution)));
        return events;
    }

    // The backend hands out what it has summed up when the last execution is done.
    [[nodiscard]] Event profileEvent(const RunTotals& totals, const NetworkTiming& timing) const {
        const std::uint64_t waitsUs = totals.graphQueueWaitUs + totals.dispatcherQueueWaitUs;
        std::vector<Event> sums;
        sums.push_back(event("Execute Profiling Level",
                             std::uint64_t{static_cast<std::uint32_t>(options_.level)}, none));
        if (options_.async) {
            sums.push_back(timeEvent("ZebGraph_executeAsync", totals.backendUs + waitsUs));
            sums.push_back(timeEvent("graphQueueWaitUs", totals.graphQueueWaitUs));
            sums.push_back(timeEvent("dispatcherQueueWaitUs", totals.dispatcherQueueWaitUs));
        } else {
            sums.push_back(timeEvent("ZebGraph_execute", totals.backendUs));
        }
        sums.push_back(timeEvent("Input Tensor Copy Time", totals.inputCopyNs / 1000));
        sums.push_back(timeEvent("Output Tensor Copy Time", totals.outputCopyNs / 1000));
        sums.push_back(timeEvent("HLOS Graph Execution Time", totals.hlosUs));
        sums.push_back(objectEvent("Graph Execute Profile Data", graphProfileObject(totals, timing),
                                   "graph_profile.bin"));
        return ofType(profileEventType, event("Executions Profiled", std::uint64_t{options_.executions},
                                              count, std::move(sums)));
    }

    [[nodiscard]] Bytes graphProfileObject(const RunTotals& totals, const NetworkTiming& timing) const {
        GraphProfile profile{.acceleratorTimeUs = totals.acceleratorUs,
                             .executionCount = options_.executions,
                             .layerCount = 0,
                             .dspGraphTimeUs = totals.dspGraphUs,
                             .layerRecords = {}};
        if (hasLayers()) {
            profile.layerCount = static_cast<std::uint32_t>(network_.oruLayers.size());
            profile.layerRecords = timing.layerRecords(options_.executions);
        }
        return encodeGraphProfile(profile);
    }

    void finish(std::uint64_t firstStartUs) {
        const std::uint64_t executionUs = nowUs_ - pauseUs - firstStartUs;
        const std::uint64_t executions = std::uint64_t{options_.executions} * options_.graphs;
        call(MethodType::ExecuteOverall, std::nullopt, executionUs,
             {timeEvent("duration", executionUs), event("count", executions, count)});
        const std::uint64_t us = runPace_.of(deInitUs);
        const std::uint64_t backendUs = us - us / 20;
        call(MethodType::DeInit, networkName, us,
             {timeEvent("Accelerator Release", backendUs,
                        partsOf(backendUs, {{"Context Free", 72}, {"Device Close", 0}}))});
    }

    // The backend's own view of the start. A reader keeps the init events of the last message that may have
    // any, so they go with the last execution.
    void addInitEvents(std::vector<Event>& events) const {
        const std::uint64_t us = runPace_.of(initStepUs);
        const std::uint64_t backendUs = us - us / 10;
        events.push_back(ofType(
            initEventType,
            timeEvent(
                "Accelerator Start", backendUs,
                partsOf(backendUs, {{"Device Open", 38}, {"Firmware Load", 51}, {"Clock Request", 0}}))));
        if (hasLayers()) {
            events.push_back(ofType(
                initEventType, objectEvent("Node Mapping", nodeMappingObject(network_), "node_mapping.bin")));
            events.push_back(
                ofType(initEventType,
                       objectEvent("Node Names", encodeNameTable(network_.zebLayerNames), "node_names.bin")));
        }
    }

    const NetworkOptions& options_;
    ChunkedLog log_;
    Network network_;
    RunPace runPace_;
    std::uint64_t nowUs_ = steadyClockUs + 1'250;
};

}  // namespace

void writeNetworkLog(std::ostream& out, const NetworkOptions& options) {
    NetworkRun(options, out).run();
}

}  // namespace zeb::samplelog
