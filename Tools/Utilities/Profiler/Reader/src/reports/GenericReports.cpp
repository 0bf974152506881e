// The report of a reader without a backend of its own.

#include <fstream>
#include <iomanip>

#include "logging/Logger.h"
#include "reader/TextStream.h"
#include "reader/ZebProfileLogReader.h"
#include "reports/ConsoleReport.h"
#include "reports/CsvReport.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

void appendCsvReport(std::ofstream& csv, ZebProfileLogReader& reader) {
    if (csv.is_open()) {
        writeCsvReport(csv, reader);
        csv.flush();
    }
}

}  // namespace

bool ZebProfileLogReader::generateReports(const std::string& outputPath) {
    beginReport();
    std::ofstream csv;
    if (!outputPath.empty()) {
        csv = openCsvFile(outputPath);
        if (!csv.is_open()) {
            if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
                logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Invalid output file: [%s]", outputPath.c_str());
            }
            return false;
        }
    }
    TextStream console;
    console << std::fixed << std::setprecision(0);
    printReportHeader(console, *this);
    // Which of the two comes first shows when both go to one stream.
    if (header_.isAdapterUpdaterLog) {
        printUpdateBinarySectionStats(console, *this);
        console.putOnStandardOutput();
        appendCsvReport(csv, *this);
    } else {
        printConsoleReport(console, *this);
        appendCsvReport(csv, *this);
        console.putOnStandardOutput();
    }
    return true;
}

}  // namespace zeb::profiling
