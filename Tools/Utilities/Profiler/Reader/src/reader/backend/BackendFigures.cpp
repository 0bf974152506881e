#include "reader/backend/BackendFigures.h"

#include <string>
#include <utility>
#include <vector>

#include "logging/Logger.h"
#include "reader/backend/CheckedNumbers.h"
#include "reports/EventText.h"
#include "reports/ReportForms.h"
#include "text/Saturation.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view levelName = "Execute Profiling Level";
constexpr std::string_view graphProfileName = "Graph Execute Profile Data";
constexpr std::string_view hostTimeName = "HLOS Graph Execution Time";
constexpr std::string_view queueWaitNames[] = {"graphQueueWaitUs", "dispatcherQueueWaitUs"};
constexpr double hzPerMhz = 1000000.0;

// The text of the first event of a name among those of all executions.
std::optional<std::string> findExecuteEventValue(const EventStore& store, const FigureScope& scope,
                                                 std::string_view name) {
    if (!store.mayHaveEvent(name)) {
        return std::nullopt;
    }
    for (const GraphMethodRecords* const graph : scope.executions) {
        for (const MethodRecord& record : graph->records) {
            if (auto value = findEventValue(name, record.events)) {
                return value;
            }
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> findExecuteEventNumber(const EventStore& store, const FigureScope& scope,
                                                    std::string_view name) {
    const auto text = findExecuteEventValue(store, scope, name);
    return text ? std::optional(checkedUnsigned64(*text)) : std::nullopt;
}

// Depth first, parents before children.
void collectObjectEvents(const EventList& events, std::vector<ProfileEvent>& objects) {
    for (const ProfileEvent& event : events) {
        if (event.isObject()) {
            objects.push_back(event);
        }
        collectObjectEvents(event.subEvents, objects);
    }
}

std::uint64_t perExecution(const GraphProfile& profile, std::uint64_t total) {
    return profile.executionCount == 0 ? 0 : total / profile.executionCount;
}

double averagePerExecution(const GraphProfile& profile, std::uint64_t total) {
    return profile.executionCount == 0 ? 0.0 : static_cast<double>(total) / profile.executionCount;
}

// Only objects directly below the events of an execution count.
std::vector<const ProfileEvent*> graphProfileObjects(const EventStore& store, const FigureScope& scope) {
    std::vector<const ProfileEvent*> objects;
    if (!store.mayHaveEvent(graphProfileName)) {
        return objects;
    }
    for (const GraphMethodRecords* const graph : scope.executions) {
        for (const MethodRecord& record : graph->records) {
            for (const ProfileEvent& event : record.events) {
                for (const ProfileEvent& subEvent : event.subEvents) {
                    if (subEvent.isObject() && subEvent.name == graphProfileName) {
                        objects.push_back(&subEvent);
                    }
                }
            }
        }
    }
    return objects;
}

// The totals of the last profile stand; the layers of all of them follow one another.
void loadGraphProfile(BackendFigures& figures, const ProfileEvent& event,
                      std::optional<std::uint64_t> hostTimeUs) {
    GraphProfile& profile = figures.graphProfile;
    std::vector<LayerRecord> layerRecords = std::move(profile.layerRecords);
    profile = readGraphProfile(event.objectBytes(), figures.hasLayers());
    if (!layerRecords.empty()) {
        layerRecords.insert(layerRecords.end(), profile.layerRecords.begin(), profile.layerRecords.end());
        profile.layerRecords = std::move(layerRecords);
    }
    if (hostTimeUs) {
        figures.execution.ipcTimeUs =
            cutToWhole(averagePerExecution(profile, differenceOrZero(*hostTimeUs, profile.dspGraphTimeUs)));
        if (const auto logger = loggerFor(ZEB_LOG_LEVEL_INFO)) {
            logMessage(*logger, ZEB_LOG_LEVEL_INFO, "dsp graph exec time is %u",
                       static_cast<unsigned>(profile.dspGraphTimeUs));
        }
    }
}

void loadGraphProfiles(BackendFigures& figures, const EventStore& store, const FigureScope& scope) {
    const auto objects = graphProfileObjects(store, scope);
    if (objects.empty()) {
        return;
    }
    const auto hostTimeUs = findExecuteEventNumber(store, scope, hostTimeName);
    for (const ProfileEvent* const object : objects) {
        loadGraphProfile(figures, *object, hostTimeUs);
    }
}

}  // namespace

FigureScope wholeRun(const EventStore& store) {
    FigureScope scope;
    scope.executions.reserve(store.executeRecords.size());
    scope.averages.reserve(store.executeAverage.size());
    scope.finalizations.reserve(store.finalizeRecords.size());
    for (const GraphMethodRecords& graph : store.executeRecords) {
        scope.executions.push_back(&graph);
    }
    for (const NamedMethodRecord& average : store.executeAverage) {
        scope.averages.push_back(&average);
    }
    for (const NamedMethodRecord& entry : store.finalizeRecords) {
        scope.finalizations.push_back(&entry);
    }
    return scope;
}

std::optional<ProfileLevel> findProfileLevel(const EventStore& store) {
    const auto text = findExecuteEventValue(store, wholeRun(store), levelName);
    if (!text) {
        logMessage(ZEB_LOG_LEVEL_WARN, "failed get Profile Level Value!");
        return std::nullopt;
    }
    if (text->empty()) {
        logMessage(ZEB_LOG_LEVEL_WARN,
                   "Profiling Level is not found, CSV file will still be generated with basic level.");
        return std::nullopt;
    }
    switch (const auto level = static_cast<ProfileLevel>(checkedSigned32(*text))) {
        case ProfileLevel::basic:
        case ProfileLevel::detailed:
        case ProfileLevel::internal:
            return level;
    }
    if (const auto logger = loggerFor(ZEB_LOG_LEVEL_WARN)) {
        logMessage(*logger, ZEB_LOG_LEVEL_WARN, "Profile Level Value %s not supported.", text->c_str());
    }
    return std::nullopt;
}

ProfileLevel readProfileLevel(const EventStore& store) {
    return findProfileLevel(store).value_or(ProfileLevel::basic);
}

std::optional<std::vector<NodeMappingEntry>> findNodeMapping(const EventStore& store) {
    std::vector<ProfileEvent> objects;
    collectObjectEvents(initSectionEvents(store), objects);
    if (objects.size() >= 2) {
        return readNodeMapping(objects[0].objectBytes(), objects[1].objectBytes());
    }
    if (objects.size() == 1) {
        logMessage(ZEB_LOG_LEVEL_WARN, "Expected 2 opaque objects for node mapping, got 1; skipping.");
    }
    return std::nullopt;
}

void loadNodeMapping(BackendFigures& figures, const std::vector<NodeMappingEntry>& mapping) {
    figures.hasNodeMapping = true;
    figures.zebLayers = gatherZebLayers(mapping);
}

void loadLayerConfig(BackendFigures& figures, const EventStore& store, const FigureScope& scope) {
    if (!store.hasFinalizeEvents) {
        return;
    }
    std::vector<ProfileEvent> objects;
    for (const NamedMethodRecord* const entry : scope.finalizations) {
        collectObjectEvents(entry->record->events, objects);
        if (!objects.empty()) {
            figures.layerConfig = readLayerConfig(objects.front().objectBytes(), figures.hasLayers());
            return;
        }
    }
}

void workOutExecution(BackendFigures& figures, const EventStore& store, const FigureScope& scope) {
    ExecutionFigures& execution = figures.execution;
    execution.isAsync = store.asyncExecute;
    execution.hasAverage = !scope.averages.empty();
    if (!execution.hasAverage) {
        // A log that failed to load has executions without an average; the CSV form names their tensor
        // copies.
        for (std::size_t copy = 0; copy < tensorCopyNames.size(); ++copy) {
            if (findExecuteEventValue(store, scope, tensorCopyNames[copy])) {
                execution.tensorCopyUs[copy] = 0.0;
            }
        }
        return;
    }
    execution.lastGraphUs = scope.averages.back()->record->durationUs;
    loadGraphProfiles(figures, store, scope);
    const GraphProfile& profile = figures.graphProfile;
    execution.dspClockMhz = static_cast<std::uint32_t>(figures.layerConfig.dspClockHz / hzPerMhz);
    execution.krelClockMhz = static_cast<std::uint32_t>(figures.layerConfig.krelClockHz / hzPerMhz);
    if (execution.isAsync) {
        for (const std::string_view name : queueWaitNames) {
            execution.queueWaitUs +=
                perExecution(profile, findExecuteEventNumber(store, scope, name).value_or(0));
        }
    }
    if (const auto total = findExecuteEventNumber(store, scope, executeCallName(execution.isAsync))) {
        execution.backendExecuteUs = perExecution(profile, *total);
    }
    for (std::size_t copy = 0; copy < tensorCopyNames.size(); ++copy) {
        if (const auto total = findExecuteEventNumber(store, scope, tensorCopyNames[copy])) {
            execution.tensorCopyUs[copy] = averagePerExecution(profile, *total);
        }
    }
    execution.acceleratorTimeUs = perExecution(profile, profile.acceleratorTimeUs);
    execution.executionCount = profile.executionCount;
}

void workOutOruLayers(BackendFigures& figures) {
    figures.oruLayers = OruLayers(computeLayerStats(figures.graphProfile, figures.layerConfig),
                                  figures.layerConfig.layerCount);
}

void workOutZebLayers(BackendFigures& figures) {
    figures.zebLayerStats =
        computeZebLayerStats(figures.zebLayers.zebLayerOrder, figures.oruLayers.layerStats());
    figures.zebTimeShare = shareOfTime(figures.zebLayerStats);
}

std::optional<std::uint64_t> singleGraphDuration(const EventStore& store) {
    if (store.executeAverage.size() == 1) {
        return store.executeAverage[0].record->durationUs;
    }
    logMessage(ZEB_LOG_LEVEL_ERROR, "multiple graph not supported yet!");
    return std::nullopt;
}

BackendFigures workOutFigures(const EventStore& store, const FigureScope& scope, ProfileLevel level,
                              const std::vector<NodeMappingEntry>* mapping) {
    BackendFigures figures;
    figures.profileLevel = level;
    if (mapping != nullptr) {
        loadNodeMapping(figures, *mapping);
    }
    loadLayerConfig(figures, store, scope);
    workOutExecution(figures, store, scope);
    if (figures.hasLayers()) {
        workOutOruLayers(figures);
        workOutZebLayers(figures);
    }
    return figures;
}

}  // namespace zeb::profiling
