#include "reader/backend/ZebProfileLogReaderMURL.h"

#include <fstream>
#include <iomanip>

#include "commandline/AppArgManagerImpl.h"
#include "logging/Logger.h"
#include "reader/backend/BackendReport.h"
#include "reports/ReportForms.h"
#include "text/TextStream.h"

namespace zeb::profiling {

bool ZebProfileLogReaderMURL::generateReports(const std::string& outputPath) {
    const ReportSource source = beginReport();
    TextStream console;
    console << std::fixed << std::setprecision(0);
    const ProfileLevel level = readProfileLevel(source.store);
    printReportHeader(console, source);
    const BackendFigures figures = workOutFigures(source.store, level);
    printBackendReport(console, source, figures, internalColumns_);
    console.putOnStandardOutput();
    if (outputPath.empty()) {
        return true;
    }
    std::ofstream csv = openCsvFile(outputPath);
    if (!csv.is_open()) {
        logFormatted(ZEB_LOG_LEVEL_ERROR, "Failed open file: %s", outputPath.c_str());
        return false;
    }
    writeBackendCsv(csv, source, figures, internalColumns_);
    return true;
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
