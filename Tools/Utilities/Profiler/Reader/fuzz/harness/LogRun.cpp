#include "harness/LogRun.h"

#include <memory>
#include <stdexcept>

#include "harness/MemoryFile.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/CommandLine.h"
#include "support/TestReader.h"

namespace zeb::fuzz {

namespace {

std::unique_ptr<profiling::IZebPluginLogReader> makeReader(const std::string& path,
                                                           const RunOptions& options) {
    if (options.kind == ReaderKind::generic) {
        return std::make_unique<profiling::ZebProfileLogReader>(path, options.level);
    }
    auto reader = std::make_unique<profiling::ZebProfileLogReaderMURL>(path, options.level);
    if (options.internalColumns) {
        test::CommandLine args(test::CommandLine::Given{{"--internal", {}}});
        reader->parseBackendArgs(args);
    }
    return reader;
}

void report(profiling::IZebPluginLogReader& reader, const std::string& csvPath, Outcome& outcome) {
    const test::CaughtOutput output;
    try {
        outcome.reported = reader.generateReports(csvPath);
    } catch (const std::invalid_argument& error) {
        outcome.failure = error.what();
    } catch (const std::out_of_range& error) {
        outcome.failure = error.what();
    }
    outcome.console = output.text();
}

}  // namespace

Outcome readLog(std::span<const std::uint8_t> log, const RunOptions& options) {
    static MemoryFile logFile;
    static MemoryFile csvFile;
    logFile.assign(log);
    csvFile.assign({});
    const test::CaughtLog caughtLog;
    Outcome outcome;
    const auto reader = makeReader(logFile.path(), options);
    {
        const test::CaughtOutput output;
        outcome.loaded = reader->loadLog(options.saveObjects);
        outcome.notes = output.text();
    }
    report(*reader, csvFile.path(), outcome);
    outcome.csv = csvFile.content();
    outcome.lines = caughtLog.lines();
    return outcome;
}

}  // namespace zeb::fuzz
