#include "Viewer.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "CsvFile.h"
#include "CsvSpool.h"
#include "LogDiagnosis.h"
#include "MemoryLimit.h"
#include "NearestName.h"
#include "ObjectDirectory.h"
#include "ObjectNames.h"
#include "PluginLibrary.h"
#include "SavedObjects.h"
#include "StandardOutput.h"
#include "ViewerArgs.h"
#include "ViewerOptions.h"
#include "zeb/profiling/Version.h"

namespace zeb::viewer {

namespace {

using profiling::IZebPluginLogReader;

// A piece of the reader's work, and the words in front of the cause when it fails, and when it is memory that
// it wants.
struct Step {
    ExitCode exitCode;
    std::string subject;
    std::string failed;
    std::string wanting;
};

Failure outOfMemory(const Step& step, const std::string& words) {
    return {step.exitCode, step.subject, step.wanting + words};
}

// Takes the step. An exception of the reader's becomes a failure that tells the cause, and so does an
// allocation whose failure the reader has swallowed.
template <typename Call>
bool take(const Step& step, MemoryLimit* memory, Call call) {
    try {
        const bool result = call();
        if (memory != nullptr && MemoryLimit::wasHit()) {
            throw std::bad_alloc();
        }
        return result;
    } catch (const Failure&) {
        throw;
    } catch (const std::bad_alloc&) {
        if (memory == nullptr) {
            throw outOfMemory(step, MemoryLimit::withoutLimit);
        }
        memory->releaseReserve();
        throw outOfMemory(step, memory->words());
    } catch (const std::exception& error) {
        throw Failure(step.exitCode, step.subject, step.failed + error.what());
    } catch (...) {
        throw Failure(step.exitCode, step.subject, step.failed + "unknown error");
    }
}

bool parseReaderOptions(IZebPluginLogReader& reader, ViewerArgs& args, const std::string& name,
                        ExitCode exitCode) {
    return take({exitCode, name, "the reader failed on its options: ", ""}, nullptr,
                [&] { return reader.parseBackendArgs(args); });
}

void showReaderHelp(const ViewerOptions& options) {
    const PluginLibrary plugin(options.reader);
    const ReaderPtr reader = plugin.createReader(options.log, options.level);
    ViewerArgs args({"--help"});
    parseReaderOptions(*reader, args, options.reader, ExitCode::badPlugin);
}

void showHelp(const ViewerOptions& options, StandardOutput& output) {
    std::cout << helpText();
    output.finish();
    try {
        showReaderHelp(options);
    } catch (const Failure& failure) {
        printErrorLine(std::string("note: no help of the reader: ") + failure.what());
    }
    output.finish();
}

void refuseLeftovers(const ViewerArgs& args) {
    const auto leftover = args.firstLeftover();
    if (!leftover) {
        return;
    }
    if (!leftover->isOption) {
        throw Failure(ExitCode::usage, leftover->name, "a word too many, there is one LOG");
    }
    std::vector<std::string> known = viewerOptionNames();
    known.insert(known.end(), args.askedNames().begin(), args.askedNames().end());
    const auto meant = nearestName(leftover->name, known);
    throw Failure(ExitCode::usage, leftover->name,
                  meant ? "unknown option, did you mean " + *meant + "?"
                        : "unknown option; see " + std::string(programName) + " --help");
}

// The directory for objects, once it and the log are known to be fit for them.
std::optional<ObjectDirectory> openObjectDirectory(const ViewerOptions& options) {
    if (!options.objectDirectory) {
        return std::nullopt;
    }
    std::error_code ignored;
    if (!options.trustObjectNames && !std::filesystem::is_regular_file(options.log, ignored)) {
        throw Failure(ExitCode::usage, options.log,
                      "the log is no regular file, so --save-objects can't check its object names first; "
                      "--trust-object-names goes without");
    }
    return ObjectDirectory(*options.objectDirectory);
}

// One report, from the open files to the end.
class ReportRun {
public:
    ReportRun(IZebPluginLogReader& reader, const ViewerOptions& options, StandardOutput& output)
        : reader_(reader), options_(options), output_(output), objects_(openObjectDirectory(options)) {}

