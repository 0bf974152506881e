#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "analysis/Run.h"

/// What stands out in a run, by the rules of one table: docs/top.md shows it with its thresholds.
namespace zeb::analysis {

/// The rule that speaks while the figures are worked out.
inline constexpr std::string_view mappingRule = "mapping-of-another-graph";

inline constexpr std::size_t maxFindings = 7;  ///< of a graph

/// Fills the findings of a graph from its figures.
void addFindings(Graph& graph, const Run& run);

/// @return the names of all rules
std::vector<std::string_view> findingRules();

/// Fills the findings of a run and of its graphs from their figures.
void addFindings(Run& run);

}  // namespace zeb::analysis
