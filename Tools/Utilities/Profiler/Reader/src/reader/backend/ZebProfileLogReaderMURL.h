#pragma once

#include "reader/ZebProfileLogReader.h"
#include "reader/backend/BackendFigures.h"

namespace zeb::profiling {

/// The reader for logs of the Murl backend: it reports where the time of an execution goes, on the
/// accelerator's layers and on those of the framework.
class ZebProfileLogReaderMURL : public ZebProfileLogReader {
public:
    using ZebProfileLogReader::ZebProfileLogReader;

    /// The console report goes to standard output before the file is opened.
    bool generateReports(const std::string& outputPath) override;
    bool parseBackendArgs(commandline2::ParsedArgs& parsedArgs) override;

    /// Writes the console report.
    /// @throws like `generateReports`; what the sections before have saved and logged stays
    void printBackendReport(std::ostream& out);
    /// Writes the CSV report, from what the console report has worked out.
    void writeBackendCsv(std::ostream& out);

private:
    // The sections, in their order. Each works out its figures, which rest on those of the sections before,
    // and shows them.
    void printBackendInitStats(std::ostream& out);
    void printBackendFinalizeStats(std::ostream& out);
    void printExecutionStats(std::ostream& out);
    void printOruLayerStats(std::ostream& out);
    void printZebLayerStats(std::ostream& out);
    void printLayerMapping(std::ostream& out);
    void writeExecutionCsv(std::ostream& out);
    void writeOruLayerCsv(std::ostream& out);
    void writeZebLayerCsv(std::ostream& out);
    void writeLayerMappingCsv(std::ostream& out);

    bool internalColumns_ = false;
    BackendFigures figures_;  ///< of the latest report
};

}  // namespace zeb::profiling
