#pragma once

#include <exception>
#include <optional>
#include <string>

#include "command/MemoryLimit.h"
#include "command/StandardOutput.h"
#include "viewer/GuardedStep.h"
#include "viewer/ObjectDirectory.h"
#include "viewer/SavedObjects.h"
#include "viewer/ViewerOptions.h"
#include "zeb/profiling/IZebProfileLogReader.h"

namespace zeb::viewer {

/// One report of a plug-in, from the open files to the end.
class ReportRun {
public:
    /// @param reader has its options; it and all else have to outlive the run
    /// @throws Failure when objects can't be saved
    ReportRun(profiling::IZebPluginLogReader& reader, const ViewerOptions& options,
              command::StandardOutput& output, command::MemoryLimit& memory);

    /// Loads the log, prints the report and appends the CSV report.
    /// @throws Failure
    void show();

private:
    void checkObjects();
    void load();
    void generate();
    void generateWithCsv();
    bool generateReports(const std::string& csvPath);
    bool generateReportsBesideObjects(const std::string& csvPath);
    [[nodiscard]] command::Failure noNumber(const std::string& what, const std::exception& error) const;

    profiling::IZebPluginLogReader& reader_;
    const ViewerOptions& options_;
    command::StandardOutput& output_;
    command::MemoryLimit& memory_;
    std::optional<ObjectDirectory> objects_;
    std::optional<SavedObjects> saved_;
    GuardedStep loading_;
    GuardedStep reporting_;
};

}  // namespace zeb::viewer
