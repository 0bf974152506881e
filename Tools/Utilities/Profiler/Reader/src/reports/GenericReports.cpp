// The report of a reader without a backend of its own.

#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "logging/Logger.h"
#include "reader/ZebProfileLogReader.h"
#include "reports/ConsoleReport.h"
#include "reports/CsvReport.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

bool ZebProfileLogReader::generateReports(const std::string& outputPath) {
    std::ofstream csv;
    if (!outputPath.empty()) {
        csv.open(outputPath, std::ios::app);
        if (!csv.is_open()) {
            if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
                logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Invalid output file: [%s]", outputPath.c_str());
            }
            return false;
        }
    }
    std::ostringstream console;
    console << std::fixed << std::setprecision(0);
    printReportHeader(console, *this);
    if (header_.isAdapterUpdaterLog) {
        printUpdateBinarySectionStats(console, *this);
    } else {
        printConsoleReport(console, *this);
    }
    if (csv.is_open()) {
        csv << std::fixed << std::setprecision(0);
        writeCsvReport(csv, *this);
    }
    std::cout << console.view();
    return true;
}

}  // namespace zeb::profiling
