#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "log/FlatBufferReaderUtil.h"
#include "reader/ObjectFiles.h"
#include "store/EventStore.h"
#include "zeb/profiling/IZebProfileLogReader.h"

namespace zeb::profiling {

/// What a log says about itself, from its first `LogHeader`.
struct LogHeaderDetails {
    float timeScale = 0.0F;
    std::uint64_t epochTimestamp = 0;  ///< us since the Unix epoch
    std::uint64_t steadyClockTimestamp = 0;
    std::string generatorName;
    std::string generatorVersion;
    std::string backendInfo;
    bool isAdapterUpdaterLog =
        false;  ///< the log was written by the adapter updater, which has a report of its own
};

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

    /// @return whether `loadLog` was asked to save objects
    [[nodiscard]] bool savesObjects() const { return saveObjects_; }
    /// Saves an object event's bytes to a file, if objects are saved; passes over all other events.
    void writeObjectFile(const ProfileEvent& event);

protected:
    /// To be called at the head of `generateReports`: files may have come and gone since the last report, so
    /// its object files take their names anew.
    void beginReport() { objectFiles_ = {}; }

private:
    void captureHeader();

    bool messagesDone_ = false;
    FlatBufferReaderUtil logWalker_;
    EventStore store_;
    LogHeaderDetails header_;
    std::string logFilePath_;
    bool headerSaved_ = false;
    bool saveObjects_ = false;
    ObjectFiles objectFiles_;
};

}  // namespace zeb::profiling
