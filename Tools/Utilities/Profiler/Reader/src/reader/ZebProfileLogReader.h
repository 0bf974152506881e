#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>

#include "reports/ConsoleReport.h"
#include "reports/CsvReport.h"
#include "reports/ObjectFiles.h"
#include "reports/ReportForms.h"
#include "reports/ReportSource.h"
#include "store/EventStore.h"
#include "store/LogHeaderDetails.h"
#include "zeb/profiling/IZebProfileLogReader.h"

namespace zeb::profiling {

class FlatBufferReaderUtil;

/// The generic reader: loads a log into an event store and gives the report for a backend without a report of
/// its own. A reader for one backend derives from it and overrides the report. All reports go through the
/// virtual operations for the header, the lines and the rows of events, so that an override of one is heard.
class ZebProfileLogReader : public IZebPluginLogReader {
public:
    ZebProfileLogReader(std::string logFilePath, VisibilityLevel visibilityLevel);
    ~ZebProfileLogReader() override;

    bool generateReports(const std::string& outputPath) override;
    std::string printHeader() override;
    bool readNextMessage() override;
    bool loadLog(bool saveObjects) override;
    bool parseBackendArgs(commandline2::ParsedArgs& parsedArgs) override;
    void printEvent(std::ostream& out, const EventList& events, std::uint64_t level) override;
    void writeEventCsv(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                       const std::string& message) override;

    [[nodiscard]] const EventStore& store() const { return store_; }
    [[nodiscard]] const LogHeaderDetails& header() const { return header_; }
    [[nodiscard]] const std::string& logFilePath() const { return logFilePath_; }

    /// Writes the console report.
    void printConsoleReport(std::ostream& out);
    /// Writes the CSV report.
    void writeCsvReport(std::ostream& out);

protected:
    /// Takes down what the open chunk says about the log, once; for use by `loadLog`.
    void captureHeader();

    /// To be called before a report: files may have come and gone since the last one, so its object files
    /// take their names anew.
    void beginReport() { objectFiles_ = {}; }

    // The sections of the reports, in their order. Their bodies are in the room of reports.

    void printReportHeader(std::ostream& out) { profiling::printReportHeader(out, source()); }
    void printStatisticsOverview(std::ostream& out) { profiling::printStatisticsOverview(out, source()); }
    void printInitStats(std::ostream& out) { profiling::printInitStats(out, source()); }
    void printComposeGraphsStats(std::ostream& out) { profiling::printComposeGraphsStats(out, source()); }
    void printFinalizeStats(std::ostream& out) { profiling::printFinalizeStats(out, source()); }
    void printDeInitStats(std::ostream& out) { profiling::printDeInitStats(out, source()); }
    void printContextRetrievalStats(std::ostream& out) {
        profiling::printContextRetrievalStats(out, source());
    }
    void printContextSectionRetrievalStats(std::ostream& out) {
        profiling::printContextSectionRetrievalStats(out, source());
    }
    void printExecuteOverallStats(std::ostream& out) { profiling::printExecuteOverallStats(out, source()); }
    void printExecuteAverageStats(std::ostream& out) { profiling::printExecuteAverageStats(out, source()); }
    void printExecuteMinStats(std::ostream& out) { profiling::printExecuteMinStats(out, source()); }
    void printExecuteMaxStats(std::ostream& out) { profiling::printExecuteMaxStats(out, source()); }
    void printLibLoadStats(std::ostream& out) { profiling::printLibLoadStats(out, source()); }
    void printApplyBinarySectionAverageStats(std::ostream& out) {
        printMethodStats(out, source(), applyBinarySectionForm, averageForm);
    }
    void printApplyBinarySectionMinStats(std::ostream& out) {
        printMethodStats(out, source(), applyBinarySectionForm, minForm);
    }
    void printApplyBinarySectionMaxStats(std::ostream& out) {
        printMethodStats(out, source(), applyBinarySectionForm, maxForm);
    }
    void printFinalizeAfterTensorUpdatesAverageStats(std::ostream& out) {
        printMethodStats(out, source(), finalizeAfterTensorUpdatesForm, averageForm);
    }
    void printFinalizeAfterTensorUpdatesMinStats(std::ostream& out) {
        printMethodStats(out, source(), finalizeAfterTensorUpdatesForm, minForm);
    }
    void printFinalizeAfterTensorUpdatesMaxStats(std::ostream& out) {
        printMethodStats(out, source(), finalizeAfterTensorUpdatesForm, maxForm);
    }
    void printUpdateBinarySectionStats(std::ostream& out) {
        profiling::printUpdateBinarySectionStats(out, source());
    }

    void writeCsvPreamble(std::ostream& out) { profiling::writeCsvPreamble(out, source()); }
    void writeInitCsv(std::ostream& out) { profiling::writeInitCsv(out, source()); }
    void writeComposeGraphsCsv(std::ostream& out) { profiling::writeComposeGraphsCsv(out, source()); }
    void writeFinalizeCsv(std::ostream& out) { profiling::writeFinalizeCsv(out, source()); }
    void writeDeInitCsv(std::ostream& out) { profiling::writeDeInitCsv(out, source()); }
    void writeExecuteCsv(std::ostream& out) { writeMethodCsv(out, source(), executeForm); }
    void writeExecuteIpsCsv(std::ostream& out) { profiling::writeExecuteIpsCsv(out, source()); }
    void writeLibLoadCsv(std::ostream& out) { profiling::writeLibLoadCsv(out, source()); }
    void writeApplyBinarySectionCsv(std::ostream& out) {
        writeMethodCsv(out, source(), applyBinarySectionForm);
    }
    void writeFinalizeAfterTensorUpdatesCsv(std::ostream& out) {
        writeMethodCsv(out, source(), finalizeAfterTensorUpdatesForm);
    }
    void writeContextCsv(std::ostream& out) { profiling::writeContextCsv(out, source()); }
    void writeUpdateBinarySectionCsv(std::ostream& out) {
        profiling::writeUpdateBinarySectionCsv(out, source());
    }

private:
    // The objects go to files once `loadLog` was asked to save them.
    ReportSource source() {
        return {*this, store_, header_, logFilePath_, saveObjects_ ? &objectFiles_ : nullptr};
    }

    bool messagesDone_ = false;
    std::unique_ptr<FlatBufferReaderUtil> logWalker_;
    EventStore store_;
    LogHeaderDetails header_;
    std::string logFilePath_;
    bool saveObjects_ = false;
    ObjectFiles objectFiles_;
};

}  // namespace zeb::profiling
