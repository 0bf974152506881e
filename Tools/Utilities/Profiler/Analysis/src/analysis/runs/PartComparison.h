#pragma once

#include <optional>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/GraphMatching.h"

namespace zeb::analysis {

/// Compares the trees of an average inference, part by part by their names.
/// @param isPaired takes only logs whose other one has the graph too
/// @return nothing where no log has a time for it
std::optional<PartChange> compareInferences(const SideGraph& base, const SideGraph& changed, Basis basis,
                                            bool isPaired);

}  // namespace zeb::analysis
