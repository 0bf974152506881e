#pragma once

#include <cstddef>
#include <optional>
#include <span>

/// What the layers of a graph have in common. Clocks, temperature, memory or a compiler move all layers by
/// one factor; a layer that moves beyond it has a cause of its own.
namespace zeb::analysis {

struct CommonFactor {
    double factor = 1.0;  ///< 1.1: what all layers share takes 10 % longer
    double deviation =
        0.0;  ///< of a layer's logarithm from it: the weighted median of the distances; may be 0
};

/// Layers that it takes, how long each has to be (a log's averages are whole microseconds), and the largest
/// share of their time that one of them may have: a layer above half would be the median itself.
inline constexpr std::size_t minCommonLayers = 8;
inline constexpr double minCommonUs = 20.0;
inline constexpr double maxCommonShare = 0.4;

/// The weighted median of the ratios between two times of each layer, by its first one.
/// @param referenceUs,us of the same layers, in one order; shorter layers and times that are not positive are
///        left out
/// @return nothing when there are too few layers, or one is too large
std::optional<CommonFactor> commonFactor(std::span<const double> referenceUs, std::span<const double> us);

/// @return the share by which a layer's time exceeds what it would be by the factor; nothing for a time that
/// is
///         not positive
std::optional<double> excessOf(double referenceUs, double us, double factor);

}  // namespace zeb::analysis
