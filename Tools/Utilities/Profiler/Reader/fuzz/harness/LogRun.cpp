#include "harness/LogRun.h"

#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "harness/MemoryFile.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/TestLog.h"

namespace zeb::fuzz {

namespace {

/// Takes what is written to standard output, for as long as it lives.
class CaughtOutput {
public:
    CaughtOutput() : previous_(std::cout.rdbuf(text_.rdbuf())) {}
    ~CaughtOutput() { std::cout.rdbuf(previous_); }
    CaughtOutput(const CaughtOutput&) = delete;
    CaughtOutput& operator=(const CaughtOutput&) = delete;

    /// @return what was written since the last call
    std::string take() {
        std::string taken = std::move(text_).str();
        text_.str({});
        return taken;
    }

private:
    std::ostringstream text_;
    std::streambuf* previous_;
};

class InternalFlag final : public commandline2::ParsedArgs {
public:
    commandline2::ArgLookupResult lookup(const std::string& name) override {
        return {.values = {}, .found = name == "--internal"};
    }
};

std::unique_ptr<profiling::IZebPluginLogReader> makeReader(const std::string& path,
                                                           const RunOptions& options) {
    if (options.kind == ReaderKind::generic) {
        return std::make_unique<profiling::ZebProfileLogReader>(path, options.level);
    }
    auto reader = std::make_unique<profiling::ZebProfileLogReaderMURL>(path, options.level);
    if (options.internalColumns) {
        InternalFlag args;
        reader->parseBackendArgs(args);
    }
    return reader;
}

}  // namespace

Outcome readLog(std::span<const std::uint8_t> log, const RunOptions& options) {
    static MemoryFile logFile;
    static MemoryFile csvFile;
    logFile.assign(log);
    csvFile.assign({});
    const test::CaughtLog caughtLog;
    CaughtOutput output;
    Outcome outcome;
    const auto reader = makeReader(logFile.path(), options);
    outcome.loaded = reader->loadLog(options.saveObjects);
    outcome.notes = output.take();
    try {
        outcome.reported = reader->generateReports(csvFile.path());
    } catch (const std::invalid_argument& error) {
        outcome.failure = error.what();
    } catch (const std::out_of_range& error) {
        outcome.failure = error.what();
    }
    outcome.console = output.take();
    outcome.csv = csvFile.content();
    outcome.lines = caughtLog.lines();
    return outcome;
}

}  // namespace zeb::fuzz
