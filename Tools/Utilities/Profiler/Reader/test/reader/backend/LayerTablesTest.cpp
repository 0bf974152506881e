// The per-layer tables, for the console and as CSV.

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "reader/backend/LayerTables.h"
#include "support/TestReader.h"

namespace zeb::profiling {
namespace {

using Cells = std::vector<std::string>;
using test::CaughtLog;

// One column of the ORU table, with the cells of the three layers below.
struct Column {
    std::string title;
    bool isInternal;
    std::string offloaded;
    std::string offloadedCsv;
    std::string linkedOnDsp;
    std::string dsp;
};

const std::vector<Column> columns = {
    {"Layer Id", false, "0", "0", "1", "2"},
    {"Layer Type", false, "MEM_OP", "MEM_OP", "Oru Layer Type NA", "CONVOLUTION"},
    {"HW Offloaded", false, "Offloaded", "Offloaded", "No", "No"},
    {"HW Linked", false, "No", "No", "Yes", "-"},
    {"Offload Merged Group", false, "-", "-", "7", "-"},
    {"Loopback Enabled", true, "Yes", "Yes", "-", "-"},
    {"Exec Count", false, "11", "11", "21", "4294967295"},
    {"Avg Time (us)", false, "12", "12", "22", "32"},
    {"Total Time (us)", false, "13", "13", "23", "18446744073709551615"},
    {"Avg DSP Cycles", false, "-", "0", "24", "34"},
    {"Total DSP Cycles", false, "-", "0", "25", "35"},
    {"HAL Exec (us)", true, "16", "16", "-", "-"},
    {"Driver Exec (us)", true, "17", "17", "-", "-"},
    {"Cache Flush (us)", true, "18", "18", "-", "-"},
    {"Krel Exec (us)", true, "19", "19", "-", "-"},
    {"Node Count", true, "110", "110", "-", "-"},
    {"Avg Krel Core Cycles", false, "111", "111", "-", "-"},
    {"Avg Krel Core Time (us)", false, "112", "112", "-", "-"},
};

LayerStats figures(std::uint32_t id, std::uint32_t layerType, std::uint32_t tens) {
    return {.layerId = id,
            .layerType = layerType,
            .execCount = tens + 1,
            .avgTimeUs = tens + 2U,
            .totalTimeUs = tens + 3U,
            .avgDspCycles = tens + 4U,
            .totalDspCycles = tens + 5U,
            .avgHalExecUs = tens + 6,
            .avgDriverExecUs = tens + 7,
            .avgCacheFlushUs = tens + 8,
            .avgKrelExecUs = tens + 9,
            .nodeCount = 10 * tens + 10,
            .avgCoreCycles = 10 * tens + 11,
            .avgCoreTimeUs = 10 * tens + 12};
}

std::vector<LayerStats> threeLayers() {
    std::vector<LayerStats> layers = {figures(0, 93, 10), figures(1, 94, 20), figures(2, 0, 30)};
    layers[0].offloaded = true;
    layers[0].loopbackEnabled = true;
    layers[0].mergedGroup = 9;
    layers[1].linked = true;
    layers[1].mergedGroup = 7;
    layers[1].loopbackEnabled = true;
    layers[2].execCount = 4294967295U;
    layers[2].totalTimeUs = 18446744073709551615U;
    return layers;
}

Cells cellsOf(std::string Column::*cell, bool withInternal) {
    Cells cells;
    for (const Column& column : columns) {
        if (withInternal || !column.isInternal) {
            cells.push_back(column.*cell);
        }
    }
    return cells;
}

std::string csvLine(const Cells& cells) {
    std::string line;
    for (const std::string& cell : cells) {
        line += cell + ",";
    }
    return line + "\n";
}

// Cells in fields that are four wider than their titles.
std::string consoleLine(const Cells& cells, const Cells& titles, bool isLeft) {
    std::string line;
    for (std::size_t column = 0; column < cells.size(); ++column) {
        const std::size_t width = titles[column].size() + 4;
        const std::string& cell = cells[column];
        const std::string blanks(cell.size() < width ? width - cell.size() : 0, ' ');
        line += isLeft ? cell + blanks : blanks + cell;
    }
    return line + "\n";
}

TEST(OruTable, HasTheSameCellsOnBothFormsButForTheDspCyclesOfOffloadedLayers) {
    const std::vector<LayerStats> layers = threeLayers();
    for (const bool withInternal : {false, true}) {
        const Cells titles = cellsOf(&Column::title, withInternal);
        ASSERT_EQ(titles.size(), withInternal ? 18U : 12U);
        const OruTable table(withInternal, layers, 3);
        std::ostringstream csv;
        table.writeOruLayerCsv(csv);
        EXPECT_EQ(csv.str(), "\nORU Per-layer Stats:\n" + csvLine(titles) +
                                 csvLine(cellsOf(&Column::offloadedCsv, withInternal)) +
                                 csvLine(cellsOf(&Column::linkedOnDsp, withInternal)) +
                                 csvLine(cellsOf(&Column::dsp, withInternal)));
        for (const bool isLeft : {false, true}) {
            std::ostringstream console;
            console << (isLeft ? std::left : std::right);
            table.printOruLayerStats(console);
            std::string expected = "\nORU Per-layer Stats:\n--------------------\n";
            for (const auto cell : {&Column::title, &Column::offloaded, &Column::linkedOnDsp, &Column::dsp}) {
                expected += consoleLine(cellsOf(cell, withInternal), titles, isLeft);
            }
            EXPECT_EQ(console.str(), expected);
        }
    }
}

TEST(OruTable, WarnsOfAnUnknownLayerTypeOnTheConsoleAlone) {
    const std::vector<LayerStats> layers = threeLayers();
    const OruTable table(false, layers, 3);
    const CaughtLog log;
    std::ostringstream out;
    table.printOruLayerStats(out);
    table.writeOruLayerCsv(out);
    EXPECT_EQ(log.lines(), Cells{"2 This ORU layer type is not supported."});
}

// The first column of the CSV form's rows.
std::string rowOrder(const std::vector<LayerStats>& layers, std::uint32_t layerCount) {
    std::ostringstream csv;
    OruTable(false, layers, layerCount).writeOruLayerCsv(csv);
    std::istringstream lines(test::behindLines(csv.str(), 3));
    std::string order;
    for (std::string line; std::getline(lines, line);) {
        order += line.substr(0, line.find(',') + 1);
    }
    return order;
}

TEST(OruTable, OrdersItsRowsByKeyAndStaysInsideItsLayers) {
    constexpr std::uint32_t huge = 4294967295U;
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
        {"none", {{0, 2}}, 0, ""},
        {"an id that is no position has no row", {{0, 2}, {7, 1}, {huge, 0}}, 3, "0,"},
    };
    for (const auto& [rule, idsAndKeys, layerCount, order] : cases) {
        std::vector<LayerStats> layers;
        layers.reserve(idsAndKeys.size());
        for (const auto& [id, key] : idsAndKeys) {
            layers.push_back({.layerId = id, .orderKey = key});
        }
        EXPECT_EQ(rowOrder(layers, layerCount), order) << rule;
    }
}

const std::vector<ZebLayer> zebLayers = {
    {.name = "conv", .oruLayerIds = {3, 0, 4294967295U}, .dspTimeUs = 20, .krelTimeUs = 1},
    {.name = "a, pool", .oruLayerIds = {1}, .dspTimeUs = 0, .krelTimeUs = 9},
};

TEST(ZebTable, HasAFieldOfTwoMoreThanEachWidthAndASummary) {
    std::ostringstream right;
    printZebLayerStats(right, zebLayers, 7);
    EXPECT_EQ(right.str(),
              "\nZEB Per-layer Stats:\n--------------------\n"
              "Layer Name      aDSP Time (us)      Krel Time (us)      Avg Total Time (us)\n"
              "     conv                  20                   1                       21\n"
              "  a, pool                   0                   9                        9\n"
              "------------------------------------------------------------------\n"
              "  Summary                 67%                 33%                         \n");
    std::ostringstream left;
    left << std::left << std::setprecision(3);
    printZebLayerStats(left, {}, 14);
    EXPECT_EQ(left.str(),
              "\nZEB Per-layer Stats:\n--------------------\n"
              "Layer Name      aDSP Time (us)      Krel Time (us)      Avg Total Time (us)      \n"
              "-------------------------------------------------------------------------\n"
              "Summary         0%                  0%                                           \n");
}

TEST(ZebTable, HasItsCsvFormWithoutPadding) {
    std::ostringstream out;
    out << std::setprecision(3);
    writeZebLayerCsv(out, zebLayers);
    EXPECT_EQ(out.str(),
              "\nZEB Per-layer Stats:\nLayer Name,aDSP Time (us),Krel Time (us),Avg Total Time (us),\n"
              "conv,20,1,21,\na, pool,0,9,9,\nSummary,67%,33%\n");
}

TEST(ZebTable, SplitsTheTimeInPerCent) {
    const struct {
        std::uint64_t dspUs;
        std::uint64_t krelUs;
        const char* summary;
    } cases[] = {{5, 0, "Summary,100%,0%\n"},
                 {0, 5, "Summary,0%,100%\n"},
                 {0, 0, "Summary,0%,0%\n"},
                 {2, 1, "Summary,67%,33%\n"},
                 {1, 999, "Summary,0%,100%\n"}};
    for (const auto& [dspUs, krelUs, summary] : cases) {
        std::ostringstream out;
        writeZebLayerCsv(out, {{.name = "", .oruLayerIds = {0}, .dspTimeUs = dspUs, .krelTimeUs = krelUs}});
        EXPECT_PRED2(test::holds, out.str(), summary);
    }
}

TEST(MappingTable, PadsNamesByTheAlignmentOfTheConsoleAndInFrontInTheCsvFile) {
    const std::string title = "\nZEB Layer - ORU Layer(s) mapping:\n";
    const std::string dashes = "---------------------------------\n";
    std::ostringstream right;
    printLayerMapping(right, zebLayers, 7);
    EXPECT_EQ(right.str(), title + dashes + "   conv:  3,0,-1,\na, pool:  1,\n");
    std::ostringstream left;
    left << std::left;
    printLayerMapping(left, zebLayers, 7);
    EXPECT_EQ(left.str(), title + dashes + "conv   :  3,0,-1,\na, pool:  1,\n");
    std::ostringstream csv;
    writeLayerMappingCsv(csv, zebLayers, 7);
    EXPECT_EQ(csv.str(), title + "ZEB Layer,ORU Layer(s)\n   conv,\"3,0,-1,\"\na, pool,\"1,\"\n");
    std::ostringstream none;
    printLayerMapping(none, {}, 0);
    EXPECT_EQ(none.str(), title + dashes);
}

}  // namespace
}  // namespace zeb::profiling
