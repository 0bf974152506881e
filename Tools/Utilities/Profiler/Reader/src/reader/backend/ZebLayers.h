#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "reader/backend/BackendObjects.h"
#include "reader/backend/LayerStats.h"

namespace zeb::profiling {

/// A layer of the framework's graph: the ORU layers that make it up and its time per execution.
struct ZebLayer {
    std::string_view name;                       ///< lies in the name table object
    std::span<const std::uint32_t> oruLayerIds;  ///< in the order of the mapping, never empty
    std::uint64_t dspTimeUs = 0;                 ///< average time of the layers on the DSP
    std::uint64_t krelTimeUs = 0;                ///< core time of the offloaded layers

    [[nodiscard]] std::uint64_t totalTimeUs() const { return dspTimeUs + krelTimeUs; }
};

/// How the layers' time is split, in per cent; both 0 when there is no time to split.
struct TimeShare {
    double dspTimePercent = 0.0;
    double krelTimePercent = 0.0;
};

/// The layers of a graph, and the memory behind their lists of ids: a copy would refer into the original.
struct ZebLayers {
    ZebLayers() = default;
    /// @param gathered have their lists of ids in `ids`
    ZebLayers(std::vector<ZebLayer> gathered, std::vector<std::uint32_t> ids)
        : layers(std::move(gathered)), oruLayerIds(std::move(ids)) {}
    ZebLayers(ZebLayers&&) = default;
    ZebLayers& operator=(ZebLayers&&) = default;

    std::vector<ZebLayer> layers;  ///< in report order
    std::vector<std::uint32_t> oruLayerIds;
};

/// Gathers a mapping by ZEB layer. They are ordered by the last ORU layer of each as a signed number, then by
/// name.
ZebLayers gatherZebLayers(const std::vector<NodeMappingEntry>& mapping);

/// Adds the times of the ORU layers to the ZEB layers that they make up. An ORU layer without figures adds
/// nothing.
void addLayerTimes(std::vector<ZebLayer>& zebLayers, const LayerStatsList& layerStats);

TimeShare shareOfTime(const std::vector<ZebLayer>& zebLayers);

}  // namespace zeb::profiling
