#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

/// The binary objects that the backend leaves in object events, as plain records. A short object gives what
/// it has: a number that is not there is 0, a record that is not whole is left out. No count in an object
/// decides on memory before it is held against the object's size.
namespace zeb::profiling {

/// Configuration of one ORU layer.
struct LayerConfigEntry {
    std::uint32_t layerId = 0;  ///< also the layer's position among the layers
    std::uint32_t layerType = 0;
    std::uint32_t flags = 0;
    std::uint32_t mergedGroup = 0;  ///< group of a linked layer

    [[nodiscard]] bool offloaded() const { return (flags & 1U) != 0; }
    [[nodiscard]] bool linked() const { return (flags & 2U) != 0; }
    [[nodiscard]] bool loopbackEnabled() const { return (flags & 4U) != 0; }
};

/// The layer configuration object, left among the events of finalization.
struct LayerConfig {
    std::uint32_t krelClockHz = 0;
    std::uint32_t dspClockHz = 0;
    std::uint32_t layerCount = 0;
    std::vector<LayerConfigEntry> entries;
};

/// Raw counters of one ORU layer; the totals cover all executions of the profile.
struct LayerRecord {
    std::uint32_t nodeCount = 0;
    std::uint32_t execCount = 0;  ///< a linked layer may hold 0
    std::uint32_t orderKey = 0;   ///< sort key of the report's rows
    std::uint64_t totalTimeUs = 0;
    std::uint64_t totalDspCycles = 0;
    std::uint64_t totalCoreCycles = 0;
    std::uint32_t totalHalExecUs = 0;
    std::uint32_t totalKrelExecUs = 0;
    std::uint32_t totalDriverExecUs = 0;
    std::uint32_t totalCacheFlushUs = 0;
};

/// The graph profile object. The times cover all executions together.
struct GraphProfile {
    std::uint64_t acceleratorTimeUs = 0;
    std::uint32_t executionCount = 0;
    std::uint32_t layerCount = 0;
    std::uint64_t dspGraphTimeUs = 0;
    std::vector<LayerRecord> layerRecords;
};

/// One entry of the node mapping: an ORU layer, and the ZEB layer that it belongs to.
struct NodeMappingEntry {
    std::uint32_t oruLayerId = 0;
    std::string_view zebLayerName;  ///< lies in the name table object
};

/// @param withEntries whether the entries are read besides the head
LayerConfig readLayerConfig(std::span<const std::byte> object, bool withEntries);

/// @param withRecords whether the layer records are read besides the head
GraphProfile readGraphProfile(std::span<const std::byte> object, bool withRecords);

/// Reads the two objects that tell which ORU layers make up a ZEB layer. An entry whose name is not in the
/// name table is left out.
std::vector<NodeMappingEntry> readNodeMapping(std::span<const std::byte> mappingObject,
                                              std::span<const std::byte> namesObject);

}  // namespace zeb::profiling
