#pragma once

#include <optional>
#include <string>

#include "analysis/Run.h"
#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::analysis {

/// Whether a run has the events of its steps and executions, which few forms show.
enum class EventTrees : bool { leftOut, gathered };

/// Reads a log and works out all figures of its run. The log is held in memory meanwhile.
/// @param level messages of this level and above are left out
/// @return nothing when the log can't be opened, or a chunk is damaged
/// @throws std::invalid_argument, std::out_of_range for a value that has to be a number and is none;
///         std::bad_alloc, std::length_error
std::optional<Run> makeRun(const std::string& logFile, profiling::VisibilityLevel level,
                           EventTrees eventTrees = EventTrees::gathered);

/// @return whether the Init of the report is made of the step
bool isOfInit(const Step& step);

}  // namespace zeb::analysis
