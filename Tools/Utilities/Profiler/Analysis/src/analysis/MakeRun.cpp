#include "analysis/MakeRun.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "analysis/Findings.h"
#include "analysis/Inference.h"
#include "analysis/LoadedLog.h"
#include "analysis/LogText.h"
#include "analysis/Spread.h"
#include "log/Methods.h"
#include "reader/backend/BackendFigures.h"
#include "reader/backend/LayerTypeNames.h"
#include "reports/ReportForms.h"
#include "store/EventStore.h"
#include "store/QueueWait.h"

namespace zeb::analysis {

namespace {

using profiling::BackendFigures;
using profiling::EventStore;
using profiling::GraphMethodRecords;
using profiling::MethodRecord;
using profiling::NamedMethodRecord;
using profiling::ValueKind;
using profiling::schema::MethodType;
using NodeMapping = std::optional<std::vector<profiling::NodeMappingEntry>>;

// Makes the events of a run. The texts of a log that have more bytes than a run has of them, or that come
// again and again, are held once.
class EventMaker {
public:
    explicit EventMaker(EventTrees wanted) : wanted_(wanted) {}

    // The tree is no deeper than the verifier of the log lets it be.
    std::vector<Event> eventsOf(const profiling::EventList& list) {
        std::vector<Event> events;
        if (wanted_ == EventTrees::leftOut) {
            return events;
        }
        for (const profiling::ProfileEvent& event : list) {
            events.push_back({.name = held(event.name.kept(), event.name),
                              .type = event.eventType,
                              .unit = event.unit(),
                              .value = valueOf(event.value()),
                              .objectBytes = event.isObject()
                                                 ? std::optional<std::uint64_t>(event.objectBytes().size())
                                                 : std::nullopt,
                              .events = eventsOf(event.subEvents)});
        }
        return events;
    }

    [[nodiscard]] bool leavesOut() const { return wanted_ == EventTrees::leftOut; }

private:
    SharedText held(const void* address, std::string_view text) {
        const auto [found, isNew] = texts_.try_emplace(address);
        if (isNew) {
            found->second = cutText(text);
        }
        return found->second;
    }

    Value valueOf(const profiling::EventValue& value) {
        switch (value.kind) {
            case ValueKind::int64:
                return static_cast<std::int64_t>(value.payload);
            case ValueKind::float32:
                return static_cast<double>(value.asFloat());
            case ValueKind::float64:
                return value.asDouble();
            case ValueKind::text:
                return textOf(value.asText());
            case ValueKind::uint64:
                return value.payload;
            default:
                return {};
        }
    }

    // A long text is looked at once, however many values share it.
    SharedText textOf(const char* text) {
        const std::size_t length = ::strnlen(text, maxTextBytes + 1);
        if (length <= maxTextBytes) {
            return SharedText({text, length});
        }
        const auto [found, isNew] = texts_.try_emplace(text);
        if (isNew) {
            found->second = cutText(text);
        }
        return found->second;
    }

    EventTrees wanted_;
    std::unordered_map<const void*, SharedText> texts_;
};

Header headerOf(const profiling::LogHeaderDetails& details) {
    return {.timeScale = static_cast<double>(details.timeScale),
            .epochUs = details.epochTimestamp,
            .steadyUs = details.steadyClockTimestamp,
            .generatorName = details.generatorName,
            .generatorVersion = details.generatorVersion,
            .backendVersion = details.backendInfo,
            .isAdapterUpdaterLog = details.isAdapterUpdaterLog};
}

// Gives the events of the start and the end to the latest step of their kind; those of finalization to the
// latest of each graph.
class StepEvents {
public:
    StepEvents(const EventStore& store, EventMaker& events, std::vector<Step>& steps)
        : store_(store), events_(events), steps_(steps) {}

    void add() {
        addToLatest(StepKind::libraryLoad, store_.libLoadRecord.events);
        const StepKind start = store_.hasInitRecord ? StepKind::init : StepKind::initStep;
        addToLatest(start, profiling::initSectionEvents(store_));
        addToLatest(StepKind::deInit, store_.deInitRecord.events);
        addToFinalizations();
    }

private:
    void addToLatest(StepKind kind, const profiling::EventList& events) {
        const auto latest = std::find_if(steps_.rbegin(), steps_.rend(),
                                         [kind](const Step& step) { return step.kind == kind; });
        if (latest != steps_.rend()) {
            latest->events = events_.eventsOf(events);
        }
    }

