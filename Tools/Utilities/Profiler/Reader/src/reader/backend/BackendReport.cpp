#include "reader/backend/BackendReport.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "logging/Logger.h"
#include "reader/backend/ExecutionLines.h"
#include "reader/backend/OruTable.h"
#include "reader/backend/ZebTables.h"
#include "reports/EventReport.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

constexpr ObjectFiles* saveNone = nullptr;  // but for the De-Init section, whatever the host asked for

void printBackendInitStats(std::ostream& out, const EventStore& store) {
    printSectionHead(out, heads::init);
    printTimeLine(out, store.initDurationUs);
    printEvents(out, initSectionEvents(store), 1, saveNone);
    out << '\n';
}

void printBackendFinalizeStats(std::ostream& out, const EventStore& store) {
    printSectionHead(out, heads::finalize);
    if (store.finalizeRecords.empty()) {
        out << '\n';
        return;
    }
    std::size_t position = 0;
    for (const auto& [name, record] : store.finalizeRecords) {
        printGraphHead(out, position++, name);
        if (store.hasFinalizeEvents) {
            printEvents(out, record->events, 1, saveNone);
        }
        out << '\n';
    }
}

void printExecutionStats(std::ostream& out, const EventStore& store, const BackendFigures& figures) {
    printSectionHead(out, heads::backendExecution);
    if (!figures.execution.hasAverage) {
        out << '\n';
        return;
    }
    std::size_t position = 0;
    for (const auto& [name, record] : store.executeAverage) {
        printGraphHead(out, position++, name);
        if (!store.asyncExecute) {
            printTimeLine(out, record->durationUs);
        }
    }
    printExecutionLines(out, figures);
}

std::string_view levelLabel(ProfileLevel level) {
    switch (level) {
        case ProfileLevel::detailed:
            return "Detailed";
        case ProfileLevel::internal:
            return "Internal";
        case ProfileLevel::basic:
            break;
    }
    return "Basic";
}

std::size_t longestName(const std::vector<ZebLayer>& layers) {
    std::size_t length = 0;
    for (const ZebLayer& layer : layers) {
        length = std::max(length, layer.name.size());
    }
    return length;
}

}  // namespace

void printBackendReport(std::ostream& out, const ReportSource& source, const BackendFigures& figures,
                        bool internalColumns) {
    printBackendInitStats(out, source.store);
    printBackendFinalizeStats(out, source.store);
    printDeInitStats(out, source);
    printExecutionStats(out, source.store, figures);
    if (figures.hasLayers()) {
        const Alignment alignment = hasDetailLine(figures.execution) ? Alignment::left : Alignment::right;
        const std::vector<ZebLayer>& zebLayers = figures.zebLayers.layers;
        const std::size_t nameWidth = longestName(zebLayers);
        printOruLayerStats(out, figures.oruLayers, internalColumns, alignment);
        printZebLayerStats(out, zebLayers, figures.zebTimeShare,
                           figures.hasNodeMapping ? nameWidth : defaultNameWidth(), alignment);
        printLayerMapping(out, zebLayers, nameWidth, alignment);
    }
}

void writeBackendCsv(std::ostream& out, const ReportSource& source, const BackendFigures& figures,
                     bool internalColumns) {
    writeCsvPreamble(out, source);
    out << "Profile Level, " << levelLabel(figures.profileLevel) << '\n';
    if (!figures.execution.onlyGraphUs) {
        logMessage(ZEB_LOG_LEVEL_ERROR, "multiple graph not supported yet!");
    }
    writeExecutionLinesCsv(out, figures);
    if (figures.hasLayers()) {
        const std::vector<ZebLayer>& zebLayers = figures.zebLayers.layers;
        writeOruLayerCsv(out, figures.oruLayers, internalColumns);
        writeZebLayerCsv(out, zebLayers, figures.zebTimeShare);
        writeLayerMappingCsv(out, zebLayers, longestName(zebLayers));
    }
}

}  // namespace zeb::profiling
