#include "reader/backend/ZebLayers.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "store/HashIndex.h"

namespace zeb::profiling {

namespace {

// Finds ZEB layers by name, and adds those that are new.
class LayerFinder {
public:
    explicit LayerFinder(std::vector<ZebLayerEntry>& layers) : layers_(layers) {}

    std::uint32_t positionOf(std::string_view name) {
        constexpr std::size_t longestShort = 256;
        if (name.size() <= longestShort) {
            return findOrAdd(name);
        }
        // Any number of entries may have the same long name: its characters are looked at once.
        auto found = longNames_.find(name.data());
        if (found == longNames_.end()) {
            found = longNames_.emplace(name.data(), findOrAdd(name)).first;
        }
        return found->second;
    }

private:
    std::uint32_t findOrAdd(std::string_view name) {
        const auto isNamed = [&](std::uint32_t position) { return layers_[position].name == name; };
        if (!layers_.empty() && isNamed(last_)) {  // mostly the ORU layers of a ZEB layer stand together
            return last_;
        }
        last_ = positions_.findOrAdd(name, isNamed,
                                     [&] { layers_.push_back({.name = name, .oruLayerIds = {}}); });
        return last_;
    }

    std::vector<ZebLayerEntry>& layers_;
    HashIndex positions_;
    std::uint32_t last_ = 0;
    std::unordered_map<const char*, std::uint32_t>
        longNames_;  ///< by where they stand, which tells their end
};

// The position of the ZEB layer of each entry.
std::vector<std::uint32_t> findLayers(const std::vector<NodeMappingEntry>& mapping,
                                      std::vector<ZebLayerEntry>& layers) {
    LayerFinder finder(layers);
    std::vector<std::uint32_t> found;
    found.reserve(mapping.size());
    for (const NodeMappingEntry& entry : mapping) {
        found.push_back(finder.positionOf(entry.zebLayerName));
    }
    return found;
}

}  // namespace

ZebLayers::ZebLayers(std::vector<ZebLayerEntry> entries, std::vector<std::uint32_t> ids)
    : zebLayerOrder(std::move(entries)), zebToOruLayers(std::move(ids)) {
    for (const ZebLayerEntry& layer : zebLayerOrder) {
        maxZebLayerNameLength = std::max(maxZebLayerNameLength, layer.name.size());
    }
}

ZebLayers gatherZebLayers(const std::vector<NodeMappingEntry>& mapping) {
    std::vector<ZebLayerEntry> layers;
    const std::vector<std::uint32_t> found = findLayers(mapping, layers);
    std::vector<std::uint32_t> ends(layers.size() + 1);  // of the layers' ids; begins as those before them
    for (const std::uint32_t layer : found) {
        ++ends[layer + 1];
    }
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    std::vector<std::uint32_t> zebToOruLayers(mapping.size());
    for (std::size_t entry = 0; entry < mapping.size(); ++entry) {
        zebToOruLayers[ends[found[entry]]++] = mapping[entry].oruLayerId;
    }
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        const std::size_t begin = layer == 0 ? 0 : ends[layer - 1];
        layers[layer].oruLayerIds = std::span(zebToOruLayers).subspan(begin, ends[layer] - begin);
    }
    const auto reportPosition = [](const ZebLayerEntry& layer) {
        return std::tuple(static_cast<std::int32_t>(layer.lastOruLayerId()), layer.name);
    };
    std::sort(layers.begin(), layers.end(),
              [&reportPosition](const ZebLayerEntry& left, const ZebLayerEntry& right) {
                  return reportPosition(left) < reportPosition(right);
              });
    return {std::move(layers), std::move(zebToOruLayers)};
}

std::vector<ZebLayerStats> computeZebLayerStats(const std::vector<ZebLayerEntry>& zebLayerOrder,
                                                const LayerStatsList& layerStats) {
    std::vector<ZebLayerStats> zebLayerStats;
    zebLayerStats.reserve(zebLayerOrder.size());
    for (const ZebLayerEntry& layer : zebLayerOrder) {
        ZebLayerStats& times = zebLayerStats.emplace_back();
        for (const std::uint32_t oruLayerId : layer.oruLayerIds) {
            if (oruLayerId >= layerStats.size()) {
                continue;
            }
            const LayerStats stats = layerStats[oruLayerId];
            if (stats.offloaded) {
                times.krelTimeUs += stats.avgCoreTimeUs;
            } else {
                times.dspTimeUs += stats.avgTimeUs;
            }
        }
    }
    return zebLayerStats;
}

TimeShare shareOfTime(const std::vector<ZebLayerStats>& zebLayerStats) {
    std::uint64_t totalDspTimeUs = 0;
    std::uint64_t totalKrelTimeUs = 0;
    for (const ZebLayerStats& layer : zebLayerStats) {
        totalDspTimeUs += layer.dspTimeUs;
        totalKrelTimeUs += layer.krelTimeUs;
    }
    // Added as floats: together they may take more than 64 bits.
    const double total = static_cast<double>(totalDspTimeUs) + static_cast<double>(totalKrelTimeUs);
    if (total == 0.0) {
        return {};
    }
    const double dspTimePercent = static_cast<double>(totalDspTimeUs) / total * 100.0;
    return {dspTimePercent, 100.0 - dspTimePercent};
}

}  // namespace zeb::profiling
