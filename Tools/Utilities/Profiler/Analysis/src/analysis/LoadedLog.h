#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/Run.h"
#include "store/EventStore.h"
#include "store/LogHeaderDetails.h"
#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::analysis {

/// The executions of one graph as the log has them.
struct GraphExecutions {
    profiling::StoredText name;
    std::vector<const profiling::MethodRecord*> records;  ///< of the store
    std::vector<std::optional<std::uint64_t>> startUs;
    std::vector<bool> isTimed;  ///< the log has both times
};

/// A log in memory: its store, and what a store does not keep.
struct LoadedLog {
    explicit LoadedLog(profiling::VisibilityLevel level) : store(static_cast<std::int8_t>(level)) {}

    profiling::EventStore store;
    std::string runId;
    profiling::LogHeaderDetails header;
    std::vector<Step> steps;      ///< without their events
    profiling::EventArena names;  ///< of the graphs below, and long ones of steps
    std::vector<GraphExecutions> graphs;
};

/// Loads a log whole and aggregates it.
/// @return false when the log can't be opened, or a chunk is damaged
/// @throws std::bad_alloc, std::length_error
bool loadLog(const std::string& path, LoadedLog& log);

}  // namespace zeb::analysis
