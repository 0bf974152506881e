#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "analysis/Run.h"
#include "forms/trace/TraceFile.h"
#include "zeb/profiling/VisibilityLevel.h"

/// A log as a timeline, in the Trace Event format that the trace viewers of browsers open: docs/trace.md
/// tells what it shows and what of that is assumed.
namespace zeb::forms {

struct TraceOptions {
    profiling::VisibilityLevel level{};  ///< messages of this level and above are left out
    /// Slices that lie wholly before or behind are left out. Counted from the smallest start; not NaN.
    std::optional<double> fromMs;
    std::optional<double> toMs;
    SliceForm slices = SliceForm::full;
};

/// What became of the log's visible messages: each is counted once. And the size of the trace.
struct TraceResult {
    std::uint64_t slices = 0;            ///< shown
    std::uint64_t withoutTimes = 0;      ///< the log does not have both times
    std::uint64_t outsideCut = 0;        ///< wholly before `fromMs` or behind `toMs`
    std::uint64_t leftOutForTracks = 0;  ///< would have taken more tracks than a group has
    std::uint64_t leftOutAsTooLate = 0;  ///< end 2^53 us or more behind the smallest start: no exact numbers
    std::uint64_t bytes = 0;
};

/// Writes the trace of a log, which is read twice. Memory does not grow with it beyond the run.
/// @param out its state tells whether writing succeeded
/// @param run made of the same log at the same level
/// @return nothing when the log can't be opened or a chunk is damaged; what has been written is no trace then
/// @throws std::bad_alloc, std::length_error
std::optional<TraceResult> writeTrace(std::ostream& out, const analysis::Run& run, const std::string& logPath,
                                      const TraceOptions& options);

}  // namespace zeb::forms