    void show() {
        if (objects_) {
            checkObjects();
        }
        load();
        output_.finish();
        take(reporting_, &memory_, [this] {
            options_.csv.empty() ? generate() : generateWithCsv();
            return true;
        });
    }

private:
    void checkObjects() {
        take(loading_, &memory_, [this] {
            if (!options_.trustObjectNames) {
                saved_ = checkObjectNames(options_.log, objects_->path());
                saved_->checkBefore(options_.csv);
            }
            printErrorLine("objects go to " + objects_->path());
            return true;
        });
    }

    void load() {
        take(loading_, &memory_, [this] {
            if (!reader_.loadLog(objects_.has_value())) {
                throw Failure(ExitCode::badLog, options_.log, whyRejected(options_.log, memory_));
            }
            if (const auto trouble = whyEndedEarly(options_.log)) {
                throw Failure(ExitCode::badLog, options_.log, *trouble);
            }
            return true;
        });
    }

    void generate() {
        if (!generateReports("")) {
            throw Failure(ExitCode::badReport, options_.log, "the reader has made no report");
        }
        output_.finish();
    }

    void generateWithCsv() {
        const CsvSpool csv(options_.csv);
        if (!generateReports(csv.path())) {
            throw Failure(ExitCode::badOutput, options_.csv, "the reader can't write the CSV report");
        }
        output_.finish();
        appendToFile(options_.csv, csv);
    }

    bool generateReports(const std::string& csvPath) {
        return take(reporting_, &memory_, [&] {
            try {
                return generateReportsBesideObjects(csvPath);
            } catch (const std::invalid_argument& error) {
                throw noNumber("a value in the log is no number", error);
            } catch (const std::out_of_range& error) {
                throw noNumber("a value in the log is no number that fits", error);
            }
        });
    }

    // The reader saves objects in the working directory; all other paths keep their meaning.
    bool generateReportsBesideObjects(const std::string& csvPath) {
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

    [[nodiscard]] Failure noNumber(const std::string& what, const std::exception& error) const {
        return {ExitCode::badReport, options_.log, reporting_.failed + what + " (" + error.what() + ")"};
    }

    IZebPluginLogReader& reader_;
    const ViewerOptions& options_;
    StandardOutput& output_;
    std::optional<ObjectDirectory> objects_;
    std::optional<SavedObjects> saved_;
    Step loading_{ExitCode::badLog, options_.log, "the log can't be read: ", ""};
    Step reporting_{ExitCode::badReport, options_.log, "the report failed: ", "the report "};
    MemoryLimit memory_{options_.maxMemory};
};

ExitCode showReport(const ViewerOptions& options, StandardOutput& output) {
    const PluginLibrary plugin(options.reader);
    const ReaderPtr reader = plugin.createReader(options.log, options.level);
    ViewerArgs args(options.readerArguments);
    if (!parseReaderOptions(*reader, args, options.reader, ExitCode::usage)) {
        return ExitCode::usage;  // the reader has said why
    }
    refuseLeftovers(args);
    if (const auto trouble = troubleWithPath(options.log)) {
        throw Failure(ExitCode::badLog, options.log, *trouble);
    }
    if (!options.csv.empty()) {
        checkCsvPath(options.csv, options.log);
    }
    ReportRun(*reader, options, output).show();
    return ExitCode::good;
}

ExitCode run(int argc, const char* const* argv) {
    StandardOutput output;
    const ViewerOptions options = parseCommandLine(argc, argv);
    if (options.raw) {
        output.showRaw();
    }
    switch (options.action) {
        case Action::showHelp:
            showHelp(options, output);
            return ExitCode::good;
        case Action::showVersion:
            std::cout << programName << ' ' << profiling::versionText << '\n';
            output.finish();
            return ExitCode::good;
        case Action::report:
            break;
    }
    return showReport(options, output);
}

}  // namespace

ExitCode runViewer(int argc, const char* const* argv) noexcept {
    try {
        return run(argc, argv);
    } catch (const Failure& failure) {
        printErrorLine(failure.what());
        return failure.exitCode();
    } catch (const std::exception& error) {
        printErrorLine(error.what());
    } catch (...) {
        printErrorLine("unknown error");
    }
    return ExitCode::badLog;
}

}  // namespace zeb::viewer
