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

LayerStatsList computeLayerStats(const GraphProfile& profile, const LayerConfig& config) {
    const std::size_t layers =
        std::min({std::size_t{profile.layerCount}, config.entries.size(), profile.layerRecords.size()});
    LayerStatsList list;
    list.records_ = profile.layerRecords;
    list.entries_ = config.entries;
    list.krelClockHz_ = config.krelClockHz;
    list.execCounts_.resize(layers);
    std::uint32_t groupCount = std::numeric_limits<std::uint32_t>::max();
    for (std::size_t position = 0; position < layers; ++position) {
        const LayerConfigEntry& entry = config.entries[position];
        std::uint32_t count = profile.layerRecords[position].execCount;
        if (entry.offloaded() && entry.linked()) {
            groupCount = count != 0 ? count : groupCount;
            count = groupCount;
        }
        list.execCounts_[position] = count;
    }
    return list;
}

LayerStats LayerStatsList::operator[](std::size_t position) const {
    const LayerConfigEntry& entry = entries_[position];
    const LayerRecord& record = records_[position];
    const std::uint32_t count = execCounts_[position];
    LayerStats stats{.layerId = entry.layerId,
                     .layerType = entry.layerType,
                     .offloaded = entry.offloaded(),
                     .linked = entry.linked(),
                     .mergedGroup = entry.mergedGroup,
                     .loopbackEnabled = entry.loopbackEnabled(),
                     .execCount = count,
                     .avgTimeUs = quotient(record.totalTimeUs, count),
                     .totalTimeUs = record.totalTimeUs,
                     .avgDspCycles = quotient(record.totalDspCycles, count),
                     .totalDspCycles = record.totalDspCycles};
    if (stats.offloaded) {
        addCoreFigures(stats, record, krelClockHz_);
    }
    return stats;
}

}  // namespace zeb::profiling
