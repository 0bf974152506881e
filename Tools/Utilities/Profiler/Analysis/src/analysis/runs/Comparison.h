#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/Samples.h"
#include "analysis/runs/GraphMatching.h"
#include "analysis/runs/RunSummary.h"

/// Two versions compared, each by one log or by several. Logs are the samples: the executions of one share a
/// process and drift together. Changes are shares of the base, times are in microseconds.
namespace zeb::analysis {

/// Logs that a side of several needs, and pairs of logs: with fewer no rank test can be sure of anything.
inline constexpr std::size_t minLogs = 4;
inline constexpr std::size_t minPairs = 6;

/// What changes are judged by.
enum class Basis : std::uint8_t {
    oneEach,  ///< one log against one: a change is shown, and nobody knows how sure it is
    several,  ///< `minLogs` or more on each side
    tooFew,   ///< fewer on either side of several, one against several, fewer pairs: nothing is sure
    paired,   ///< `minPairs` or more, the n-th log of the base with the n-th new one
};

enum class Verdict : std::uint8_t {
    unsure,  ///< may be chance, or is not judged
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
    bool holdsQueueWait = false;  ///< as of asynchronous executions
    std::size_t baseLogs = 0;     ///< that have the figure
    std::size_t newLogs = 0;
    Range base;  ///< over the logs
    Range changed;
    std::optional<double> change;  ///< estimated; nothing with too few logs, or times of 0
    std::optional<Interval> interval;
    std::optional<double> p;
    std::optional<double> spread;  ///< of the logs, see `largeSpread`; nothing without an interval
    Verdict verdict = Verdict::unsure;

    /// @return what forms call it, "Marlix, median" or "Backend with queue wait"
    [[nodiscard]] std::string_view name() const { return nameOf(total, holdsQueueWait); }
    [[nodiscard]] bool isOnBoth() const { return baseLogs != 0 && newLogs != 0; }
    /// @return the difference of the means; where an outlier turns its sign against a change that is sure,
    /// what
    ///         that change makes of the base
    [[nodiscard]] double changeUs() const;
};

/// A part of an average inference on both sides. Times are means over the logs; a log that lacks a part which
/// others of its side have counts with 0.
struct PartChange {
    std::string name;
    double baseUs = 0.0;
    double newUs = 0.0;
    Verdict verdict = Verdict::unsure;
    std::vector<PartChange> parts;

    [[nodiscard]] double changeUs() const { return newUs - baseUs; }
};

/// A layer, or a type of layers, on both sides. Times are the means of the logs' averages; a log that lacks a
/// layer which others of its side have counts with 0. Its verdict rests on what it exceeds the factor by that
/// all layers share, or on its whole change where they have none.
struct LayerChange {
    std::string name;  ///< the new one, where it was renamed
    double baseUs = 0.0;
    double newUs = 0.0;
    std::optional<double> change;  ///< nothing for a base of 0
    std::optional<double> excess;  ///< estimated; nothing with too few logs, or a time of 0 in one
    double excessUs = 0.0;
    std::optional<double> p;  ///< of the excess, corrected for the number of rows
    Verdict verdict = Verdict::unsure;

    [[nodiscard]] double changeUs() const { return newUs - baseUs; }
};

/// What the layers of a graph share: by how much the factor on all of them changed.
struct SharedChange {
    double change = 0.0;
    std::optional<Interval> interval;
    Verdict verdict = Verdict::unsure;
};

/// What a comparison says of a graph.
struct Answer {
    enum class Kind : std::uint8_t { slower, faster, same, notSlower, unsure };
    Kind kind = Kind::unsure;
    std::string text;                 ///< a sentence
    std::vector<std::string> causes;  ///< what the change lies in, without a full stop; the weightiest first
};

struct GraphComparison {
    std::string baseName;
    std::string newName;
    std::size_t baseLogs = 0;  ///< that have the graph
    std::size_t newLogs = 0;
    std::optional<std::pair<Spread, Spread>> executions;  ///< without the warm-up; one log each only
    std::vector<TotalChange> totals;      ///< in the order of `Total`, without those that neither side has
    std::optional<PartChange> inference;  ///< nothing where no log has a time for it
    std::vector<LayerChange> layers;     ///< the largest change first; none when a side has no data on layers
    std::vector<LayerChange> types;      ///< the same
    std::optional<SharedChange> shared;  ///< nothing where the layers have no common factor
    Answer answer;

    [[nodiscard]] const TotalChange* find(Total total) const;
};

struct Comparison {
    Basis basis = Basis::oneEach;
    bool isPaired = false;              ///< asked for, whether or not there are enough pairs
    std::vector<std::string> baseLogs;  ///< those that count
    std::vector<std::string> newLogs;
    std::vector<std::string> copies;      ///< that don't, being copies of others of their side
    bool haveSameRun = false;             ///< a run is on both sides
    bool haveDifferentLevels = false;     ///< any two logs
    std::vector<std::string> warnings;    ///< a sentence each
    std::vector<GraphComparison> graphs;  ///< those of both sides, in the order of the base
    std::vector<std::string> goneGraphs;
    std::vector<std::string> addedGraphs;
};

struct CompareSettings {
    std::vector<Rename> renames = {};
    bool isPaired = false;  ///< the sides have as many logs each
};

/// Graphs and layers are matched as in GraphMatching.h. A log counts once: copies are left out, of pairs
/// those with a log that an earlier pair has.
/// @param base,changed at least one run each
Comparison compare(std::span<const RunSummary> base, std::span<const RunSummary> changed,
                   const CompareSettings& settings = {});

}  // namespace zeb::analysis
