#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "log/FlatBufferReaderUtil.h"
#include "reports/ObjectFiles.h"
#include "reports/ReportSource.h"
#include "store/EventStore.h"
#include "store/LogHeaderDetails.h"
#include "zeb/profiling/IZebProfileLogReader.h"

namespace zeb::profiling {

/// The generic reader: loads a log into an event store and gives the report for a backend without a report of
/// its own. A reader for one backend derives from it and overrides the report.
class ZebProfileLogReader : public IZebPluginLogReader {
public:
    ZebProfileLogReader(std::string logFilePath, VisibilityLevel visibilityLevel);

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

    /// @return what reports are made from; the objects go to files once `loadLog` was asked to save them
    [[nodiscard]] ReportSource reportSource() {
        return {store_, header_, logFilePath_, saveObjects_ ? &objectFiles_ : nullptr};
    }

protected:
    /// Begins a report: files may have come and gone since the last one, so its object files take their
    /// names anew.
    ReportSource beginReport() {
        objectFiles_ = {};
        return reportSource();
    }

private:
    void captureHeader();

    bool messagesDone_ = false;
    FlatBufferReaderUtil logWalker_;
    EventStore store_;
    LogHeaderDetails header_;
    std::string logFilePath_;
    bool saveObjects_ = false;
    ObjectFiles objectFiles_;
};

}  // namespace zeb::profiling
