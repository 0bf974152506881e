#include "reader/backend/OruTable.h"

#include <string_view>
#include <vector>

#include "logging/Logger.h"
#include "reader/backend/LayerTypeNames.h"
#include "reader/backend/TableForms.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

// Writes the text of a cell and gives its end.
using Cell = char* (*)(const LayerStats&, char* at);

template <auto Member>
char* number(const LayerStats& stats, char* at) {
    return putNumber(stats.*Member, at);
}

char* dash(const LayerStats& /*stats*/, char* at) {
    return putText("-", at);
}
char* zero(const LayerStats& /*stats*/, char* at) {
    return putText("0", at);
}
char* offloaded(const LayerStats& /*stats*/, char* at) {
    return putText("Offloaded", at);
}
char* notOffloaded(const LayerStats& /*stats*/, char* at) {
    return putText("No", at);
}
char* linkedOrNo(const LayerStats& stats, char* at) {
    return putText(stats.linked ? "Yes" : "No", at);
}
char* linkedOrDash(const LayerStats& stats, char* at) {
    return putText(stats.linked ? "Yes" : "-", at);
}
char* loopback(const LayerStats& stats, char* at) {
    return putText(stats.loopbackEnabled ? "Yes" : "No", at);
}
char* typeName(const LayerStats& stats, char* at) {
    static_assert(maxLayerTypeNameLength < TableText::maxPutLength, "a comma may follow");
    return putText(layerTypeName(stats.layerType), at);
}
char* mergedGroup(const LayerStats& stats, char* at) {
    return stats.linked ? putNumber(stats.mergedGroup, at) : putText("-", at);
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

constexpr ReportColumn oruColumns[] = {
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
};

std::vector<const ReportColumn*> buildColumns(bool internalColumns) {
    std::vector<const ReportColumn*> columns;
    for (const ReportColumn& column : oruColumns) {
        if (internalColumns || !column.internal) {
            columns.push_back(&column);
        }
    }
    return columns;
}

}  // namespace

void printOruLayerStats(std::ostream& out, const OruLayers& layers, bool internalColumns,
                        Alignment alignment) {
    out << '\n';
    printSectionHead(out, heads::oruLayers);
    const auto columns = buildColumns(internalColumns);
    TableText table(out, alignment);
    for (const ReportColumn* const column : columns) {
        table.field(column->title, columnWidth(column->title));
    }
    table.endRow();
    layers.forEach([&](const LayerStats& row) {
        if (!isKnownLayerType(row.layerType)) {
            logMessage(ZEB_LOG_LEVEL_WARN, "This ORU layer type is not supported.");
        }
        for (const ReportColumn* const column : columns) {
            const Cell cell = row.offloaded ? column->offloadedCell : column->dspCell;
            table.field([&](char* at) { return cell(row, at); }, columnWidth(column->title));
        }
        table.endRow();
    });
}

void writeOruLayerCsv(std::ostream& out, const OruLayers& layers, bool internalColumns) {
    out << '\n' << heads::oruLayers.title << '\n';
    const auto columns = buildColumns(internalColumns);
    TableText table(out);
    for (const ReportColumn* const column : columns) {
        table.text(column->title).text(",");
    }
    table.endRow();
    layers.forEach([&](const LayerStats& row) {
        for (const ReportColumn* const column : columns) {
            const Cell cell = row.offloaded ? column->offloadedCsvCell : column->dspCell;
            table.field([&](char* at) { return putText(",", cell(row, at)); }, 0);
        }
        table.endRow();
    });
}

}  // namespace zeb::profiling
