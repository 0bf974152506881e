#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "reader/backend/BackendObjects.h"

namespace zeb::profiling {

/// Figures of one ORU layer, per execution unless they are totals. Those of the Krel core are 0 for a layer
/// that runs on the DSP.
struct LayerStats {
    std::uint32_t layerId = 0;
    std::uint32_t layerType = 0;
    bool offloaded = false;  ///< runs on the Krel core, else on the DSP
    bool linked = false;
    std::uint32_t mergedGroup = 0;
    bool loopbackEnabled = false;
    std::uint32_t execCount = 0;  ///< a linked layer without one takes that of its group
    std::uint32_t orderKey = 0;
    std::uint64_t avgTimeUs = 0;
    std::uint64_t totalTimeUs = 0;
    std::uint64_t avgDspCycles = 0;
    std::uint64_t totalDspCycles = 0;
    std::uint32_t avgHalExecUs = 0;
    std::uint32_t avgDriverExecUs = 0;
    std::uint32_t avgCacheFlushUs = 0;
    std::uint32_t avgKrelExecUs = 0;
    std::uint32_t nodeCount = 0;
    std::uint32_t avgCoreCycles = 0;
    std::uint32_t avgCoreTimeUs = 0;
};

/// Works out the figures of the layers from their configuration and their raw counters.
/// @return one entry for each layer that the profile announces and that has both an entry and a record, by
/// position
std::vector<LayerStats> computeLayerStats(const GraphProfile& profile, const LayerConfig& config);

bool isKnownLayerType(std::uint32_t layerType);

/// @return the layer type's name, or a text that says that it is not known
std::string_view layerTypeName(std::uint32_t layerType);

}  // namespace zeb::profiling
