#pragma once

#include <cstddef>
#include <optional>

#include "analysis/Run.h"

namespace zeb::analysis {

/// How the times of executions grow over a run.
struct Trend {
    double growthUs = 0.0;  ///< from the run's begin to its end
    double p = 1.0;         ///< that times without a trend rise like that
};

inline constexpr std::size_t minForTrend = 20;  ///< executions, the first included

/// A line through the ranks of the durations, without the first, which is the warm-up: ranks, since one
/// outlier must not tilt it. Its slope is held against Student's t distribution. Neighbours are alike more
/// often than chance has it, so what they tell counts less, by their autocorrelation, which is taken to be
/// 0.3 at least.
/// @return nothing with fewer than `minForTrend` durations
std::optional<Trend> trendOf(const Executions& executions);

}  // namespace zeb::analysis
