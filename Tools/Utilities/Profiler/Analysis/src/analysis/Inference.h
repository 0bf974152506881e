#pragma once

#include "analysis/Run.h"

namespace zeb::analysis {

/// Fills what follows from the other figures of a graph: the time of all executions, its outliers, the sums
/// over its layers, and the tree of an inference.
void addDerivedFigures(Graph& graph);

}  // namespace zeb::analysis