    void addToFinalizations() {
        std::unordered_map<std::string_view, std::size_t> latest;
        for (std::size_t position = 0; position < steps_.size(); ++position) {
            if (steps_[position].kind == StepKind::finalize) {
                latest[steps_[position].text] = position;
            }
        }
        for (const NamedMethodRecord& entry : store_.finalizeRecords) {
            if (const auto found = latest.find(cutName(entry.name)); found != latest.end()) {
                steps_[found->second].events = events_.eventsOf(entry.record->events);
            }
        }
    }

    const EventStore& store_;
    EventMaker& events_;
    std::vector<Step>& steps_;
};

// The one queue wait among the events of an execution; nothing when there is none or more than one.
std::optional<std::uint64_t> queueWaitOf(const MethodRecord& record) {
    const profiling::QueueWait wait = profiling::queueWaitOf(record.events);
    return wait.count == 1 ? std::optional(wait.lastUs) : std::nullopt;
}

Executions executionsOf(GraphExecutions& graph) {
    Executions executions;
    executions.startUs = std::move(graph.startUs);
    executions.durationUs.reserve(graph.records.size());
    executions.queueWaitUs.reserve(graph.records.size());
    for (std::size_t position = 0; position < graph.records.size(); ++position) {
        const MethodRecord& record = *graph.records[position];
        executions.durationUs.push_back(graph.isTimed[position] ? std::optional(record.durationUs)
                                                                : std::nullopt);
        executions.queueWaitUs.push_back(queueWaitOf(record));
    }
    return executions;
}

std::optional<Breakdown> breakdownOf(const profiling::ExecutionFigures& execution) {
    if (execution.executionCount == 0) {
        return std::nullopt;
    }
    Breakdown breakdown{.executionCount = execution.executionCount,
                        .backendUs = execution.backendExecuteUs,
                        .queueWaitUs = {},
                        .inputCopyUs = execution.tensorCopyUs[0],
                        .outputCopyUs = execution.tensorCopyUs[1],
                        .ipcUs = {},
                        .acceleratorUs = execution.acceleratorTimeUs};
    if (execution.isAsync) {
        breakdown.queueWaitUs = execution.queueWaitUs;
    }
    if (execution.ipcTimeUs != 0) {
        breakdown.ipcUs = execution.ipcTimeUs;
    }
    return breakdown;
}

OruLayer layerOf(const profiling::LayerStats& stats) {
    return {.id = stats.layerId,
            .type = stats.layerType,
            .typeName = std::string(profiling::layerTypeName(stats.layerType)),
            .isOffloaded = stats.offloaded,
            .isLinked = stats.linked,
            .isLoopbackEnabled = stats.loopbackEnabled,
            .mergedGroup = stats.mergedGroup,
            .executions = stats.execCount,
            .averageUs = stats.avgTimeUs,
            .totalUs = stats.totalTimeUs,
            .dspCycles = stats.avgDspCycles,
            .totalDspCycles = stats.totalDspCycles,
            .halUs = stats.avgHalExecUs,
            .driverUs = stats.avgDriverExecUs,
            .cacheFlushUs = stats.avgCacheFlushUs,
            .krelExecUs = stats.avgKrelExecUs,
            .nodes = stats.nodeCount,
            .coreCycles = stats.avgCoreCycles,
            .coreUs = stats.avgCoreTimeUs};
}

std::vector<LayerType> typesOf(const std::vector<OruLayer>& layers) {
    std::vector<LayerType> types;
    std::unordered_map<std::string_view, std::size_t> positions;
    for (const OruLayer& layer : layers) {
        const auto [found, isNew] = positions.emplace(layer.typeName, types.size());
        if (isNew) {
            types.push_back({.name = layer.typeName});
        }
        LayerType& type = types[found->second];
        ++(layer.isOffloaded ? type.krelLayers : type.dspLayers);
        type.timeUs += layer.timeUs();
    }
    std::stable_sort(types.begin(), types.end(), [](const LayerType& left, const LayerType& right) {
        return left.timeUs > right.timeUs;
    });
    return types;
}

void addLayers(Graph& graph, const BackendFigures& figures) {
    graph.dspClockHz = figures.layerConfig.dspClockHz;
    graph.krelClockHz = figures.layerConfig.krelClockHz;
    if (!figures.hasLayers()) {
        return;
    }
    graph.oruLayers.reserve(figures.oruLayers.size());
    figures.oruLayers.forEach(
        [&graph](const profiling::LayerStats& stats) { graph.oruLayers.push_back(layerOf(stats)); });
    graph.layerTypes = typesOf(graph.oruLayers);
    graph.zebLayers.reserve(figures.zebLayerStats.size());
    for (std::size_t row = 0; row < figures.zebLayerStats.size(); ++row) {
        const profiling::ZebLayerEntry& layer = figures.zebLayers.zebLayerOrder[row];
        const profiling::ZebLayerStats& times = figures.zebLayerStats[row];
        graph.zebLayers.push_back({.name = cutName(layer.name),
                                   .dspUs = times.dspTimeUs,
                                   .krelUs = times.krelTimeUs,
                                   .oruLayers = {layer.oruLayerIds.begin(), layer.oruLayerIds.end()}});
    }
}

// A mapping that names each layer of a graph once, and no other, is taken to be its mapping.
bool covers(const std::vector<profiling::NodeMappingEntry>& mapping, std::size_t layers) {
    if (mapping.size() != layers) {
        return false;
    }
    std::vector<bool> isNamed(layers);
    for (const profiling::NodeMappingEntry& entry : mapping) {
        if (entry.oruLayerId >= layers || isNamed[entry.oruLayerId]) {
            return false;
        }
        isNamed[entry.oruLayerId] = true;
    }
    return true;
}

std::vector<OtherMethod> otherMethodsOf(const EventStore& store);

// The report has the latest finalization of each name.
std::optional<std::uint64_t> finalizeUs(const std::vector<const NamedMethodRecord*>& finalizations) {
    std::optional<std::uint64_t> sum;
    for (const NamedMethodRecord* const entry : finalizations) {
        sum = sum.value_or(0) + entry->record->durationUs;
    }
    return sum;
}

class RunMaker {
public:
    RunMaker(LoadedLog& log, EventTrees eventTrees, Run& run)
        : log_(log), store_(log.store), events_(eventTrees), run_(run) {}

