#include "reader/backend/LayerStats.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace zeb::profiling {

namespace {

template <typename Number>
Number quotient(Number total, std::uint32_t count) {
    return count == 0 ? Number{0} : static_cast<Number>(total / count);
}

// Time on the Krel core in us, from cycles and Hz.
std::uint32_t coreTimeUs(std::uint32_t cycles, std::uint32_t clockHz) {
    if (clockHz == 0) {
        return 0;
    }
    const double us = static_cast<double>(cycles) / static_cast<double>(clockHz) * 1000000.0;
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(us));
}

void addCoreFigures(LayerStats& stats, const LayerRecord& record, std::uint32_t krelClockHz) {
    stats.avgHalExecUs = quotient(record.totalHalExecUs, stats.execCount);
    stats.avgDriverExecUs = quotient(record.totalDriverExecUs, stats.execCount);
    stats.avgCacheFlushUs = quotient(record.totalCacheFlushUs, stats.execCount);
    stats.avgKrelExecUs = quotient(record.totalKrelExecUs, stats.execCount);
    stats.nodeCount = record.nodeCount;
    stats.avgCoreCycles = static_cast<std::uint32_t>(quotient(record.totalCoreCycles, stats.execCount));
    stats.avgCoreTimeUs = coreTimeUs(stats.avgCoreCycles, krelClockHz);
}

}  // namespace

std::vector<LayerStats> computeLayerStats(const GraphProfile& profile, const LayerConfig& config) {
    const std::size_t layers =
        std::min({std::size_t{profile.layerCount}, config.entries.size(), profile.layerRecords.size()});
    std::vector<LayerStats> all(layers);
    std::uint32_t groupCount = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t position = 0; position < layers; ++position) {
        const LayerConfigEntry& entry = config.entries[position];
        const LayerRecord& record = profile.layerRecords[position];
        LayerStats& stats = all[position];
        stats.layerId = entry.layerId;
        stats.layerType = entry.layerType;
        stats.offloaded = entry.offloaded();
        stats.linked = entry.linked();
        stats.mergedGroup = entry.mergedGroup;
        stats.loopbackEnabled = entry.loopbackEnabled();
        stats.orderKey = record.orderKey;
        stats.execCount = record.execCount;
        if (stats.offloaded && stats.linked) {
            groupCount = stats.execCount != 0 ? stats.execCount : groupCount;
            stats.execCount = groupCount;
        }
        stats.totalTimeUs = record.totalTimeUs;
        stats.avgTimeUs = quotient(record.totalTimeUs, stats.execCount);
        stats.totalDspCycles = record.totalDspCycles;
        stats.avgDspCycles = quotient(record.totalDspCycles, stats.execCount);
        if (stats.offloaded) {
            addCoreFigures(stats, record, config.krelClockHz);
        }
    }
    return all;
}

}  // namespace zeb::profiling
