#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/Run.h"

namespace zeb::analysis {

/// The totals of a graph that a comparison looks at.
enum class Total : std::uint8_t {
    marlix,   ///< the median execution, without the warm-up
    average,  ///< execution, the warm-up among them, as of all totals below; the parts of it are these
    backend,
    accelerator,
    outside,  ///< of the accelerator: the average execution less its time
    ipc,
    copies,
    queueWait,
    init,
    finalize,
    layers,
};
inline constexpr std::size_t totalCount = 11;

/// @return the name that reports show, "Marlix, median" or "ZEB layers"
std::string_view nameOf(Total total);
/// @return the same; what the queue wait is a part of says so where it holds one
std::string_view nameOf(Total total, bool holdsQueueWait);

struct LayerTime {
    std::string name;
    double us = 0.0;
};

/// What a comparison needs of a graph in one log.
struct GraphSummary {
    std::string name;
    Spread spread;  ///< of the executions without the warm-up; their median is the total of Marlix
    std::array<std::optional<double>, totalCount> totalsUs;  ///< nothing where the log does not tell
    bool holdsQueueWait = false;                             ///< the executions are asynchronous
    Part inference;                 ///< without the events of an execution, and without notes
    std::vector<LayerTime> layers;  ///< ZEB layers, in the order of the report
    std::vector<LayerTime> types;   ///< of ORU layers, the costliest first
    std::uint32_t dspClockHz = 0;   ///< 0: not told
    std::uint32_t krelClockHz = 0;

    [[nodiscard]] const std::optional<double>& totalUs(Total total) const {
        return totalsUs[static_cast<std::size_t>(total)];
    }
};

/// What a comparison needs of a run, small enough for many to be held at once.
struct RunSummary {
    std::string logFile;
    std::string runId;        ///< as the run has it
    std::string idOfFigures;  ///< the id of what has the same figures and not the log's bytes
    Labels labels;
    std::uint64_t epochUs = 0;  ///< when the log began, since the Unix epoch
    std::string generator;      ///< name and version; empty: not told
    std::string backendVersion;
    std::optional<Level> level;
    bool isAsync = false;
    bool lacksStart = false;  ///< of JSON that an earlier version wrote: neither Init nor Finalize are known
    std::vector<GraphSummary> graphs;
};

/// The first execution of a graph is its warm-up: it is left out of the median and of the count where there
/// is another. The total `init` is that of the Init message, else all that leads to the first execution, for
/// all graphs of a run, the second the graph's own where the log has several.
RunSummary summarize(const Run& run);

}  // namespace zeb::analysis
