#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "analysis/Run.h"

namespace zeb::analysis {

/// @param sorted ascending, not empty
/// @param share 0 to 1
/// @return the value below which that share of them lies, in proportion between the two nearest
double quantile(std::span<const double> sorted, double share);

/// @return how the durations are spread that are there and not 0
Spread spreadOf(const Executions& executions);

/// @param spread of these executions
Outliers outliersOf(const Executions& executions, const Spread& spread);

}  // namespace zeb::analysis
