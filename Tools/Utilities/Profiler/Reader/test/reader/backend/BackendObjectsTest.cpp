// The binary objects of the backend: whole, short, and with counts that promise more than there is.

#include <gtest/gtest.h>

#include <ctime>

#include "reader/backend/BackendObjects.h"
#include "reader/backend/ZebLayers.h"
#include "samplelog/BackendObjectWriter.h"
#include "support/TestLog.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::put32;
using Numbers = std::vector<std::uint64_t>;

constexpr std::uint32_t huge = 4294967295U;
constexpr std::size_t none = 99;  // an offset at which nothing is bent

std::span<const std::byte> spanOf(const Bytes& bytes) {
    return std::as_bytes(std::span(bytes));
}

// Each copy is exactly as long as it says, so that the sanitizer sees what is read behind it.
Bytes cut(const Bytes& bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

std::uint64_t wideAt(std::uint64_t offset) {
    return (offset + 1) | (offset + 5) << 32U;
}

TEST(BackendObjects, HaveTheirFieldsAtTheirOffsets) {
    Bytes bytes(80 + 2 * 88);  // the number at each offset is the offset, plus one
    for (std::uint32_t at = 0; at < bytes.size(); at += 4) {
        put32(bytes, at, at + 1);
    }
    const Bytes start = cut(bytes, 48);
    const LayerConfig config = readLayerConfig(spanOf(start), true);
    EXPECT_EQ((Numbers{config.krelClockHz, config.dspClockHz, config.layerCount}), (Numbers{1, 5, 9}));
    ASSERT_EQ(config.entries.size(), 2U);
    const LayerConfigEntry& entry = config.entries[1];
    EXPECT_EQ((Numbers{entry.layerId, entry.layerType, entry.flags, entry.mergedGroup}),
              (Numbers{33, 37, 41, 45}));
    EXPECT_TRUE(readLayerConfig(spanOf(start), false).entries.empty());

    const GraphProfile profile = readGraphProfile(spanOf(bytes), true);
    EXPECT_EQ((Numbers{profile.acceleratorTimeUs, profile.executionCount, profile.layerCount,
                       profile.dspGraphTimeUs}),
              (Numbers{wideAt(16), 57, 65, wideAt(72)}));
    ASSERT_EQ(profile.layerRecords.size(), 2U) << "by the object's size, not by its count";
    const LayerRecord& record = profile.layerRecords[1];
    EXPECT_EQ((Numbers{record.nodeCount, record.execCount, record.orderKey, record.totalTimeUs,
                       record.totalDspCycles, record.totalCoreCycles, record.totalHalExecUs,
                       record.totalKrelExecUs, record.totalDriverExecUs, record.totalCacheFlushUs}),
              (Numbers{173, 177, 181, wideAt(200), wideAt(224), wideAt(232), 241, 245, 249, 253}));
    EXPECT_TRUE(readGraphProfile(spanOf(bytes), false).layerRecords.empty());
}

TEST(BackendObjects, GiveWhatAShortObjectHasAndAllotNoMemoryForMore) {
    const Bytes config = samplelog::encodeLayerConfig(
        {.krelClockHz = 7, .dspClockHz = 8, .layerCount = huge, .entries = {{}, {}}});
    for (std::size_t size = 0; size <= config.size(); ++size) {
        const Bytes bytes = cut(config, size);
        const LayerConfig read = readLayerConfig(spanOf(bytes), true);
        EXPECT_EQ(read.krelClockHz, size < 4 ? 0U : 7U);
        EXPECT_EQ(read.layerCount, size < 12 ? 0U : huge);
        EXPECT_EQ(read.entries.size(), size < 32 ? 0U : size < 48 ? 1U : 2U) << size;
        EXPECT_LE(read.entries.capacity(), 2U);
    }
    const Bytes profile = samplelog::encodeGraphProfile(
        {.executionCount = 3, .layerCount = 1, .dspGraphTimeUs = 9, .layerRecords = {{}, {}}});
    for (std::size_t size = 0; size <= profile.size(); ++size) {
        const Bytes bytes = cut(profile, size);
        const GraphProfile read = readGraphProfile(spanOf(bytes), true);
        EXPECT_EQ(read.executionCount, size < 60 ? 0U : 3U);
        EXPECT_EQ(read.dspGraphTimeUs, size < 80 ? 0U : 9U);
        EXPECT_EQ(read.layerRecords.size(), size < 168 ? 0U : size < 256 ? 1U : 2U) << size;
        EXPECT_LE(read.layerRecords.capacity(), 2U);
    }
}

Bytes mappingOf(const std::vector<samplelog::NodeMappingEntry>& entries) {
    return samplelog::encodeNodeMapping(entries);
}

Bytes namesOf(const std::vector<std::string>& names) {
    return samplelog::encodeNameTable(names);
}

// The mapping as text: "layer=name" each.
std::string mappingText(const Bytes& mapping, const Bytes& names) {
    std::string text;
    const auto entries = readNodeMapping(spanOf(mapping), spanOf(names));
    EXPECT_LE(entries.capacity(), 8U);
    for (const auto& [oruLayerId, zebLayerName] : entries) {
        text += std::to_string(oruLayerId) + "=" + std::string(zebLayerName) + " ";
    }
    return text;
}

TEST(NodeMapping, SkipsWhatIsOutOfRange) {
    // Entries stand at 4, 16 and 28: layer, value count, name index. The names' entries stand at 4 and 12,
    // their offsets in the high halves; the names begin at 20 and 23, and the object ends at 28.
    const struct {
        const char* damage;
        std::size_t mappingAt;
        std::size_t namesAt;
        std::uint32_t value;
        const char* mapping;
    } cases[] = {
        {"more entries than there are", 0, none, huge, "5=in 6=conv 7=in "},
        {"fewer entries than there are", 0, none, 1, "5=in "},
        {"a layer that is no layer", 4, none, huge, "4294967295=in 6=conv 7=in "},
        {"a value count that leads behind the end", 8, none, huge, "5=in "},
        {"a value count that takes in the next entry", 8, none, 4, "5=in 7=in "},
        {"an entry without values", 32, none, 0, "5=in 6=conv "},
        {"a name index that is no index", 12, none, huge, "6=conv 7=in "},
        {"the index behind the last", 12, none, 2, "6=conv 7=in "},
        {"more names than there are", none, 0, huge, "5=in 6=conv 7=in "},
        {"fewer names than there are", none, 0, 1, "5=in 7=in "},
        {"a name offset that is no offset", none, 8, huge, "6=conv "},
        {"the offset behind the last byte", none, 8, 28, "6=conv "},
        {"the offset of the last byte", none, 8, 27, "5= 6=conv 7= "},
        {"the low half of a name's entry", none, 4, huge, "5=in 6=conv 7=in "},
    };
    for (const auto& [damage, mappingAt, namesAt, value, expected] : cases) {
        Bytes mapping = mappingOf({{5, {0}}, {6, {1}}, {7, {0}}});
        Bytes names = namesOf({"in", "conv"});
        put32(mappingAt != none ? mapping : names, mappingAt != none ? mappingAt : namesAt, value);
        EXPECT_EQ(mappingText(mapping, names), expected) << damage;
    }
    EXPECT_EQ(mappingText(mappingOf({{5, {0, huge}}, {6, {}}, {7, {0}}}), namesOf({"in"})), "5=in 7=in ")
        << "further values are passed over";
}

// Long names may begin anywhere in each other, and any number of entries may have the same.
TEST(NodeMapping, FindsLongNamesByWhereTheyStand) {
    const std::string text(1000, 'a');
    Bytes names = namesOf({"0", "1", "2", "3", "4", text + "b", text + "b", text + "b"});
    const std::size_t first = 4 + 8 * 8 + 5 * 2;
    const std::size_t second = first + 1002;
    const std::size_t last = second + 1002;
    names.pop_back();  // the last one ends with the object
    const std::size_t offsets[] = {first + 600, first + 100, second + 100, first,
                                   first + 600, last,        second,       last};
    std::string expected;
    std::vector<samplelog::NodeMappingEntry> entries;
    for (std::uint32_t index = 0; index < 8; ++index) {
        put32(names, 8 + 8 * index, offsets[index]);
        entries.push_back({index, {index}});
        const std::size_t inText = (offsets[index] - first) % 1002;
        expected += std::to_string(index) + "=" + text.substr(inText) + "b ";
    }
    const Bytes mapping = mappingOf(entries);
    EXPECT_EQ(mappingText(mapping, names), expected);
    const ZebLayers layers = gatherZebLayers(readNodeMapping(spanOf(mapping), spanOf(names)));
    std::string ids;
    for (const ZebLayerEntry& layer : layers.zebLayerOrder) {
        for (const std::uint32_t id : layer.oruLayerIds) {
            ids += std::to_string(id) + ",";
        }
        ids += " ";
    }
    EXPECT_EQ(ids, "1,2, 0,4, 3,5,6,7, ");
}

TEST(NodeMapping, CostsNoMoreForALongNameThanForAShortOne) {
    // With so many entries, a tenth of a millisecond for each would be 20 s.
    const Bytes mapping = mappingOf(std::vector<samplelog::NodeMappingEntry>(200'000, {0, {0}}));
    const Bytes names = namesOf({std::string(1U << 22U, 'a')});
    const std::clock_t start = std::clock();
    const ZebLayers layers = gatherZebLayers(readNodeMapping(spanOf(mapping), spanOf(names)));
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 3);
    ASSERT_EQ(layers.zebLayerOrder.size(), 1U);
    EXPECT_EQ(layers.zebLayerOrder[0].name.size(), 1U << 22U);
}

TEST(NodeMapping, IsReadFromShortObjects) {
    const Bytes mapping = mappingOf({{5, {0}}, {6, {1}}});
    const Bytes names = namesOf({"in", "conv"});
    for (std::size_t size = 0; size <= mapping.size(); ++size) {
        EXPECT_EQ(mappingText(cut(mapping, size), names), size < 16   ? ""
                                                          : size < 28 ? "5=in "
                                                                      : "5=in 6=conv ");
    }
    for (std::size_t size = 0; size <= names.size(); ++size) {
        mappingText(mapping, cut(names, size));
    }
    EXPECT_EQ(mappingText(mapping, cut(names, 26)), "5=in 6=con ") << "a name without its end";
}

}  // namespace
}  // namespace zeb::profiling
