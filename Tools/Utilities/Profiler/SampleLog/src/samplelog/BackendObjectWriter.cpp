#include "samplelog/BackendObjectWriter.h"

#include <cstddef>

#include "samplelog/ByteWriter.h"

namespace zeb::samplelog {

namespace {

constexpr std::size_t layerConfigHeadSize = 16;
constexpr std::size_t layerConfigEntrySize = 16;
constexpr std::size_t graphProfileHeadSize = 80;
constexpr std::size_t layerRecordSize = 88;
constexpr std::size_t mappingEntrySize = 12;  // of an entry with one name
constexpr std::size_t nameTableHeadSize = 4;
constexpr std::size_t nameTableEntrySize = 8;

std::uint32_t countOf(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

std::uint32_t flagsOf(const LayerConfigEntry& entry) {
    return (entry.offloaded ? 1U : 0U) | (entry.linked ? 2U : 0U) | (entry.loopbackEnabled ? 4U : 0U);
}

void writeLayerRecord(ByteWriter& out, const LayerRecord& record) {
    out.unused(4).u32(record.nodeCount).u32(record.execCount).u32(record.orderKey);
    out.unused(16).u64(record.totalTimeUs);
    out.unused(16).u64(record.totalDspCycles).u64(record.totalCoreCycles);
    out.u32(record.totalHalExecUs).u32(record.totalKrelExecUs);
    out.u32(record.totalDriverExecUs).u32(record.totalCacheFlushUs);
}

}  // namespace

Bytes encodeLayerConfig(const LayerConfig& config) {
    ByteWriter out(layerConfigHeadSize + config.entries.size() * layerConfigEntrySize);
    out.u32(config.krelClockHz).u32(config.dspClockHz).u32(config.layerCount).unused(4);
    for (const LayerConfigEntry& entry : config.entries) {
        out.u32(entry.layerId).u32(entry.layerType).u32(flagsOf(entry)).u32(entry.mergedGroup);
    }
    return out.take();
}

Bytes encodeGraphProfile(const GraphProfile& profile) {
    ByteWriter out(graphProfileHeadSize + profile.layerRecords.size() * layerRecordSize);
    out.unused(16).u64(profile.acceleratorTimeUs);
    out.unused(32).u32(profile.executionCount);
    out.unused(4).u32(profile.layerCount);
    out.unused(4).u64(profile.dspGraphTimeUs);
    for (const LayerRecord& record : profile.layerRecords) {
        writeLayerRecord(out, record);
    }
    return out.take();
}

Bytes encodeNodeMapping(std::span<const NodeMappingEntry> entries) {
    ByteWriter out(4 + entries.size() * mappingEntrySize);
    out.u32(countOf(entries.size()));
    for (const NodeMappingEntry& entry : entries) {
        out.u32(entry.oruLayerId).u32(countOf(entry.nameIndexes.size()));
        for (const std::uint32_t nameIndex : entry.nameIndexes) {
            out.u32(nameIndex);
        }
    }
    return out.take();
}

Bytes encodeNameTable(std::span<const std::string> names) {
    std::size_t nameOffset = nameTableHeadSize + names.size() * nameTableEntrySize;
    ByteWriter out(nameOffset);
    out.u32(countOf(names.size()));
    for (const std::string& name : names) {
        out.unused(4).u32(countOf(nameOffset));
        nameOffset += name.size() + 1;
    }
    for (const std::string& name : names) {
        out.text(name);
    }
    return out.take();
}

}  // namespace zeb::samplelog
