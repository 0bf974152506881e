// The per-layer tables: what the whole reports leave open.

#include <gtest/gtest.h>

#include <sstream>

#include "reader/backend/OruTable.h"
#include "reader/backend/ZebTables.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

constexpr std::uint32_t huge = 4294967295U;

TEST(OruTable, HasTheSameCellsOnBothFormsButForTheDspCyclesOfOffloadedLayers) {
    const LayerConfig config{.entries = {{.layerId = 0, .layerType = 93, .flags = 5, .mergedGroup = 9},
                                         {.layerId = 1, .layerType = 94, .flags = 6, .mergedGroup = 7},
                                         {.layerId = 2}}};
    const GraphProfile profile{
        .layerCount = 3, .layerRecords = {{}, {}, {.execCount = huge, .totalTimeUs = 18446744073709551615U}}};
    const OruLayers layers(computeLayerStats(profile, config), 3);
    const test::CaughtLog log;
    std::ostringstream console;
    std::ostringstream csv;
    printOruLayerStats(console, layers, true, Alignment::right);
    writeOruLayerCsv(csv, layers, true);
    EXPECT_EQ(test::behindLines(csv.str(), 3),
              "0,MEM_OP,Offloaded,No,-,Yes,0,0,0,0,0,0,0,0,0,0,0,0,\n"
              "1,Oru Layer Type NA,No,Yes,7,-,0,0,0,0,0,-,-,-,-,-,-,-,\n"
              "2,CONVOLUTION,No,-,-,-,4294967295,4294967297,18446744073709551615,0,0"
              ",-,-,-,-,-,-,-,\n");
    EXPECT_EQ(log.lines(), std::vector<std::string>{"2 This ORU layer type is not supported."})
        << "on the console alone";
    EXPECT_PRED2(test::holds, console.str(),
                 "  4294967295       429496729718446744073709551615                 0");
}

TEST(OruTable, OrdersItsRowsByKeyAndStaysInsideItsLayers) {
    const struct {
        const char* rule;
        std::vector<std::pair<std::uint32_t, std::uint32_t>> idsAndKeys;
        std::uint32_t layerCount;
        const char* order;
    } cases[] = {
        {"by key", {{0, 9}, {1, 3}, {2, huge}, {3, 0}}, 4, "3,1,0,2,"},
        {"by id when the keys are equal", {{2, 5}, {1, 5}, {0, 5}}, 3, "2,1,0,"},
        {"no more rows than the configuration has", {{0, 2}, {1, 1}, {2, 0}}, 2, "1,0,"},
        {"no more rows than there are layers", {{0, 2}, {1, 1}}, huge, "1,0,"},
        {"an id that is no position has no row", {{0, 2}, {7, 1}, {huge, 0}}, 3, "0,"},
    };
    for (const auto& [rule, idsAndKeys, layerCount, order] : cases) {
        LayerConfig config;
        GraphProfile profile{.layerCount = huge, .layerRecords = {}};
        for (const auto& [id, key] : idsAndKeys) {
            config.entries.push_back({.layerId = id});
            profile.layerRecords.push_back({.orderKey = key});
        }
        std::ostringstream csv;
        writeOruLayerCsv(csv, OruLayers(computeLayerStats(profile, config), layerCount), false);
        std::istringstream lines(test::behindLines(csv.str(), 3));
        std::string rows;
        for (std::string line; std::getline(lines, line);) {
            rows += line.substr(0, line.find(',') + 1);
        }
        EXPECT_EQ(rows, order) << rule;
    }
}

TEST(ZebTables, AlignNamesAsTheyAreToldAndRoundShares) {
    const ZebLayers layers = gatherZebLayers({{3, "conv"}, {0, "conv"}, {1, "a, pool"}});
    std::ostringstream out;
    printLayerMapping(out, layers, Alignment::right);
    EXPECT_EQ(test::behindLines(out.str(), 3), "   conv:  3,0,\na, pool:  1,\n");
    out.str("");
    printLayerMapping(out, layers, Alignment::left);
    EXPECT_EQ(test::behindLines(out.str(), 3), "conv   :  3,0,\na, pool:  1,\n");
    const std::vector<ZebLayerStats> times = {{.krelTimeUs = 1}, {.dspTimeUs = 999}};
    writeZebLayerCsv(out, layers, times, shareOfTime(times));
    EXPECT_PRED2(test::holds, out.str(), "\nconv,0,1,1,\na, pool,999,0,999,\nSummary,100%,0%\n");
}

}  // namespace
}  // namespace zeb::profiling
