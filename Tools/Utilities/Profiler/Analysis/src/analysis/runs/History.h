#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "analysis/runs/LevelSteps.h"
#include "analysis/runs/RunSummary.h"

/// How times went over many versions: each figure of a graph is a series, with a time a version, in which
/// steps are looked for.
namespace zeb::analysis {

/// A run as a part of a history.
struct HistoryRun {
    RunSummary summary;
    std::string version;  ///< runs of one version make one point
    std::string split;    ///< runs that differ in it are other series; empty: none
};

/// In which order versions stand.
enum class VersionOrder : std::uint8_t {
    given,  ///< as their first runs were given
    epoch   ///< by the earliest clock of their runs
};

struct HistoryVersion {
    std::string name;
    std::size_t runs = 0;
    std::uint64_t epochUs = 0;  ///< the earliest of its runs, since the Unix epoch; 0: not told
};

enum class SeriesKind : std::uint8_t {
    total,         ///< of the whole graph: its median execution, its accelerator, the sum of its layers
    commonFactor,  ///< of what all layers share, as a share of its own middle
    layer          ///< one layer's time beyond the common factor
};

/// The runs of a version, in one series.
struct SeriesPoint {
    std::size_t version = 0;  ///< its position in the history
    std::size_t runs = 0;
    double median = 0.0;  ///< us; of a common factor a number around 1
    double min = 0.0;
    double max = 0.0;
};

/// One figure of a graph under one set of conditions.
struct HistorySeries {
    std::string graph;
    std::string conditions;  ///< what the runs of the graph differ in: level, clocks, ...; empty: in nothing
    SeriesKind kind = SeriesKind::total;
    std::string name;  ///< "Marlix", "Accelerator", "ZEB layers", "All layers", or a layer's
    std::vector<SeriesPoint> points;
    SeriesCourse course;  ///< positions are those of the points

    [[nodiscard]] double newestUs() const;  ///< the median over the newest level
    [[nodiscard]] std::size_t newestVersion() const { return points.back().version; }
};

/// How small a step in the newest versions may be and still not show.
struct HiddenStep {
    std::size_t newest = 0;  ///< versions behind it
    double share = 0.0;      ///< a smaller one is seen in less than four of five cases
};

struct History {
    std::vector<HistoryVersion> versions;
    std::vector<HistorySeries> series;  ///< graph by graph, totals before layers
    std::size_t seriesTried = 0;        ///< that the steps are corrected for
    std::vector<std::string> warnings;  ///< sentences
};

/// Copies of a run count once, and are told. A layer's step by no more than what a log's whole microseconds
/// leave open is none.
History historyOf(std::span<const HistoryRun> runs, VersionOrder order, RankSumChance& chance);

/// @return for 4, 8, 16 and 32 versions behind a step what still hides, as far as the series is long enough
std::vector<HiddenStep> hiddenStepsOf(const History& history, const HistorySeries& series,
                                      RankSumChance& chance);

/// A step of a layer, or of what all share, that comes with one of a total.
struct StepCause {
    const HistorySeries* series = nullptr;
    const LevelStep* step = nullptr;
    double changeUs = 0.0;  ///< of a layer; of the common factor over all layers
};

/// @return the steps within two versions of the step, the largest change in us first; they point into the
/// history
std::vector<StepCause> causesOf(const History& history, const HistorySeries& series, const LevelStep& step);

/// What a pipeline asks of the newest version.
enum class NewestOutcome : std::uint8_t {
    good,  ///< no sure step for the worse beyond the limit holds until the newest version
    slower,
    unsure  ///< a step as large as the limit might hide
};

struct NewestVerdict {
    NewestOutcome outcome = NewestOutcome::good;
    std::vector<std::string> reasons;  ///< a sentence for each graph that is not good
};

/// Judges the median execution of each graph.
/// @param maxGrowth a share
NewestVerdict judgeNewest(const History& history, double maxGrowth, RankSumChance& chance);

}  // namespace zeb::analysis