    void make() {
        if (log_.header.headerSaved) {
            run_.header = headerOf(log_.header);
        }
        run_.isAsync = store_.asyncExecute;
        run_.steps = std::move(log_.steps);
        StepEvents(store_, events_, run_.steps).add();
        if (std::any_of(run_.steps.begin(), run_.steps.end(), isOfInit)) {
            run_.initUs = store_.initDurationUs;
        }
        run_.otherMethods = otherMethodsOf(store_);
        makeGraphs();
    }

private:
    void makeGraphs() {
        const auto level = profiling::findProfileLevel(store_);
        if (level) {
            run_.level = static_cast<Level>(*level);
        }
        mapping_ = profiling::findNodeMapping(store_);
        for (const NamedMethodRecord& entry : store_.finalizeRecords) {
            finalizations_.emplace(entry.name.text(), &entry);
        }
        for (GraphExecutions& graph : log_.graphs) {
            executions_.emplace(graph.name.text(), &graph);
        }
        for (std::size_t position = 0; position < store_.executeRecords.size(); ++position) {
            run_.graphs.push_back(makeGraph(position, level.value_or(profiling::ProfileLevel::basic)));
        }
        addFindings(run_);
    }

    Graph makeGraph(std::size_t position, profiling::ProfileLevel level) {
        const GraphMethodRecords& records = store_.executeRecords[position];
        Graph graph;
        graph.name = cutName(records.graphName);
        if (const auto found = executions_.find(records.graphName.text()); found != executions_.end()) {
            graph.executions = executionsOf(*found->second);
        }
        graph.spread = spreadOf(graph.executions);
        graph.average = typicalOf(store_.executeAverage[position]);
        graph.shortest = typicalOf(store_.executeMin[position]);
        graph.longest = typicalOf(store_.executeMax[position]);
        profiling::FigureScope scope{{&records}, {&store_.executeAverage[position]}, {}};
        if (isOnlyGraph()) {
            addAllFinalizations(scope);  // whatever they call it, as the report does
        } else if (const auto found = finalizations_.find(records.graphName.text());
                   found != finalizations_.end()) {
            scope.finalizations.push_back(found->second);
        }
        if (store_.hasFinalize) {
            graph.finalizeUs = finalizeUs(scope.finalizations);
        }
        addFigures(graph, scope, level);
        addTree(graph, store_.executeAverage[position]);
        return graph;
    }

    TypicalExecution typicalOf(const NamedMethodRecord& entry) {
        return {entry.record->durationUs, events_.eventsOf(entry.record->events)};
    }

