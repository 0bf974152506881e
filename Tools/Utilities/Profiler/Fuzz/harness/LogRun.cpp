#include "harness/LogRun.h"

#include <iomanip>
#include <memory>
#include <stdexcept>

#include "harness/MemoryFile.h"
#include "reader/backend/ZebProfileLogReaderMURL.h"
#include "support/CommandLine.h"
#include "support/TestReader.h"
#include "text/TextStream.h"

namespace zeb::fuzz {

namespace {

const std::string& pathOf(std::span<const std::uint8_t> log) {
    static MemoryFile file;
    file.assign(log);
    return file.path();
}

void askForInternalColumns(profiling::ZebProfileLogReaderMURL& reader) {
    test::CommandLine args(test::CommandLine::Given{{"--internal", {}}});
    reader.parseBackendArgs(args);
}

std::unique_ptr<profiling::IZebPluginLogReader> makeReader(const std::string& path,
                                                           const RunOptions& options) {
    if (options.kind == ReportKind::generic) {
        return std::make_unique<profiling::ZebProfileLogReader>(path, options.level);
    }
    auto reader = std::make_unique<profiling::ZebProfileLogReaderMURL>(path, options.level);
    if (options.kind == ReportKind::backendInternal) {
        askForInternalColumns(*reader);
    }
    return reader;
}

void load(profiling::IZebPluginLogReader& reader, bool saveObjects, Outcome& outcome) {
    const test::CaughtOutput output;
    outcome.loaded = reader.loadLog(saveObjects);
    outcome.notes = output.text();
}

// Lets a reader make its report, which fails for a value that has to be a number and is none.
template <typename MakeReport>
void report(Outcome& outcome, MakeReport makeReport) {
    try {
        outcome.reported = makeReport();
    } catch (const std::invalid_argument& error) {
        outcome.failure = error.what();
    } catch (const std::out_of_range& error) {
        outcome.failure = error.what();
    }
}

// What `generateReports` of the reader of that kind does between its files.
bool reportInMemory(profiling::ZebProfileLogReaderMURL& reader, ReportKind kind, Outcome& outcome) {
    profiling::TextStream console;
    profiling::TextStream csv;
    console << std::fixed << std::setprecision(0);
    csv << std::fixed << std::setprecision(0);
    if (kind == ReportKind::generic) {
        reader.printConsoleReport(console);
        reader.writeCsvReport(csv);
    } else {
        if (kind == ReportKind::backendInternal) {
            askForInternalColumns(reader);
        }
        reader.printBackendReport(console);
        reader.writeBackendCsv(csv);
    }
    outcome.console = console.str();
    outcome.csv = csv.str();
    return true;
}

}  // namespace

Outcome readLog(std::span<const std::uint8_t> log, const RunOptions& options) {
    static MemoryFile csvFile;
    csvFile.assign({});
    const test::CaughtLog caughtLog;
    Outcome outcome;
    const auto reader = makeReader(pathOf(log), options);
    load(*reader, options.saveObjects, outcome);
    {
        const test::CaughtOutput output;
        report(outcome, [&reader] { return reader->generateReports(csvFile.path()); });
        outcome.console = output.text();
    }
    outcome.csv = csvFile.content();
    outcome.lines = caughtLog.lines();
    return outcome;
}

std::array<Outcome, reportKinds.size()> readLogInMemory(std::span<const std::uint8_t> log,
                                                        profiling::VisibilityLevel level) {
    const test::CaughtLog caughtLog;
    const std::vector<std::string>& lines = caughtLog.lines();
    profiling::ZebProfileLogReaderMURL reader(pathOf(log), level);
    Outcome loaded;
    load(reader, false, loaded);
    loaded.lines = lines;
    std::array<Outcome, reportKinds.size()> outcomes;
    outcomes.fill(loaded);
    for (std::size_t index = 0; index < reportKinds.size(); ++index) {
        Outcome& outcome = outcomes[index];
        const auto linesBefore = static_cast<std::ptrdiff_t>(lines.size());
        report(outcome, [&] { return reportInMemory(reader, reportKinds[index], outcome); });
        outcome.lines.insert(outcome.lines.end(), lines.begin() + linesBefore, lines.end());
    }
    return outcomes;
}

}  // namespace zeb::fuzz
