#include "reader/backend/ZebTables.h"

#include <array>
#include <numeric>
#include <string>

#include "reader/backend/TableForms.h"
#include "reports/ReportForms.h"
#include "text/NumberText.h"

namespace zeb::profiling {

namespace {

constexpr auto zebColumns = std::to_array<std::string_view>(
    {"Layer Name", "aDSP Time (us)", "Krel Time (us)", "Avg Total Time (us)"});

constexpr std::size_t zebFieldRoom = 2;  // a field of the console table is that much wider than its column

std::string percentText(double percent) {
    return fixedPoint(percent, 0) + '%';
}

void writeIds(TableText& table, const ZebLayerEntry& layer) {
    for (const std::uint32_t id : layer.oruLayerIds) {
        table.number(static_cast<std::int32_t>(id)).text(",");
    }
}

}  // namespace

std::size_t defaultNameWidth() {
    return columnWidth(zebColumns[0]);
}

void printZebLayerStats(std::ostream& out, const ZebLayers& layers,
                        const std::vector<ZebLayerStats>& zebLayerStats, const TimeShare& share,
                        std::size_t nameWidth, Alignment alignment) {
    const std::array<std::size_t, zebColumns.size()> widths = {
        nameWidth, columnWidth(zebColumns[1]), columnWidth(zebColumns[2]), columnWidth(zebColumns[3])};
    out << '\n';
    printSectionHead(out, heads::zebLayers);
    TableText table(out, alignment);
    const auto printRow = [&table, &widths](const auto&... cells) {
        std::size_t column = 0;
        (table.field(cells, widths[column++] + zebFieldRoom), ...);
        table.endRow();
    };
    printRow(zebColumns[0], zebColumns[1], zebColumns[2], zebColumns[3]);
    for (std::size_t row = 0; row < zebLayerStats.size(); ++row) {
        const ZebLayerStats& times = zebLayerStats[row];
        printRow(layers.zebLayerOrder[row].name, times.dspTimeUs, times.krelTimeUs, times.totalTimeUs());
    }
    table.text(std::string(std::accumulate(widths.begin(), widths.end(), std::size_t{0}), '-')).endRow();
    printRow("Summary", percentText(share.dspTimePercent), percentText(share.krelTimePercent), " ");
}

void writeZebLayerCsv(std::ostream& out, const ZebLayers& layers,
                      const std::vector<ZebLayerStats>& zebLayerStats, const TimeShare& share) {
    out << '\n' << heads::zebLayers.title << '\n';
    TableText table(out);
    for (const std::string_view title : zebColumns) {
        table.text(title).text(",");
    }
    table.endRow();
    for (std::size_t row = 0; row < zebLayerStats.size(); ++row) {
        const ZebLayerStats& times = zebLayerStats[row];
        table.text(layers.zebLayerOrder[row].name).text(",").number(times.dspTimeUs).text(",");
        table.number(times.krelTimeUs).text(",").number(times.totalTimeUs()).text(",").endRow();
    }
    table.text("Summary,").text(percentText(share.dspTimePercent)).text(",");
    table.text(percentText(share.krelTimePercent)).endRow();
}

void printLayerMapping(std::ostream& out, const ZebLayers& layers, Alignment alignment) {
    out << '\n';
    printSectionHead(out, heads::layerMapping);
    TableText table(out, alignment);
    for (const ZebLayerEntry& layer : layers.zebLayerOrder) {
        table.field(layer.name, layers.maxZebLayerNameLength).text(":  ");
        writeIds(table, layer);
        table.endRow();
    }
}

void writeLayerMappingCsv(std::ostream& out, const ZebLayers& layers) {
    out << '\n' << heads::layerMapping.title << '\n' << "ZEB Layer,ORU Layer(s)\n";
    TableText table(out);
    for (const ZebLayerEntry& layer : layers.zebLayerOrder) {
        table.field(layer.name, layers.maxZebLayerNameLength).text(",\"");
        writeIds(table, layer);
        table.text("\"").endRow();
    }
}

}  // namespace zeb::profiling