    // Without data of the backend an inference consists of the average execution's events.
    void addTree(Graph& graph, const NamedMethodRecord& average) {
        const bool isToldByEvents = !graph.breakdown && graph.average.events.empty();
        if (isToldByEvents) {
            graph.average.events = allEvents_.eventsOf(average.record->events);
        }
        addDerivedFigures(graph);
        if (isToldByEvents && events_.leavesOut()) {
            graph.average.events.clear();
        }
    }

    [[nodiscard]] bool isOnlyGraph() const { return store_.executeRecords.size() == 1; }

    void addAllFinalizations(profiling::FigureScope& scope) {
        for (const NamedMethodRecord& entry : store_.finalizeRecords) {
            scope.finalizations.push_back(&entry);
        }
    }

    // With several graphs it takes a first look at a graph's layers to know whether the mapping is its own.
    void addFigures(Graph& graph, const profiling::FigureScope& scope, profiling::ProfileLevel level) {
        const auto* const mapping = mapping_ && isOnlyGraph() ? &*mapping_ : nullptr;
        BackendFigures figures = profiling::workOutFigures(store_, scope, level, mapping);
        if (mapping_ && !isOnlyGraph() && figures.hasLayers() && figures.oruLayers.size() != 0) {
            if (covers(*mapping_, figures.oruLayers.size())) {
                figures = profiling::workOutFigures(store_, scope, level, &*mapping_);
            } else {
                Finding& finding = graph.findings.emplace_back();
                finding.rule = mappingRule;
                finding.text =
                    "The log's node mapping does not cover this graph's layers, so it has no ZEB layers "
                    "here.";
                finding.next = "Profile this graph alone.";
            }
        }
        graph.breakdown = breakdownOf(figures.execution);
        addLayers(graph, figures);
    }

    LoadedLog& log_;
    const EventStore& store_;
    EventMaker events_;
    EventMaker allEvents_{EventTrees::gathered};
    Run& run_;
    NodeMapping mapping_;
    std::unordered_map<std::string_view, const NamedMethodRecord*> finalizations_;
    std::unordered_map<std::string_view, GraphExecutions*> executions_;
};

void addOthers(std::vector<OtherMethod>& others, std::string_view name, const EventStore& store,
               const profiling::MeasuredMethod& method) {
    const profiling::GraphRecordList& graphs = store.*method.records;
    for (std::size_t position = 0; position < graphs.size(); ++position) {
        const GraphMethodRecords& graph = graphs[position];
        others.push_back({.method = std::string(name),
                          .graph = cutName(graph.graphName),
                          .count = graph.records.countByWalking(),
                          .averageUs = (store.*method.average)[position].record->durationUs,
                          .minUs = (store.*method.min)[position].record->durationUs,
                          .maxUs = (store.*method.max)[position].record->durationUs});
    }
}

constexpr std::string_view nameOf(MethodType method) {
    return profiling::methodOf(method).name;
}

std::vector<OtherMethod> otherMethodsOf(const EventStore& store) {
    static_assert(std::count_if(profiling::methods.begin(), profiling::methods.end(),
                                [](const profiling::Method& method) {
                                    return method.part == profiling::MethodPart::statistics;
                                }) == 4,
                  "each has its lines here; the two of applying a binary section are one");
    std::vector<OtherMethod> others;
    addOthers(others, nameOf(MethodType::ApplyBinarySection), store, profiling::applyBinarySectionMethod);
    addOthers(others, nameOf(MethodType::FinalizeAfterTensorUpdates), store,
              profiling::finalizeAfterTensorUpdatesMethod);
    for (const NamedMethodRecord& entry : store.updateBinarySectionRecords) {
        const std::uint64_t us = entry.record->durationUs;
        others.push_back(
            {std::string(nameOf(MethodType::UpdateBinarySection)), cutName(entry.name), 1, us, us, us});
    }
    return others;
}

}  // namespace

bool isOfInit(const Step& step) {
    return step.kind != StepKind::libraryLoad && step.kind != StepKind::deInit;
}

std::optional<Run> makeRun(const std::string& logFile, profiling::VisibilityLevel level,
                           EventTrees eventTrees) {
    LoadedLog log(level);
    if (!loadLog(logFile, log)) {
        return std::nullopt;
    }
    std::optional<Run> run(std::in_place);
    run->logFile = logFile;
    run->runId = log.runId;
    RunMaker(log, eventTrees, *run).make();
    return run;
}

}  // namespace zeb::analysis
