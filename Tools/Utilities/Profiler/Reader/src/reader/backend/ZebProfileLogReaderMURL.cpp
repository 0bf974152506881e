#include "reader/backend/ZebProfileLogReaderMURL.h"

#include <fstream>
#include <iomanip>

#include "commandline/AppArgManagerImpl.h"
#include "logging/Logger.h"
#include "reader/backend/BackendReport.h"
#include "reader/backend/ExecutionLines.h"
#include "reader/backend/OruTable.h"
#include "reader/backend/ZebTables.h"
#include "reports/ReportForms.h"
#include "text/TextStream.h"

namespace zeb::profiling {

bool ZebProfileLogReaderMURL::generateReports(const std::string& outputPath) {
    TextStream console;
    console << std::fixed << std::setprecision(0);
    printBackendReport(console);
    console.putOnStandardOutput();
    if (outputPath.empty()) {
        return true;
    }
    std::ofstream csv = openCsvFile(outputPath);
    if (!csv.is_open()) {
        if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
            logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Failed open file: %s", outputPath.c_str());
        }
        return false;
    }
    writeBackendCsv(csv);
    return true;
}

void ZebProfileLogReaderMURL::printBackendReport(std::ostream& out) {
    beginReport();
    figures_ = {};
    figures_.profileLevel = readProfileLevel(store());
    printReportHeader(out);
    printBackendInitStats(out);
    printBackendFinalizeStats(out);
    printDeInitStats(out);
    printExecutionStats(out);
    if (figures_.hasLayers()) {
        printOruLayerStats(out);
        printZebLayerStats(out);
        printLayerMapping(out);
    }
}

void ZebProfileLogReaderMURL::writeBackendCsv(std::ostream& out) {
    writeCsvPreamble(out);
    writeExecutionCsv(out);
    if (figures_.hasLayers()) {
        writeOruLayerCsv(out);
        writeZebLayerCsv(out);
        writeLayerMappingCsv(out);
    }
}

void ZebProfileLogReaderMURL::printBackendInitStats(std::ostream& out) {
    profiling::printBackendInitStats(out, store());
    if (const auto mapping = findNodeMapping(store())) {
        loadNodeMapping(figures_, *mapping);
    }
}

void ZebProfileLogReaderMURL::printBackendFinalizeStats(std::ostream& out) {
    profiling::printBackendFinalizeStats(out, store());
    loadLayerConfig(figures_, store(), wholeRun(store()));
}

void ZebProfileLogReaderMURL::printExecutionStats(std::ostream& out) {
    workOutExecution(figures_, store(), wholeRun(store()));
    profiling::printExecutionStats(out, store(), figures_);
}

void ZebProfileLogReaderMURL::printOruLayerStats(std::ostream& out) {
    workOutOruLayers(figures_);
    profiling::printOruLayerStats(out, figures_.oruLayers, internalColumns_,
                                  tableAlignment(figures_.execution));
}

void ZebProfileLogReaderMURL::printZebLayerStats(std::ostream& out) {
    workOutZebLayers(figures_);
    profiling::printZebLayerStats(
        out, figures_.zebLayers, figures_.zebLayerStats, figures_.zebTimeShare,
        figures_.hasNodeMapping ? figures_.zebLayers.maxZebLayerNameLength : defaultNameWidth(),
        tableAlignment(figures_.execution));
}

void ZebProfileLogReaderMURL::printLayerMapping(std::ostream& out) {
    profiling::printLayerMapping(out, figures_.zebLayers, tableAlignment(figures_.execution));
}

void ZebProfileLogReaderMURL::writeExecutionCsv(std::ostream& out) {
    figures_.execution.singleGraphUs = singleGraphDuration(store());
    profiling::writeExecutionCsv(out, figures_);
}

void ZebProfileLogReaderMURL::writeOruLayerCsv(std::ostream& out) {
    profiling::writeOruLayerCsv(out, figures_.oruLayers, internalColumns_);
}

void ZebProfileLogReaderMURL::writeZebLayerCsv(std::ostream& out) {
    profiling::writeZebLayerCsv(out, figures_.zebLayers, figures_.zebLayerStats, figures_.zebTimeShare);
}

void ZebProfileLogReaderMURL::writeLayerMappingCsv(std::ostream& out) {
    profiling::writeLayerMappingCsv(out, figures_.zebLayers);
}

bool ZebProfileLogReaderMURL::parseBackendArgs(commandline2::ParsedArgs& parsedArgs) {
    bool extraHelp = false;
    commandline2::AppArgManagerImpl manager(true);
    manager.addFlagOption("--internal", &internalColumns_, "Display MURL internal profiling info.", false,
                          false);
    manager.addFlagOption("--extra_help", &extraHelp,
                          "Display extra help message on MURL backend specific options.", false, false);
    // Failing the check is what makes the manager show its usage text.
    manager.addValidator([&extraHelp]() -> std::string {
        return extraHelp ? "Disregard error, displaying MURL profiler viewer help message" : "";
    });
    return manager.parse(parsedArgs) == 0;
}

}  // namespace zeb::profiling
