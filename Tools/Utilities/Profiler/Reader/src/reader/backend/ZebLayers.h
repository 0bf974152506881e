#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "reader/backend/BackendObjects.h"
#include "reader/backend/LayerStats.h"

namespace zeb::profiling {

/// A layer of the framework's graph, and the ORU layers that make it up.
struct ZebLayerEntry {
    std::string_view name;                       ///< lies in the name table object
    std::span<const std::uint32_t> oruLayerIds;  ///< in the order of the mapping, never empty

    [[nodiscard]] std::uint32_t lastOruLayerId() const { return oruLayerIds.back(); }
};

/// Its time per execution.
struct ZebLayerStats {
    std::uint64_t dspTimeUs = 0;   ///< average time of the layers on the DSP
    std::uint64_t krelTimeUs = 0;  ///< core time of the offloaded layers

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
    /// @param entries have their lists of ids in `ids`
    ZebLayers(std::vector<ZebLayerEntry> entries, std::vector<std::uint32_t> ids);
    ZebLayers(ZebLayers&&) = default;
    ZebLayers& operator=(ZebLayers&&) = default;

    std::vector<ZebLayerEntry> zebLayerOrder;   ///< in report order
    std::vector<std::uint32_t> zebToOruLayers;  ///< the ids of one layer after those of another
    std::size_t maxZebLayerNameLength = 0;
};

/// Gathers a mapping by ZEB layer. They are ordered by the last ORU layer of each as a signed number, then by
/// name.
ZebLayers gatherZebLayers(const std::vector<NodeMappingEntry>& mapping);

/// Adds up the times of the ORU layers that make up each ZEB layer. An ORU layer without figures adds
/// nothing.
/// @return one for each entry, in the same order
std::vector<ZebLayerStats> computeZebLayerStats(const std::vector<ZebLayerEntry>& zebLayerOrder,
                                                const LayerStatsList& layerStats);

TimeShare shareOfTime(const std::vector<ZebLayerStats>& zebLayerStats);

}  // namespace zeb::profiling
