#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "reader/ZebProfileLogReader.h"
#include "reader/backend/BackendObjects.h"
#include "reader/backend/LayerStats.h"
#include "reader/backend/LayerTables.h"
#include "reader/backend/ZebLayers.h"

namespace zeb::profiling {

/// How deep a run was profiled, from the event "Execute Profiling Level".
enum class ProfileLevel : std::int32_t {
    basic = 1,  ///< no per-layer data
    detailed = 2,
    internal = 1100,
};

/// One report over the store of a loaded reader: first its console form, then its CSV form.
///
/// The console sections load the binary objects of the log as they come to them, and leave the figures for
/// the sections behind them and for the CSV form.
class BackendReport {
public:
    /// @param reader has to outlive the report
    /// @param internalColumns whether the ORU tables show all their columns
    BackendReport(ZebProfileLogReader& reader, bool internalColumns);

    /// @param out in fixed notation with precision 0
    /// @throws std::invalid_argument, std::out_of_range for a value that has to be a number and is none
    void printConsole(std::ostream& out);

    /// To be called after `printConsole`.
    /// @param out in fixed notation with precision 0
    void writeCsv(std::ostream& out) const;

private:
    /// The time that a tensor copy takes in one execution.
    struct TensorCopy {
        std::string_view name;
        double timeUs;
    };

    void readProfileLevel();
    [[nodiscard]] std::optional<std::string> findExecuteEventValue(std::string_view name) const;
    [[nodiscard]] std::optional<std::uint64_t> singleGraphDuration() const;
    [[nodiscard]] bool hasLayers() const { return profileLevel_ != ProfileLevel::basic; }

    void printBackendInitStats(std::ostream& out);
    void printBackendFinalizeStats(std::ostream& out);
    void printExecutionStats(std::ostream& out);
    void writeExecutionCsv(std::ostream& out) const;

    void loadNodeMapping(const ProfileEvent& mappingEvent, const ProfileEvent& namesEvent);
    void loadLayerConfig(const ProfileEvent& event);
    void loadGraphProfiles();
    void loadGraphProfile(const ProfileEvent& event, std::optional<std::uint64_t> hlosTimeUs);
    void workOutExecutionFigures();
    [[nodiscard]] std::uint64_t perExecution(std::uint64_t total) const;
    [[nodiscard]] double averagePerExecution(std::uint64_t total) const;
    [[nodiscard]] std::string_view apiName() const;

    ZebProfileLogReader& reader_;
    const EventStore& store_;
    bool internalColumns_;

    ProfileLevel profileLevel_ = ProfileLevel::basic;
    LayerConfig layerConfig_;
    GraphProfile graphProfile_;
    LayerStatsList layerStats_;         ///< over the two before
    std::optional<OruTable> oruTable_;  ///< made by the console form
    ZebLayers zebLayers_;
    std::size_t zebNameColumnWidth_;  ///< of the ZEB table
    std::size_t maxZebLayerNameLength_ = 0;

    // Of one execution
    std::optional<std::uint64_t> backendExecuteUs_;  ///< nothing when the log has no event of the API
    std::uint64_t queueWaitUs_ = 0;                  ///< asynchronous runs only
    std::uint64_t ipcTimeUs_ = 0;                    ///< overhead between host and DSP
    std::vector<TensorCopy> tensorCopies_;
    std::uint32_t dspClockMhz_ = 0;
    std::uint32_t krelClockMhz_ = 0;
};

}  // namespace zeb::profiling
