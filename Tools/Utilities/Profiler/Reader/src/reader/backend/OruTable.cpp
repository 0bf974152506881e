#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "logging/Logger.h"
#include "reader/backend/LayerTables.h"
#include "reader/backend/TableForms.h"
#include "reader/backend/TableText.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

// Gives the text of a cell, which may lie in `digits`.
using Cell = std::string_view (*)(const LayerStats&, Digits& digits);

template <auto Member>
std::string_view number(const LayerStats& stats, Digits& digits) {
    return decimalText(stats.*Member, digits);
}

std::string_view dash(const LayerStats& /*stats*/, Digits& /*digits*/) {
    return "-";
}
std::string_view zero(const LayerStats& /*stats*/, Digits& /*digits*/) {
    return "0";
}
std::string_view offloaded(const LayerStats& /*stats*/, Digits& /*digits*/) {
    return "Offloaded";
}
std::string_view notOffloaded(const LayerStats& /*stats*/, Digits& /*digits*/) {
    return "No";
}
std::string_view linkedOrNo(const LayerStats& stats, Digits& /*digits*/) {
    return stats.linked ? "Yes" : "No";
}
std::string_view linkedOrDash(const LayerStats& stats, Digits& /*digits*/) {
    return stats.linked ? "Yes" : "-";
}
std::string_view loopback(const LayerStats& stats, Digits& /*digits*/) {
    return stats.loopbackEnabled ? "Yes" : "No";
}
std::string_view typeName(const LayerStats& stats, Digits& /*digits*/) {
    return layerTypeName(stats.layerType);
}
std::string_view mergedGroup(const LayerStats& stats, Digits& digits) {
    return stats.linked ? decimalText(stats.mergedGroup, digits) : "-";
}

struct ReportColumn {
    std::string_view title;
    bool internal;
    Cell offloadedCell;     ///< of a layer that is offloaded, on the console
    Cell offloadedCsvCell;  ///< the same in the CSV file
    Cell dspCell;           ///< of a layer that runs on the DSP
};

constexpr ReportColumn forAll(std::string_view title, Cell cell) {
    return {title, false, cell, cell, cell};
}
constexpr ReportColumn forCore(std::string_view title, bool internal, Cell cell) {
    return {title, internal, cell, cell, dash};
}
constexpr ReportColumn forDsp(std::string_view title, Cell cell) {
    return {title, false, dash, zero, cell};
}

constexpr bool internal = true;
constexpr bool shown = false;

constexpr std::array<ReportColumn, 18> oruColumns = {{
    forAll("Layer Id", number<&LayerStats::layerId>),
    forAll("Layer Type", typeName),
    {"HW Offloaded", shown, offloaded, offloaded, notOffloaded},
    {"HW Linked", shown, linkedOrNo, linkedOrNo, linkedOrDash},
    forAll("Offload Merged Group", mergedGroup),
    forCore("Loopback Enabled", internal, loopback),
    forAll("Exec Count", number<&LayerStats::execCount>),
    forAll("Avg Time (us)", number<&LayerStats::avgTimeUs>),
    forAll("Total Time (us)", number<&LayerStats::totalTimeUs>),
    forDsp("Avg DSP Cycles", number<&LayerStats::avgDspCycles>),
    forDsp("Total DSP Cycles", number<&LayerStats::totalDspCycles>),
    forCore("HAL Exec (us)", internal, number<&LayerStats::avgHalExecUs>),
    forCore("Driver Exec (us)", internal, number<&LayerStats::avgDriverExecUs>),
    forCore("Cache Flush (us)", internal, number<&LayerStats::avgCacheFlushUs>),
    forCore("Krel Exec (us)", internal, number<&LayerStats::avgKrelExecUs>),
    forCore("Node Count", internal, number<&LayerStats::nodeCount>),
    forCore("Avg Krel Core Cycles", shown, number<&LayerStats::avgCoreCycles>),
    forCore("Avg Krel Core Time (us)", shown, number<&LayerStats::avgCoreTimeUs>),
}};

std::vector<const ReportColumn*> shownColumns(bool internalColumns) {
    std::vector<const ReportColumn*> columns;
    for (const ReportColumn& column : oruColumns) {
        if (internalColumns || !column.internal) {
            columns.push_back(&column);
        }
    }
    return columns;
}

// Rows come by order key, then by layer id. A layer's id is also its position among the figures.
std::vector<const LayerStats*> rowsInOrder(const std::vector<LayerStats>& layerStats,
                                           std::size_t layerCount) {
    std::vector<std::uint64_t> oruRowOrder;  // order key in the high half, layer id in the low one
    oruRowOrder.reserve(std::min(layerCount, layerStats.size()));
    for (std::size_t position = 0; position < std::min(layerCount, layerStats.size()); ++position) {
        oruRowOrder.push_back(std::uint64_t{layerStats[position].orderKey} << 32U |
                              layerStats[position].layerId);
    }
    std::sort(oruRowOrder.begin(), oruRowOrder.end());
    std::vector<const LayerStats*> rows;
    rows.reserve(oruRowOrder.size());
    for (const std::uint64_t key : oruRowOrder) {
        if (const auto layerId = static_cast<std::uint32_t>(key); layerId < layerStats.size()) {
            rows.push_back(&layerStats[layerId]);
        }
    }
    return rows;
}

}  // namespace

OruTable::OruTable(bool internalColumns, const std::vector<LayerStats>& layerStats, std::uint32_t layerCount)
    : internalColumns_(internalColumns), rows_(rowsInOrder(layerStats, layerCount)) {}

void OruTable::printOruLayerStats(std::ostream& out) const {
    out << '\n';
    printSectionHead(out, oruTableTitle, oruTableTitle.size());
    const auto columns = shownColumns(internalColumns_);
    TableText table(out);
    Digits digits{};
    for (const ReportColumn* const column : columns) {
        table.field(column->title, columnWidth(column->title));
    }
    table.endRow();
    for (const LayerStats* const row : rows_) {
        if (!isKnownLayerType(row->layerType)) {
            logMessage(ZEB_LOG_LEVEL_WARN, "This ORU layer type is not supported.");
        }
        for (const ReportColumn* const column : columns) {
            table.field((row->offloaded ? column->offloadedCell : column->dspCell)(*row, digits),
                        columnWidth(column->title));
        }
        table.endRow();
    }
}

void OruTable::writeOruLayerCsv(std::ostream& out) const {
    out << '\n' << oruTableTitle << '\n';
    const auto columns = shownColumns(internalColumns_);
    TableText table(out);
    Digits digits{};
    for (const ReportColumn* const column : columns) {
        table.text(column->title).text(",");
    }
    table.endRow();
    for (const LayerStats* const row : rows_) {
        for (const ReportColumn* const column : columns) {
            table.text((row->offloaded ? column->offloadedCsvCell : column->dspCell)(*row, digits)).text(",");
        }
        table.endRow();
    }
}

}  // namespace zeb::profiling
