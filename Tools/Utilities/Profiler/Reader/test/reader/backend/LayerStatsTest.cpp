// The figures of the ORU layers, and those of the ZEB layers that they make up.

#include <gtest/gtest.h>

#include "reader/backend/LayerStats.h"
#include "reader/backend/LayerTypeNames.h"
#include "reader/backend/ZebLayers.h"
#include "support/TestFiles.h"

namespace zeb::profiling {
namespace {

using Numbers = std::vector<std::uint64_t>;

constexpr std::uint32_t offloaded = 1;
constexpr std::uint32_t linked = 2;
constexpr std::uint32_t huge = 4294967295U;

TEST(LayerStats, LinkedLayersTakeTheCountOfTheirGroup) {
    const struct {
        const char* rule;
        std::vector<std::uint32_t> flags;
        std::vector<std::uint32_t> given;
        std::vector<std::uint32_t> counts;
    } cases[] = {
        {"from the nearest one before", {3, 3, 7, 3}, {8, 0, 5, 0}, {8, 8, 5, 5}},
        {"over layers in between", {3, 1, 0, 2, 3}, {8, 0, 4, 9, 0}, {8, 0, 4, 9, 8}},
        {"before any there is none", {3, 3, 3}, {0, 2, 0}, {huge, 2, 2}},
        {"a layer on the DSP keeps 0, linked or not", {3, 2, 0}, {8, 0, 0}, {8, 0, 0}},
    };
    for (const auto& [rule, flags, given, counts] : cases) {
        LayerConfig config;
        GraphProfile profile{.layerCount = static_cast<std::uint32_t>(flags.size()), .layerRecords = {}};
        for (std::size_t layer = 0; layer < flags.size(); ++layer) {
            config.entries.push_back({.flags = flags[layer]});
            profile.layerRecords.push_back({.execCount = given[layer], .totalTimeUs = 80});
        }
        const auto stats = computeLayerStats(profile, config);
        ASSERT_EQ(stats.size(), counts.size());
        for (std::size_t layer = 0; layer < counts.size(); ++layer) {
            EXPECT_EQ(stats[layer].execCount, counts[layer]) << rule << ", layer " << layer;
            EXPECT_EQ(stats[layer].avgTimeUs, counts[layer] == 0 ? 0 : 80 / counts[layer]);
        }
    }
}

LayerStats statsOf(std::uint32_t flags, const LayerRecord& record, std::uint32_t clockHz = 1'000'000) {
    const GraphProfile profile{.layerCount = 1, .layerRecords = {record}};
    const LayerConfig config{.krelClockHz = clockHz, .entries = {{.flags = flags}}};
    return computeLayerStats(profile, config)[0];
}

Numbers figuresOf(const LayerStats& stats) {
    return {stats.avgTimeUs,       stats.avgDspCycles,    stats.avgHalExecUs,  stats.avgKrelExecUs,
            stats.avgDriverExecUs, stats.avgCacheFlushUs, stats.avgCoreCycles, stats.avgCoreTimeUs,
            stats.totalTimeUs,     stats.totalDspCycles,  stats.nodeCount};
}

TEST(LayerStats, DivideByTheCount) {
    LayerRecord record{.nodeCount = 3,
                       .execCount = 4,
                       .totalTimeUs = 403,
                       .totalDspCycles = (1ULL << 40U) + 3,
                       .totalCoreCycles = (1ULL << 33U) + 4003,
                       .totalHalExecUs = 43,
                       .totalKrelExecUs = 47,
                       .totalDriverExecUs = 51,
                       .totalCacheFlushUs = 55};
    const std::uint64_t cycles = record.totalDspCycles;
    const std::uint64_t coreCycles = (1U << 31U) + 1000;  // at 1 MHz as many us
    EXPECT_EQ(figuresOf(statsOf(offloaded, record)),
              (Numbers{100, cycles / 4, 10, 11, 12, 13, coreCycles, coreCycles, 403, cycles, 3}));
    EXPECT_EQ(figuresOf(statsOf(linked, record)),
              (Numbers{100, cycles / 4, 0, 0, 0, 0, 0, 0, 403, cycles, 0}));
    record.execCount = 0;
    EXPECT_EQ(figuresOf(statsOf(offloaded, record)), (Numbers{0, 0, 0, 0, 0, 0, 0, 0, 403, cycles, 3}));
}

TEST(LayerStats, TellTheCoreTimeByTheClock) {
    const struct {
        std::uint64_t cycles;
        std::uint32_t clockHz;
        std::uint32_t avgCycles;
        std::uint32_t timeUs;
    } cases[] = {
        {1000, 0, 1000, 0},
        {1999, 1'000'000'000, 1999, 1},
        {124'500, 500'000'000, 124'500, 248},  // divided first, then multiplied
        {(1ULL << 32U) + 5, 1'000'000, 5, 5},  // cut to 32 bits before the time is worked out
        {huge, 1'000'000, huge, huge},
    };
    for (const auto& [cycles, clockHz, avgCycles, timeUs] : cases) {
        const LayerStats stats = statsOf(offloaded, {.execCount = 1, .totalCoreCycles = cycles}, clockHz);
        EXPECT_EQ(stats.avgCoreCycles, avgCycles);
        EXPECT_EQ(stats.avgCoreTimeUs, timeUs) << cycles << " cycles at " << clockHz << " Hz";
    }
}

TEST(LayerStats, LeaveOutLayersThatLackAnEntryOrARecord) {
    const struct {
        std::uint32_t announced;
        std::size_t entries;
        std::size_t records;
        std::size_t layers;
    } cases[] = {{3, 2, 3, 2}, {3, 3, 2, 2}, {1, 3, 3, 1}, {huge, 2, 3, 2}, {3, 0, 3, 0}};
    for (const auto& [announced, entries, records, layers] : cases) {
        const GraphProfile profile{.layerCount = announced,
                                   .layerRecords = std::vector<LayerRecord>(records)};
        const LayerConfig config{.entries = std::vector<LayerConfigEntry>(entries)};
        EXPECT_EQ(computeLayerStats(profile, config).size(), layers);
    }
}

TEST(LayerTypes, HaveNamesUpToTheLast) {
    std::string names;
    for (std::uint32_t type = 0; isKnownLayerType(type); ++type) {
        names += std::string(layerTypeName(type)) + "\n";
    }
    EXPECT_EQ(names, test::fileText(ZEB_EXPECTED_REPORTS "/layer-types.txt"));
    for (const std::uint32_t type : {94U, huge}) {
        EXPECT_EQ(layerTypeName(type), "Oru Layer Type NA");
    }
}

TEST(ZebLayers, ComeByTheirLastOruLayer) {
    const auto gathered = [](const std::vector<NodeMappingEntry>& mapping) {
        std::string text;
        const ZebLayers zebLayers = gatherZebLayers(mapping);
        for (const ZebLayerEntry& layer : zebLayers.zebLayerOrder) {
            text += std::string(layer.name) + ":";
            for (const std::uint32_t id : layer.oruLayerIds) {
                text += std::to_string(id) + ",";
            }
        }
        return text;
    };
    EXPECT_EQ(gathered({{4, "b"}, {2, "a"}, {3, "b"}, {9, "a"}}), "b:4,3,a:2,9,");
    EXPECT_EQ(gathered({{0, "z"}, {huge, "y"}, {0x7FFF'FFFF, "x"}}), "y:4294967295,z:0,x:2147483647,")
        << "as signed numbers";
    EXPECT_EQ(gathered({{1, "b"}, {1, "a"}, {1, ""}}), ":1,a:1,b:1,") << "by name when they are equal";
}

TEST(ZebLayers, AddUpTheTimesOfTheirOruLayers) {
    const LayerConfig config{.krelClockHz = 1'000'000, .entries = {{}, {.flags = offloaded}, {}}};
    const GraphProfile profile{.layerCount = 3,
                               .layerRecords = {{.execCount = 1, .totalTimeUs = 10, .totalCoreCycles = 99},
                                                {.execCount = 1, .totalTimeUs = 99, .totalCoreCycles = 5},
                                                {.execCount = 1, .totalTimeUs = 30}}};
    const ZebLayers zebLayers =
        gatherZebLayers({{0, "a"}, {1, "a"}, {2, "a"}, {1, "b"}, {3, "b"}, {huge, "a"}});
    const std::vector<ZebLayerStats> layers =
        computeZebLayerStats(zebLayers.zebLayerOrder, computeLayerStats(profile, config));
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ((Numbers{layers[0].dspTimeUs, layers[0].krelTimeUs, layers[0].totalTimeUs()}),
              (Numbers{40, 5, 45}));
    EXPECT_EQ(layers[1].totalTimeUs(), 5U);
}

TEST(ZebLayers, ShareATimeThatTakesMoreThan64Bits) {
    const std::uint64_t half = 1ULL << 63U;
    const struct {
        std::vector<ZebLayerStats> layers;
        double dspTimePercent;
        double krelTimePercent;
    } cases[] = {
        {{}, 0.0, 0.0},
        {{{.dspTimeUs = 1, .krelTimeUs = 3}}, 25.0, 75.0},
        {{{.dspTimeUs = half}, {.krelTimeUs = half}}, 50.0, 50.0},
        {{{.dspTimeUs = half, .krelTimeUs = half + half / 2}}, 40.0, 60.0},
    };
    for (const auto& [layers, dspTimePercent, krelTimePercent] : cases) {
        const TimeShare share = shareOfTime(layers);
        EXPECT_DOUBLE_EQ(share.dspTimePercent, dspTimePercent);
        EXPECT_DOUBLE_EQ(share.krelTimePercent, krelTimePercent);
    }
}

}  // namespace
}  // namespace zeb::profiling
