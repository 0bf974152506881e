#include <algorithm>
#include <array>
#include <iomanip>
#include <string>
#include <tuple>

#include "logging/Logger.h"
#include "reader/backend/LayerTables.h"
#include "reader/backend/TableForms.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

using Cell = std::string (*)(const LayerStats&);

template <auto Member>
std::string number(const LayerStats& stats) {
    return std::to_string(stats.*Member);
}

std::string dash(const LayerStats& /*stats*/) {
    return "-";
}
std::string zero(const LayerStats& /*stats*/) {
    return "0";
}
std::string offloaded(const LayerStats& /*stats*/) {
    return "Offloaded";
}
std::string notOffloaded(const LayerStats& /*stats*/) {
    return "No";
}
std::string linkedOrNo(const LayerStats& stats) {
    return stats.linked ? "Yes" : "No";
}
std::string linkedOrDash(const LayerStats& stats) {
    return stats.linked ? "Yes" : "-";
}
std::string loopback(const LayerStats& stats) {
    return stats.loopbackEnabled ? "Yes" : "No";
}
std::string typeName(const LayerStats& stats) {
    return std::string(layerTypeName(stats.layerType));
}
std::string mergedGroup(const LayerStats& stats) {
    return stats.linked ? std::to_string(stats.mergedGroup) : "-";
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

// Rows come by order key, then by layer id. A layer's id is also its position among the figures.
std::vector<const LayerStats*> rowsInOrder(const std::vector<LayerStats>& layerStats,
                                           std::size_t layerCount) {
    struct OruRowKey {
        std::uint32_t orderKey;
        std::uint32_t layerId;
    };
    std::vector<OruRowKey> oruRowOrder;
    oruRowOrder.reserve(std::min(layerCount, layerStats.size()));
    for (std::size_t position = 0; position < std::min(layerCount, layerStats.size()); ++position) {
        oruRowOrder.push_back({layerStats[position].orderKey, layerStats[position].layerId});
    }
    std::sort(oruRowOrder.begin(), oruRowOrder.end(), [](const OruRowKey& left, const OruRowKey& right) {
        return std::tie(left.orderKey, left.layerId) < std::tie(right.orderKey, right.layerId);
    });
    std::vector<const LayerStats*> rows;
    rows.reserve(oruRowOrder.size());
    for (const OruRowKey& key : oruRowOrder) {
        if (key.layerId < layerStats.size()) {
            rows.push_back(&layerStats[key.layerId]);
        }
    }
    return rows;
}

}  // namespace

OruTable::OruTable(bool internalColumns, const std::vector<LayerStats>& layerStats, std::uint32_t layerCount)
    : internalColumns_(internalColumns), rows_(rowsInOrder(layerStats, layerCount)) {}

void OruTable::printOruLayerStats(std::ostream& out) const {
    const auto isShown = [this](const ReportColumn& column) { return internalColumns_ || !column.internal; };
    out << '\n';
    printSectionHead(out, oruTableTitle, oruTableTitle.size());
    for (const ReportColumn& column : oruColumns) {
        if (isShown(column)) {
            printField(out, column.title, columnWidth(column.title));
        }
    }
    out << '\n';
    for (const LayerStats* const row : rows_) {
        if (!isKnownLayerType(row->layerType)) {
            logMessage(ZEB_LOG_LEVEL_WARN, "This ORU layer type is not supported.");
        }
        for (const ReportColumn& column : oruColumns) {
            if (isShown(column)) {
                printField(out, (row->offloaded ? column.offloadedCell : column.dspCell)(*row),
                           columnWidth(column.title));
            }
        }
        out << '\n';
    }
}

void OruTable::writeOruLayerCsv(std::ostream& out) const {
    const auto isShown = [this](const ReportColumn& column) { return internalColumns_ || !column.internal; };
    out << '\n' << oruTableTitle << '\n';
    for (const ReportColumn& column : oruColumns) {
        if (isShown(column)) {
            out << column.title << ',';
        }
    }
    out << '\n';
    for (const LayerStats* const row : rows_) {
        for (const ReportColumn& column : oruColumns) {
            if (isShown(column)) {
                out << (row->offloaded ? column.offloadedCsvCell : column.dspCell)(*row) << ',';
            }
        }
        out << '\n';
    }
}

}  // namespace zeb::profiling
