#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "samplelog/LogWriter.h"

/// Writes the binary objects that the backend leaves in object events.
namespace zeb::samplelog {

/// Configuration of one ORU layer.
struct LayerConfigEntry {
    std::uint32_t layerId = 0;
    std::uint32_t layerType = 0;
    bool offloaded = false;
    bool linked = false;
    bool loopbackEnabled = false;
    std::uint32_t mergedGroup = 0;
};

/// The layer configuration object.
struct LayerConfig {
    std::uint32_t krelClockHz = 0;
    std::uint32_t dspClockHz = 0;
    std::uint32_t layerCount = 0;
    std::vector<LayerConfigEntry> entries;
};

/// Raw counters of one ORU layer over all executions.
struct LayerRecord {
    std::uint32_t nodeCount = 0;
    std::uint32_t execCount = 0;
    std::uint32_t orderKey = 0;
    std::uint64_t totalTimeUs = 0;
    std::uint64_t totalDspCycles = 0;
    std::uint64_t totalCoreCycles = 0;
    std::uint32_t totalHalExecUs = 0;
    std::uint32_t totalKrelExecUs = 0;
    std::uint32_t totalDriverExecUs = 0;
    std::uint32_t totalCacheFlushUs = 0;
};

/// The graph profile object, totals of all executions.
struct GraphProfile {
    std::uint64_t acceleratorTimeUs = 0;
    std::uint32_t executionCount = 0;
    std::uint32_t layerCount = 0;
    std::uint64_t dspGraphTimeUs = 0;
    std::vector<LayerRecord> layerRecords;
};

/// An entry of the node mapping: an ORU layer and the ZEB layers that it works for, as indexes into the name
/// table. The first one is the layer that it is counted for.
struct NodeMappingEntry {
    std::uint32_t oruLayerId = 0;
    std::vector<std::uint32_t> nameIndexes;
};

Bytes encodeLayerConfig(const LayerConfig& config);
Bytes encodeGraphProfile(const GraphProfile& profile);
Bytes encodeNodeMapping(std::span<const NodeMappingEntry> entries);
/// @param names without NUL bytes
Bytes encodeNameTable(std::span<const std::string> names);

}  // namespace zeb::samplelog
