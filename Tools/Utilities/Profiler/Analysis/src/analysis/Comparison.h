#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/RunSummary.h"
#include "analysis/Samples.h"

/// Two versions compared, each by one log or by several. Logs are the samples: the executions of one share a
/// process and drift together. Changes are shares of the base, times are in microseconds.
namespace zeb::analysis {

/// Logs that a side of several needs: with fewer no rank test can be sure of anything.
inline constexpr std::size_t minLogs = 4;

/// What changes are judged by.
enum class Basis : std::uint8_t {
    oneEach,  ///< one log against one: a change is shown, and nobody knows how sure it is
    several,  ///< `minLogs` or more on each side
    tooFew,   ///< fewer on either side of several, or one against several: nothing is sure
};

enum class Verdict : std::uint8_t {
    unsure,
    slower,
    faster,
    same,   ///< one log each: not a bit of a change
    added,  ///< only the new side has it
    gone,   ///< only the base has it
};

/// @return the verdict in a word: "unsure", "slower", "faster", "same", "new" or "gone"
std::string_view nameOf(Verdict verdict);

/// A total of a graph on both sides.
struct TotalChange {
    Total total = Total::marlix;
    std::size_t baseLogs = 0;  ///< that have the figure
    std::size_t newLogs = 0;
    Range base;  ///< over the logs
    Range changed;
    std::optional<double> change;  ///< nothing with too few logs, or times of 0
    std::optional<Interval> interval;
    std::optional<double> p;
    Verdict verdict = Verdict::unsure;

    [[nodiscard]] double changeUs() const { return changed.median - base.median; }
};

/// A layer, or a type of layers, on both sides. Times are the means of the logs' averages; a log that lacks a
/// layer which others of its side have counts with 0.
struct LayerChange {
    std::string name;  ///< the new one, where it was renamed
    double baseUs = 0.0;
    double newUs = 0.0;
    std::optional<double> change;  ///< nothing for a base of 0
    std::optional<double> p;       ///< corrected for the number of rows
    Verdict verdict = Verdict::unsure;

    [[nodiscard]] double changeUs() const { return newUs - baseUs; }
};

struct GraphComparison {
    std::string baseName;
    std::string newName;
    std::size_t baseLogs = 0;  ///< that have the graph
    std::size_t newLogs = 0;
    std::optional<std::pair<Spread, Spread>> executions;  ///< without the warm-up; one log each only
    std::vector<TotalChange> totals;  ///< in the order of `Total`, without those that neither side has
    std::vector<LayerChange> layers;  ///< the largest change first; none when a side has no data on layers
    std::vector<LayerChange> types;   ///< the same

    [[nodiscard]] const TotalChange* find(Total total) const;
};

struct Comparison {
    Basis basis = Basis::oneEach;
    std::vector<std::string> baseLogs;
    std::vector<std::string> newLogs;
    bool haveDifferentLevels = false;     ///< any two logs
    std::vector<std::string> warnings;    ///< a sentence each
    std::vector<GraphComparison> graphs;  ///< those of both sides, in the order of the base
    std::vector<std::string> goneGraphs;
    std::vector<std::string> addedGraphs;
};

/// A ZEB layer's name in the base, and the one that it has in the new version.
using Rename = std::pair<std::string, std::string>;

/// Graphs are matched by name; where each side has just one, they are compared whatever their names. Layers
/// are matched by name within a graph, equal names by their order.
/// @param base,changed at least one run each
Comparison compare(std::span<const RunSummary> base, std::span<const RunSummary> changed,
                   std::span<const Rename> renames = {});

}  // namespace zeb::analysis
