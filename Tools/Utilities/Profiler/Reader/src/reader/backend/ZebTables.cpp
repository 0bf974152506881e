#include <array>
#include <iomanip>
#include <numeric>
#include <sstream>
#include <string>

#include "reader/backend/LayerTables.h"
#include "reader/backend/TableForms.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

constexpr std::array<std::string_view, 4> zebColumns = {"Layer Name", "aDSP Time (us)", "Krel Time (us)",
                                                        "Avg Total Time (us)"};

constexpr std::size_t zebFieldRoom = 2;  // a field of the console table is that much wider than its column

std::string percentText(double percent) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(0) << percent << '%';
    return text.str();
}

void writeIds(std::ostream& out, const ZebLayer& layer) {
    for (const std::uint32_t id : layer.oruLayerIds) {
        out << static_cast<std::int32_t>(id) << ',';
    }
}

}  // namespace

std::size_t defaultNameWidth() {
    return columnWidth(zebColumns[0]);
}

void printZebLayerStats(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth) {
    const std::array<std::size_t, 4> widths = {nameWidth, columnWidth(zebColumns[1]),
                                               columnWidth(zebColumns[2]), columnWidth(zebColumns[3])};
    const auto printRow = [&out, &widths](const auto&... cells) {
        std::size_t column = 0;
        (printField(out, cells, widths[column++] + zebFieldRoom), ...);
        out << '\n';
    };
    out << '\n';
    printSectionHead(out, zebTableTitle, zebTableTitle.size());
    printRow(zebColumns[0], zebColumns[1], zebColumns[2], zebColumns[3]);
    for (const ZebLayer& layer : layers) {
        printRow(layer.name, layer.dspTimeUs, layer.krelTimeUs, layer.totalTimeUs());
    }
    out << std::string(std::accumulate(widths.begin(), widths.end(), std::size_t{0}), '-') << '\n';
    const TimeShare share = shareOfTime(layers);
    printRow("Summary", percentText(share.dspTimePercent), percentText(share.krelTimePercent), " ");
}

void writeZebLayerCsv(std::ostream& out, const std::vector<ZebLayer>& layers) {
    out << '\n' << zebTableTitle << '\n';
    for (const std::string_view title : zebColumns) {
        out << title << ',';
    }
    out << '\n';
    for (const ZebLayer& layer : layers) {
        out << layer.name << ',' << layer.dspTimeUs << ',' << layer.krelTimeUs << ',' << layer.totalTimeUs()
            << ",\n";
    }
    const TimeShare share = shareOfTime(layers);
    out << "Summary," << percentText(share.dspTimePercent) << ',' << percentText(share.krelTimePercent)
        << '\n';
}

void printLayerMapping(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth) {
    out << '\n';
    printSectionHead(out, mappingTableTitle, mappingTableTitle.size());
    for (const ZebLayer& layer : layers) {
        printField(out, layer.name, nameWidth);
        out << ":  ";
        writeIds(out, layer);
        out << '\n';
    }
}

void writeLayerMappingCsv(std::ostream& out, const std::vector<ZebLayer>& layers, std::size_t nameWidth) {
    out << '\n' << mappingTableTitle << '\n' << "ZEB Layer,ORU Layer(s)\n";
    for (const ZebLayer& layer : layers) {
        printField(out, layer.name, nameWidth);
        out << ",\"";
        writeIds(out, layer);
        out << "\"\n";
    }
}

}  // namespace zeb::profiling
