#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "analysis/Samples.h"

/// Where series of times change their level. A series has one time a version, in the order of the versions. A
/// step is looked for at every split at once, and a level that goes again in windows of many lengths. Each is
/// held against what the best of all of them shows by chance; all series of a history are tried together, and
/// what is accepted is corrected for their number.
namespace zeb::analysis {

/// Of all steps that are told this share may be none, at most (Benjamini-Hochberg).
inline constexpr double falseStepShare = 0.02;
/// A level has this many versions at least. The newest versions can't be told before they are as many.
inline constexpr std::size_t minLevelLength = 4;
/// What a series leaves over its levels is told as related from this correlation of neighbours on.
inline constexpr double relatedNeighbours = 0.3;

/// A change of level between two neighbours of a series.
struct LevelStep {
    std::size_t first = 0;  ///< position of the first version of the later level
    double change = 0.0;    ///< Hodges-Lehmann, of the later level as a share of the earlier one
    /// Describes, and decides nothing: the split was chosen for being the largest, so it covers less than it
    /// says.
    std::optional<Interval> interval;
    double p = 1.0;  ///< that the best split between its neighbours is as large without a step
};

/// What one series shows.
struct SeriesCourse {
    std::vector<LevelStep> steps;       ///< in time order; none where a line fits better
    std::optional<double> driftShare;   ///< a steady change, as a share a version; nothing: none
    double neighbourCorrelation = 0.0;  ///< of what the levels, or the line, leave
    double spreadShare = 0.0;           ///< standard deviation of that, as a share; robust against spikes
    std::size_t newestLevel = 0;        ///< position of the first version of the newest level

    [[nodiscard]] bool areNeighboursRelated() const { return neighbourCorrelation > relatedNeighbours; }
};

/// What the largest standardised rank sum is by chance. It depends on the number of versions alone, is worked
/// out once for each size that is asked for, from a fixed seed, and kept.
class RankSumChance {
public:
    /// What is searched for the largest rank sum.
    enum class Search : std::uint8_t { splits, windows };

    /// @return the chance that the largest rank sum of that many versions without a step reaches the value
    double of(double rankSum, std::size_t versions, Search search);

    /// @return the smallest value that chance reaches with that p, at most
    double thresholdOf(double p, std::size_t versions, Search search);

private:
    const std::vector<double>& valuesFor(std::size_t versions, Search search);

    std::map<std::pair<std::size_t, Search>, std::vector<double>> values_;  ///< each ascending
};

/// @param series times, each of its own length; one with a time that has no logarithm shows nothing, as does
///               one of fewer than twice minLevelLength versions
/// @return what each shows, in their order
std::vector<SeriesCourse> coursesOf(std::span<const std::vector<double>> series, RankSumChance& chance);

/// @return the share by which the newest versions, that many, would have to be slower so that a step before
/// them is
///         seen in four of five cases; nothing where they are too few for any step
/// @param spreadShare standard deviation of a version's time, as a share
/// @param seriesTried as many series are corrected for
std::optional<double> hiddenStep(std::size_t versions, std::size_t newest, double spreadShare,
                                 std::size_t seriesTried, RankSumChance& chance);

}  // namespace zeb::analysis
