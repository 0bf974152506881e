#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
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

/// The figures of the ORU layers by position, each worked out when it is asked for: a model may have many
/// layers, and a report goes over them but a few times.
class LayerStatsList {
public:
    LayerStatsList() = default;

    [[nodiscard]] std::size_t size() const { return execCounts_.size(); }
    [[nodiscard]] LayerStats operator[](std::size_t position) const;
    [[nodiscard]] std::uint32_t layerId(std::size_t position) const { return entries_[position].layerId; }
    [[nodiscard]] std::uint32_t orderKey(std::size_t position) const { return records_[position].orderKey; }

    /// Has the memory of a layer that is soon to be asked for fetched into the caches.
    void prefetch(std::size_t position) const {
        const auto* const record = reinterpret_cast<const char*>(&records_[position]);
        __builtin_prefetch(record);
        __builtin_prefetch(record + sizeof(LayerRecord) - 1);
        __builtin_prefetch(&execCounts_[position]);
        __builtin_prefetch(&entries_[position]);
    }

private:
    friend LayerStatsList computeLayerStats(const GraphProfile& profile, const LayerConfig& config);

    std::span<const LayerRecord> records_;
    std::span<const LayerConfigEntry> entries_;
    std::uint32_t krelClockHz_ = 0;
    std::vector<std::uint32_t> execCounts_;  ///< of the layers, those of linked ones resolved
};

/// Works out the figures of the layers from their configuration and their raw counters.
/// @param profile, config have to outlive the list and to stay as they are
/// @return one entry for each layer that the profile announces and that has both an entry and a record
LayerStatsList computeLayerStats(const GraphProfile& profile, const LayerConfig& config);

}  // namespace zeb::profiling
