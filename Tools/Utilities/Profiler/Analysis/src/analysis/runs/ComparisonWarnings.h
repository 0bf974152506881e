#pragma once

#include <span>
#include <string>
#include <vector>

#include "analysis/runs/RunSummary.h"

namespace zeb::analysis {

/// @return what differs about the runs and explains changes, levels, clocks, versions and labels: each like
/// "Krel clocks
///         differ: base 1017 MHz; new 500 MHz"
std::vector<std::string> differencesOf(std::span<const RunSummary> base, std::span<const RunSummary> changed);

/// @return the clocks among them
std::vector<std::string> clockDifferencesOf(std::span<const RunSummary> base,
                                            std::span<const RunSummary> changed);

}  // namespace zeb::analysis
