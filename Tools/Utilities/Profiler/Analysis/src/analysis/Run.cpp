#include "analysis/Run.h"

#include <numeric>

namespace zeb::analysis {

namespace {

template <typename Layers, typename Time>
std::uint64_t sumOver(const Layers& layers, Time time) {
    return std::accumulate(layers.begin(), layers.end(), std::uint64_t{0},
                           [&time](std::uint64_t sum, const auto& layer) { return sum + time(layer); });
}

}  // namespace

std::uint64_t Graph::layersDspUs() const {
    return zebLayers.empty()
               ? sumOver(oruLayers,
                         [](const OruLayer& layer) { return layer.isOffloaded ? 0 : layer.timeUs(); })
               : sumOver(zebLayers, [](const ZebLayer& layer) { return layer.dspUs; });
}

std::uint64_t Graph::layersKrelUs() const {
    return zebLayers.empty()
               ? sumOver(oruLayers,
                         [](const OruLayer& layer) { return layer.isOffloaded ? layer.timeUs() : 0; })
               : sumOver(zebLayers, [](const ZebLayer& layer) { return layer.krelUs; });
}

}  // namespace zeb::analysis
