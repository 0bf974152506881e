#pragma once

#include <optional>
#include <vector>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/GraphMatching.h"

/// The layers of a graph on both sides: what they share, and which of them changed by itself.
namespace zeb::analysis {

/// The common factor of each log's layers against their mean times in the base.
struct LayerFactors {
    std::vector<std::size_t> logs[2];  ///< as in `LayerRows`
    std::vector<double> factors[2];
    double deviation = 0.0;  ///< of the layers, the largest over the logs
};

/// @return nothing when the layers of a log have none
std::optional<LayerFactors> factorsOf(const LayerRows& rows);

/// @return by how much what the layers share changed
SharedChange sharedChange(const LayerFactors& factors, Basis basis);

/// @param factors of the graph's layers; null: each row is judged by its whole change
/// @return the rows, the largest change first
std::vector<LayerChange> compareLayers(const LayerRows& rows, Basis basis, const LayerFactors* factors);

}  // namespace zeb::analysis
