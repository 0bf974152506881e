#include "Viewer.h"

#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "CsvFile.h"
#include "LogDiagnosis.h"
#include "NearestName.h"
#include "PluginLibrary.h"
#include "StandardOutput.h"
#include "ViewerArgs.h"
#include "ViewerOptions.h"
#include "zeb/profiling/Version.h"

namespace zeb::viewer {

namespace {

using profiling::IZebPluginLogReader;

// Calls the reader. An exception of its becomes a failure that tells the cause, which `words` puts before the
// exception's own text.
template <typename Call>
bool callReader(Call call, ExitCode exitCode, const std::string& subject, const std::string& words) {
    const auto failure = [&](const std::string& text) { return Failure(exitCode, subject, words + text); };
    try {
        return call();
    } catch (const Failure&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw failure("there is not enough memory");
    } catch (const std::exception& error) {
        throw failure(error.what());
    } catch (...) {
        throw failure("unknown error");
    }
}

void showReaderHelp(const ViewerOptions& options) {
    const PluginLibrary plugin(options.reader);
    const ReaderPtr reader = plugin.createReader(options.log, options.level);
    ViewerArgs args({"--help"});
    callReader([&] { return reader->parseBackendArgs(args); }, ExitCode::badPlugin, options.reader,
               "the reader failed on its options: ");
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

void load(IZebPluginLogReader& reader, const ViewerOptions& options) {
    const bool isLoaded = callReader([&] { return reader.loadLog(options.saveObjects); }, ExitCode::badLog,
                                     options.log, "the log can't be read: ");
    if (!isLoaded) {
        throw Failure(ExitCode::badLog, options.log, whyRejected(options.log));
    }
}

bool generate(IZebPluginLogReader& reader, const ViewerOptions& options, const std::string& csvPath) {
    const std::string words = "the report failed: ";
    const auto noNumber = [&](const char* what, const std::exception& error) {
        return Failure(ExitCode::badReport, options.log, words + what + " (" + error.what() + ")");
    };
    const auto call = [&] {
        try {
            return reader.generateReports(csvPath);
        } catch (const std::invalid_argument& error) {
            throw noNumber("a value in the log is no number", error);
        } catch (const std::out_of_range& error) {
            throw noNumber("a value in the log is no number that fits", error);
        }
    };
    return callReader(call, ExitCode::badReport, options.log, words);
}

void generateWithCsv(IZebPluginLogReader& reader, const ViewerOptions& options, StandardOutput& output) {
    const CsvBuffer csv(options.csv);
    if (!generate(reader, options, csv.memoryPath())) {
        throw Failure(ExitCode::badOutput, options.csv, "the reader can't write the CSV report");
    }
    output.finish();
    appendToFile(options.csv, csv.content());
}

ExitCode showReport(const ViewerOptions& options, StandardOutput& output) {
    const PluginLibrary plugin(options.reader);
    const ReaderPtr reader = plugin.createReader(options.log, options.level);
    ViewerArgs args(options.readerArguments);
    if (!callReader([&] { return reader->parseBackendArgs(args); }, ExitCode::usage, options.reader,
                    "the reader failed on its options: ")) {
        return ExitCode::usage;  // the reader has said why
    }
    refuseLeftovers(args);
    if (const auto trouble = troubleWithPath(options.log)) {
        throw Failure(ExitCode::badLog, options.log, *trouble);
    }
    if (!options.csv.empty()) {
        checkCsvPath(options.csv, options.log);
    }
    load(*reader, options);
    output.finish();
    if (!options.csv.empty()) {
        generateWithCsv(*reader, options, output);
        return ExitCode::good;
    }
    if (!generate(*reader, options, "")) {
        throw Failure(ExitCode::badReport, options.log, "the reader has made no report");
    }
    output.finish();
    return ExitCode::good;
}

ExitCode run(int argc, const char* const* argv) {
    StandardOutput output;
    const ViewerOptions options = parseCommandLine(argc, argv);
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
