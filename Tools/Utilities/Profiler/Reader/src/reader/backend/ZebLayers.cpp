#include "reader/backend/ZebLayers.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <tuple>
#include <utility>

#include "store/HashIndex.h"

namespace zeb::profiling {

namespace {

// The position of the ZEB layer of each entry, which is new where it is that of `layers`' end.
std::vector<std::uint32_t> findLayers(const std::vector<NodeMappingEntry>& mapping,
                                      std::vector<ZebLayer>& layers) {
    HashIndex positions;
    std::vector<std::uint32_t> found;
    found.reserve(mapping.size());
    for (const NodeMappingEntry& entry : mapping) {
        const std::string_view name = entry.zebLayerName;
        const auto isNamed = [&](std::uint32_t position) { return layers[position].name == name; };
        // Mostly the ORU layers of a ZEB layer stand together.
        const bool isLast = !layers.empty() && isNamed(found.back());
        const std::uint32_t position = isLast ? found.back() : positions.findOrAdd(name, isNamed);
        if (position == layers.size()) {
            layers.push_back({.name = name, .oruLayerIds = {}});
        }
        found.push_back(position);
    }
    return found;
}

}  // namespace

ZebLayers gatherZebLayers(const std::vector<NodeMappingEntry>& mapping) {
    std::vector<ZebLayer> layers;
    const std::vector<std::uint32_t> found = findLayers(mapping, layers);
    std::vector<std::uint32_t> ends(layers.size() + 1);  // of the layers' ids; begins as those before them
    for (const std::uint32_t layer : found) {
        ++ends[layer + 1];
    }
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    std::vector<std::uint32_t> oruLayerIds(mapping.size());
    for (std::size_t entry = 0; entry < mapping.size(); ++entry) {
        oruLayerIds[ends[found[entry]]++] = mapping[entry].oruLayerId;
    }
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        const std::size_t begin = layer == 0 ? 0 : ends[layer - 1];
        layers[layer].oruLayerIds = std::span(oruLayerIds).subspan(begin, ends[layer] - begin);
    }
    const auto reportPosition = [](const ZebLayer& layer) {
        return std::tuple(static_cast<std::int32_t>(layer.oruLayerIds.back()), layer.name);
    };
    std::sort(layers.begin(), layers.end(), [&reportPosition](const ZebLayer& left, const ZebLayer& right) {
        return reportPosition(left) < reportPosition(right);
    });
    return {std::move(layers), std::move(oruLayerIds)};
}

void addLayerTimes(std::vector<ZebLayer>& zebLayers, const LayerStatsList& layerStats) {
    for (ZebLayer& zebLayer : zebLayers) {
        for (const std::uint32_t oruLayerId : zebLayer.oruLayerIds) {
            if (oruLayerId >= layerStats.size()) {
                continue;
            }
            const LayerStats stats = layerStats[oruLayerId];
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
