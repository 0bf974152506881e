// The binary objects of the backend: whole, short, and with counts that promise more than there is.

#include <gtest/gtest.h>

#include <algorithm>

#include "reader/backend/BackendObjects.h"
#include "support/BackendObjects.h"

namespace zeb::profiling {
namespace {

using samplelog::Bytes;
using test::put32;
using test::put64;

constexpr std::uint32_t huge = 4294967295U;
constexpr std::size_t none = 99;  // an offset at which nothing is bent

std::span<const std::byte> spanOf(const Bytes& bytes) {
    return std::as_bytes(std::span(bytes));
}

// An object whose number at each offset is the offset, plus one, in the low and in the high half.
Bytes offsetsObject(std::size_t size) {
    Bytes bytes(size);
    for (std::uint32_t at = 0; at + 4 <= size; at += 4) {
        put32(bytes, at, at + 1);
    }
    return bytes;
}

std::uint64_t wideAt(std::uint64_t offset) {
    return (offset + 1) | (offset + 5) << 32U;
}

TEST(LayerConfig, HasItsFieldsAtTheirOffsets) {
    const Bytes bytes = offsetsObject(48);
    const LayerConfig config = readLayerConfig(spanOf(bytes), true);
    EXPECT_EQ(config.krelClockHz, 1U);
    EXPECT_EQ(config.dspClockHz, 5U);
    EXPECT_EQ(config.layerCount, 9U);
    ASSERT_EQ(config.entries.size(), 2U);
    EXPECT_EQ(config.entries[1].layerId, 33U);
    EXPECT_EQ(config.entries[1].layerType, 37U);
    EXPECT_EQ(config.entries[1].flags, 41U);
    EXPECT_EQ(config.entries[1].mergedGroup, 45U);
    EXPECT_TRUE(readLayerConfig(spanOf(bytes), false).entries.empty());
}

TEST(GraphProfile, HasItsFieldsAtTheirOffsets) {
    const Bytes bytes = offsetsObject(80 + 2 * 88);
    const GraphProfile profile = readGraphProfile(spanOf(bytes), true);
    EXPECT_EQ(profile.acceleratorTimeUs, wideAt(16));
    EXPECT_EQ(profile.executionCount, 57U);
    EXPECT_EQ(profile.layerCount, 65U);
    EXPECT_EQ(profile.dspGraphTimeUs, wideAt(72));
    ASSERT_EQ(profile.layerRecords.size(), 2U) << "by the object's size, not by its count";
    const LayerRecord& record = profile.layerRecords[1];
    EXPECT_EQ(record.nodeCount, 173U);
    EXPECT_EQ(record.execCount, 177U);
    EXPECT_EQ(record.orderKey, 181U);
    EXPECT_EQ(record.totalTimeUs, wideAt(200));
    EXPECT_EQ(record.totalDspCycles, wideAt(224));
    EXPECT_EQ(record.totalCoreCycles, wideAt(232));
    EXPECT_EQ(record.totalHalExecUs, 241U);
    EXPECT_EQ(record.totalKrelExecUs, 245U);
    EXPECT_EQ(record.totalDriverExecUs, 249U);
    EXPECT_EQ(record.totalCacheFlushUs, 253U);
    EXPECT_TRUE(readGraphProfile(spanOf(bytes), false).layerRecords.empty());
}

// The objects are cut at every byte; each copy is exactly as long as it says, so that the sanitizer sees what
// is read behind it.
TEST(BackendObjects, GiveWhatAShortObjectHas) {
    const Bytes config = test::layerConfigObject(7, 8, {{.id = 1}, {.id = 2}});
    for (std::size_t size = 0; size <= config.size(); ++size) {
        const Bytes cut(config.begin(), config.begin() + static_cast<std::ptrdiff_t>(size));
        const LayerConfig read = readLayerConfig(spanOf(cut), true);
        EXPECT_EQ(read.krelClockHz, size < 4 ? 0U : 7U);
        EXPECT_EQ(read.dspClockHz, size < 8 ? 0U : 8U);
        EXPECT_EQ(read.entries.size(), size < 32 ? 0U : size < 48 ? 1U : 2U) << size;
    }
    const Bytes profile = test::graphProfileObject({.executions = 3, .dspGraphUs = 9}, {{}, {}});
    for (std::size_t size = 0; size <= profile.size(); ++size) {
        const Bytes cut(profile.begin(), profile.begin() + static_cast<std::ptrdiff_t>(size));
        const GraphProfile read = readGraphProfile(spanOf(cut), true);
        EXPECT_EQ(read.executionCount, size < 60 ? 0U : 3U);
        EXPECT_EQ(read.dspGraphTimeUs, size < 80 ? 0U : 9U);
        EXPECT_EQ(read.layerRecords.size(), size < 168 ? 0U : size < 256 ? 1U : 2U) << size;
    }
}

TEST(BackendObjects, AllotNoMemoryForLayersThatAreNotThere) {
    Bytes config = test::layerConfigObject(7, 8, {{.id = 1}, {.id = 2}});
    put32(config, 8, huge);
    const LayerConfig read = readLayerConfig(spanOf(config), true);
    EXPECT_EQ(read.layerCount, huge);
    EXPECT_EQ(read.entries.size(), 2U);
    EXPECT_LE(read.entries.capacity(), 2U);
    Bytes profile = test::graphProfileObject({.executions = huge}, {{}, {}});
    put32(profile, 64, huge);
    EXPECT_LE(readGraphProfile(spanOf(profile), true).layerRecords.capacity(), 2U);
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
        {"none", none, none, 0, "5=in 6=conv 7=in "},
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
        {"no names", none, 0, 0, ""},
        {"a name offset that is no offset", none, 8, huge, "6=conv "},
        {"the offset behind the last byte", none, 8, 28, "6=conv "},
        {"the offset of the last byte", none, 8, 27, "5= 6=conv 7= "},
        {"the offset of a name's middle", none, 8, 25, "5=nv 6=conv 7=nv "},
        {"the low half of a name's entry", none, 4, huge, "5=in 6=conv 7=in "},
    };
    for (const auto& [damage, mappingAt, namesAt, value, expected] : cases) {
        Bytes mapping = test::nodeMappingObject({{5, 0}, {6, 1}, {7, 0}});
        Bytes names = test::nodeNamesObject({"in", "conv"});
        ASSERT_EQ(names.size(), 28U);
        if (mappingAt != none) {
            put32(mapping, mappingAt, value);
        }
        if (namesAt != none) {
            put32(names, namesAt, value);
        }
        EXPECT_EQ(mappingText(mapping, names), expected) << damage;
    }
}

TEST(NodeMapping, PassesOverFurtherValues) {
    Bytes mapping(4 + 16 + 8 + 12);
    put32(mapping, 0, 3);
    put32(mapping, 4, 5);  // two values
    put32(mapping, 8, 2);
    put32(mapping, 16, huge);
    put32(mapping, 20, 6);  // no value
    put32(mapping, 28, 7);
    put32(mapping, 32, 1);
    EXPECT_EQ(mappingText(mapping, test::nodeNamesObject({"in"})), "5=in 7=in ");
}

TEST(NodeMapping, IsReadFromShortObjects) {
    const Bytes mapping = test::nodeMappingObject({{5, 0}, {6, 1}});
    const Bytes names = test::nodeNamesObject({"in", "conv"});
    const auto cut = [](const Bytes& bytes, std::size_t size) {
        return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    };
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
