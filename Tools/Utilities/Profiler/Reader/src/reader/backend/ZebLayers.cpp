#include "reader/backend/ZebLayers.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <unordered_map>

namespace zeb::profiling {

std::vector<ZebLayer> gatherZebLayers(const std::vector<NodeMappingEntry>& mapping) {
    std::vector<ZebLayer> layers;
    std::unordered_map<std::string_view, std::size_t> positions;
    for (const NodeMappingEntry& entry : mapping) {
        const auto [position, added] = positions.try_emplace(entry.zebLayerName, layers.size());
        if (added) {
            layers.push_back({.name = entry.zebLayerName, .oruLayerIds = {}});
        }
        layers[position->second].oruLayerIds.push_back(entry.oruLayerId);
    }
    const auto reportPosition = [](const ZebLayer& layer) {
        return std::tuple(static_cast<std::int32_t>(layer.oruLayerIds.back()), layer.name);
    };
    std::sort(layers.begin(), layers.end(), [&reportPosition](const ZebLayer& left, const ZebLayer& right) {
        return reportPosition(left) < reportPosition(right);
    });
    return layers;
}

void addLayerTimes(std::vector<ZebLayer>& zebLayers, const std::vector<LayerStats>& layerStats) {
    for (ZebLayer& zebLayer : zebLayers) {
        for (const std::uint32_t oruLayerId : zebLayer.oruLayerIds) {
            if (oruLayerId >= layerStats.size()) {
                continue;
            }
            const LayerStats& stats = layerStats[oruLayerId];
            if (stats.offloaded) {
                zebLayer.krelTimeUs += stats.avgCoreTimeUs;
            } else {
                zebLayer.dspTimeUs += stats.avgTimeUs;
            }
        }
    }
}

TimeShare shareOfTime(const std::vector<ZebLayer>& zebLayers) {
    std::uint64_t totalDspTimeUs = 0;
    std::uint64_t totalKrelTimeUs = 0;
    for (const ZebLayer& layer : zebLayers) {
        totalDspTimeUs += layer.dspTimeUs;
        totalKrelTimeUs += layer.krelTimeUs;
    }
    const std::uint64_t total = totalDspTimeUs + totalKrelTimeUs;
    if (total == 0) {
        return {};
    }
    const double dspTimePercent = static_cast<double>(totalDspTimeUs) / static_cast<double>(total) * 100.0;
    return {dspTimePercent, 100.0 - dspTimePercent};
}

}  // namespace zeb::profiling
