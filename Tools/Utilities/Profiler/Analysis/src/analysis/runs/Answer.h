#pragma once

#include <span>
#include <string>

#include "analysis/runs/Comparison.h"

namespace zeb::analysis {

/// A time that may at most be this much slower is told to be not slower, with the share that may be.
inline constexpr double maxNotSlower = 0.05;

/// @param graph compared, but for its answer
/// @param clockDifferences as in ComparisonWarnings.h
Answer answerOn(const GraphComparison& graph, Basis basis, std::span<const std::string> clockDifferences);

/// @return a share in per cent, with a sign if it is none of a limit: "+10.0%"
std::string signedPercent(double share);

/// @return "+8.0% to +12.5%"
std::string textOf(const Interval& interval);

/// @return microseconds with the digits that they deserve: one behind the point, but none from 1000 on, nor
///         for what is next to a whole number
std::string microseconds(double us);
std::string signedMicroseconds(double us);

}  // namespace zeb::analysis
