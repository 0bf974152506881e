#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "reader/backend/BackendObjects.h"
#include "reader/backend/OruLayers.h"
#include "reader/backend/ZebLayers.h"
#include "store/EventStore.h"

namespace zeb::profiling {

/// How deep a run was profiled, from the event "Execute Profiling Level".
enum class ProfileLevel : std::int32_t {
    basic = 1,  ///< no per-layer data
    detailed = 2,
    internal = 1100,
};

/// The tensor copies that the backend tells, in the order of the reports.
inline constexpr auto tensorCopyNames =
    std::to_array<std::string_view>({"Input Tensor Copy Time", "Output Tensor Copy Time"});

/// The backend's call that executes a graph, which is also the name of its event.
constexpr std::string_view executeCallName(bool isAsync) {
    return isAsync ? "ZebGraph_executeAsync" : "ZebGraph_execute";
}

/// Where the time of one execution goes. What the log holds as a total over all executions is divided by
/// their count; without a count it is 0. With several graphs the figures cover none in particular.
struct ExecutionFigures {
    bool hasAverage = false;  ///< executions were aggregated; if not, no object was looked at
    bool isAsync = false;
    std::optional<std::uint64_t> singleGraphUs;     ///< average of the one graph, worked out for CSV
    std::uint64_t lastGraphUs = 0;                  ///< average of the last graph
    std::optional<std::uint64_t> backendExecuteUs;  ///< in the backend's call, if the log has an event of it
    std::uint64_t queueWaitUs = 0;                  ///< asynchronous runs only, part of the times above
    std::array<std::optional<double>, tensorCopyNames.size()> tensorCopyUs;  ///< those that are told
    std::uint64_t ipcTimeUs = 0;                                             ///< between host and DSP
    std::uint64_t acceleratorTimeUs = 0;
    std::uint32_t executionCount = 0;
    std::uint32_t dspClockMhz = 0;  ///< of the layer configuration's clocks, cut
    std::uint32_t krelClockMhz = 0;
};

/// Everything that the backend's report shows of a run besides the records of the store itself. A report
/// works it out section by section, each from what the ones before it have left. The layers refer into the
/// objects beside them, so it can be moved and not copied; names and objects belong to the store, which has
/// to outlive it.
struct BackendFigures {
    BackendFigures() = default;
    BackendFigures(BackendFigures&&) = default;
    BackendFigures& operator=(BackendFigures&&) = default;

    ProfileLevel profileLevel = ProfileLevel::basic;
    ExecutionFigures execution;
    LayerConfig layerConfig;
    GraphProfile graphProfile;  ///< the totals of the last profile, and the layers of all of them
    OruLayers oruLayers;        ///< over the two before
    bool hasNodeMapping = false;
    ZebLayers zebLayers;                       ///< of the node mapping
    std::vector<ZebLayerStats> zebLayerStats;  ///< their times, one for each
    TimeShare zebTimeShare;

    /// @return whether the reports have the tables of layers
    [[nodiscard]] bool hasLayers() const { return profileLevel != ProfileLevel::basic; }
};

/// The records that figures are worked out from, all of them of one store.
struct FigureScope {
    std::vector<const GraphMethodRecords*> executions;
    std::vector<const NamedMethodRecord*> averages;       ///< of these executions
    std::vector<const NamedMethodRecord*> finalizations;  ///< the first with a configuration tells it
};

FigureScope wholeRun(const EventStore& store);

/// @return the profiling level that the log tells; nothing, which is logged, when it tells none
/// @throws std::invalid_argument, std::out_of_range for a value that has to be a number and is none
std::optional<ProfileLevel> findProfileLevel(const EventStore& store);

/// @return the same, basic when the log tells none
ProfileLevel readProfileLevel(const EventStore& store);

/// @return the node mapping; nothing, which is logged if it is but half there, when the log has none
std::optional<std::vector<NodeMappingEntry>> findNodeMapping(const EventStore& store);

// What each section of the report adds to the figures, in their order. The profile level is set before.

void loadNodeMapping(BackendFigures& figures, const std::vector<NodeMappingEntry>& mapping);
void loadLayerConfig(BackendFigures& figures, const EventStore& store, const FigureScope& scope);

/// Loads the graph profiles and works out where an execution's time goes. The time of the DSP is logged.
/// @param store aggregated; of a log that failed to load it has no averages, and the figures none but names
/// @throws like `findProfileLevel`
void workOutExecution(BackendFigures& figures, const EventStore& store, const FigureScope& scope);
void workOutOruLayers(BackendFigures& figures);
void workOutZebLayers(BackendFigures& figures);

/// @return average of the run's one graph; nothing, which is logged, unless it is one
std::optional<std::uint64_t> singleGraphDuration(const EventStore& store);

/// Works out all figures of a part of a run.
/// @param mapping null: no ZEB layers
/// @throws as above; std::bad_alloc
BackendFigures workOutFigures(const EventStore& store, const FigureScope& scope, ProfileLevel level,
                              const std::vector<NodeMappingEntry>* mapping);

}  // namespace zeb::profiling
