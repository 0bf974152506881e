#include "reader/backend/BackendObjects.h"

#include <limits>
#include <map>
#include <optional>

#include "reader/backend/PayloadReader.h"

namespace zeb::profiling {

namespace {

constexpr std::uint64_t layerConfigHeadSize = 16;
constexpr std::size_t layerConfigEntrySize = 16;
constexpr std::uint64_t graphProfileHeadSize = 80;
constexpr std::size_t layerRecordSize = 88;
constexpr std::uint64_t mappingHeadSize = 4;
constexpr std::uint64_t nameTableHeadSize = 4;
constexpr std::size_t nameTableEntrySize = 8;

LayerConfigEntry readLayerConfigEntry(const PayloadReader& payload, std::uint64_t at) {
    return {
        .layerId = payload.u32(at),
        .layerType = payload.u32(at + 4),
        .flags = payload.u32(at + 8),
        .mergedGroup = payload.u32(at + 12),
    };
}

LayerRecord readLayerRecord(const PayloadReader& payload, std::uint64_t at) {
    return {
        .nodeCount = payload.u32(at + 4),
        .execCount = payload.u32(at + 8),
        .orderKey = payload.u32(at + 12),
        .totalTimeUs = payload.u64(at + 32),
        .totalDspCycles = payload.u64(at + 56),
        .totalCoreCycles = payload.u64(at + 64),
        .totalHalExecUs = payload.u32(at + 72),
        .totalKrelExecUs = payload.u32(at + 76),
        .totalDriverExecUs = payload.u32(at + 80),
        .totalCacheFlushUs = payload.u32(at + 84),
    };
}

// Names of ZEB layers, by index. An entry of the table holds the name's offset in its high half.
class NodeNameTable {
public:
    explicit NodeNameTable(std::span<const std::byte> object)
        : payload_(object),
          count_(payload_.records(nameTableHeadSize, nameTableEntrySize, payload_.u32(0))) {}

    [[nodiscard]] std::optional<std::string_view> name(std::uint32_t index) {
        if (index >= count_) {
            return std::nullopt;
        }
        const std::uint64_t offset =
            payload_.u32(nameTableHeadSize + std::uint64_t{index} * nameTableEntrySize + 4);
        return payload_.has(offset, 1) ? std::optional(text(offset)) : std::nullopt;
    }

private:
    // Any number of names may begin in one long text: its characters are searched for the end once.
    std::string_view text(std::uint64_t offset) {
        constexpr std::uint64_t longestShort = 256;
        const std::string_view start = payload_.text(offset, longestShort);
        if (start.size() < longestShort) {
            return start;
        }
        auto found = longTexts_.lower_bound(offset);
        if (found == longTexts_.end() || found->second > offset) {
            const std::uint64_t limit = found == longTexts_.end() ? payload_.size() : found->second;
            const std::uint64_t end = offset + payload_.text(offset, limit - offset).size();
            if (end < limit || found == longTexts_.end()) {
                found = longTexts_.emplace(end, offset).first;
            }
            found->second = offset;
        }
        return {start.data(), static_cast<std::size_t>(found->first - offset)};
    }

    PayloadReader payload_;
    std::size_t count_;
    std::map<std::uint64_t, std::uint64_t> longTexts_;  ///< where each begins that was met, by its end
};

}  // namespace

LayerConfig readLayerConfig(std::span<const std::byte> object, bool withEntries) {
    const PayloadReader payload(object);
    LayerConfig config{.krelClockHz = payload.u32(0),
                       .dspClockHz = payload.u32(4),
                       .layerCount = payload.u32(8),
                       .entries = {}};
    if (withEntries) {
        const std::size_t count =
            payload.records(layerConfigHeadSize, layerConfigEntrySize, config.layerCount);
        config.entries.reserve(count);
        for (std::size_t index = 0; index < count; ++index) {
            config.entries.push_back(
                readLayerConfigEntry(payload, layerConfigHeadSize + index * layerConfigEntrySize));
        }
    }
    return config;
}

GraphProfile readGraphProfile(std::span<const std::byte> object, bool withRecords) {
    const PayloadReader payload(object);
    GraphProfile profile{.acceleratorTimeUs = payload.u64(16),
                         .executionCount = payload.u32(56),
                         .layerCount = payload.u32(64),
                         .dspGraphTimeUs = payload.u64(72),
                         .layerRecords = {}};
    if (withRecords) {
        const std::size_t count =
            payload.records(graphProfileHeadSize, layerRecordSize, std::numeric_limits<std::uint64_t>::max());
        profile.layerRecords.reserve(count);
        for (std::size_t index = 0; index < count; ++index) {
            profile.layerRecords.push_back(
                readLayerRecord(payload, graphProfileHeadSize + index * layerRecordSize));
        }
    }
    return profile;
}

std::vector<NodeMappingEntry> readNodeMapping(std::span<const std::byte> mappingObject,
                                              std::span<const std::byte> namesObject) {
    const PayloadReader mapping(mappingObject);
    NodeNameTable nodeNames(namesObject);
    const std::uint32_t entryCount = mapping.u32(0);
    std::vector<NodeMappingEntry> entries;
    std::uint64_t at = mappingHeadSize;
    // An entry is its layer, the number of its values, and the values, the first of which is the index of the
    // name.
    for (std::uint32_t entry = 0; entry < entryCount && mapping.has(at, 12); ++entry) {
        const std::uint32_t valueCount = mapping.u32(at + 4);
        const auto name = valueCount == 0 ? std::nullopt : nodeNames.name(mapping.u32(at + 8));
        if (name) {
            entries.push_back({mapping.u32(at), *name});
        }
        at += 8 + std::uint64_t{valueCount} * 4;
    }
    return entries;
}

}  // namespace zeb::profiling
