#include "viewer/ReportRun.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "command/LoadProgress.h"
#include "command/LogDiagnosis.h"
#include "viewer/CsvFile.h"
#include "viewer/CsvSpool.h"
#include "viewer/ObjectNames.h"

namespace zeb::viewer {

using command::ExitCode;
using command::Failure;
using command::LoadProgress;
using command::MemoryLimit;
using command::StandardOutput;
using command::whyEndedEarly;
using command::whyRejected;

namespace {

// The directory for objects, once it and the log are known to be fit for them.
std::optional<ObjectDirectory> openObjectDirectory(const ViewerOptions& options) {
    if (!options.objectDirectory) {
        return std::nullopt;
    }
    std::error_code ignored;
    if (!options.trustObjectNames && !std::filesystem::is_regular_file(options.logPath, ignored)) {
        throw Failure(ExitCode::usage, options.log,
                      "the log is no regular file, so --save-objects can't check its object names first; "
                      "--trust-object-names goes without");
    }
    return ObjectDirectory(*options.objectDirectory);
}

}  // namespace

ReportRun::ReportRun(profiling::IZebPluginLogReader& reader, const ViewerOptions& options,
                     StandardOutput& output, MemoryLimit& memory)
    : reader_(reader),
      options_(options),
      output_(output),
      memory_(memory),
      objects_(openObjectDirectory(options)),
      loading_{ExitCode::badLog, options.log, "the log can't be read: ", ""},
      reporting_{ExitCode::badReport, options.log, "the report failed: ", "the report "} {}

void ReportRun::show() {
    guarded(loading_, &memory_, [this] {
        if (objects_) {
            checkObjects();
        }
        load();
        return true;
    });
    output_.finish();
    guarded(reporting_, &memory_, [this] {
        options_.csv.empty() ? generate() : generateWithCsv();
        return true;
    });
}

void ReportRun::checkObjects() {
    if (!options_.trustObjectNames) {
        saved_ = checkObjectNames(options_.logPath, objects_->path());
        std::vector<command::Given> outputs = options_.formFiles;
        outputs.push_back({"--csv", options_.csv});
        saved_->checkBefore(outputs);
    }
    printErrorLine("objects go to " + objects_->path());
}

void ReportRun::load() {
    const bool isLoaded = [this] {
        const LoadProgress progress(options_.logPath);
        return reader_.loadLog(objects_.has_value());
    }();
    if (!isLoaded) {
        throw Failure(ExitCode::badLog, options_.log,
                      whyRejected(options_.logPath, memory_, pipedIntoViewer));
    }
    if (const auto trouble = whyEndedEarly(options_.logPath)) {
        throw Failure(ExitCode::badLog, options_.log, *trouble);
    }
}

void ReportRun::generate() {
    if (!generateReports("")) {
        throw Failure(ExitCode::badReport, options_.log, "the reader has made no report");
    }
    output_.finish();
}

void ReportRun::generateWithCsv() {
    const CsvSpool csv(options_.csv);
    if (!generateReports(csv.path())) {
        throw Failure(ExitCode::badOutput, options_.csv, "the reader can't write the CSV report");
    }
    output_.finish();
    appendToFile(options_.csv, csv);
}

bool ReportRun::generateReports(const std::string& csvPath) {
    try {
        const bool isMade = generateReportsBesideObjects(csvPath);
        if (MemoryLimit::wasHit()) {
            throw std::bad_alloc();
        }
        return isMade;
    } catch (const std::invalid_argument& error) {
        throw noNumber("a value in the log is no number", error);
    } catch (const std::out_of_range& error) {
        throw noNumber("a value in the log is no number that fits", error);
    }
}

// The reader saves objects in the working directory; all other paths keep their meaning.
bool ReportRun::generateReportsBesideObjects(const std::string& csvPath) {
    if (!objects_) {
        return reader_.generateReports(csvPath);
    }
    DirectoryVisit visit(*objects_);
    const bool isMade = reader_.generateReports(csvPath);
    visit.leave();
    if (isMade && saved_) {
        saved_->checkAfter();
    }
    return isMade;
}

Failure ReportRun::noNumber(const std::string& what, const std::exception& error) const {
    return {ExitCode::badReport, options_.log, reporting_.failed + what + " (" + error.what() + ")"};
}

}  // namespace zeb::viewer
