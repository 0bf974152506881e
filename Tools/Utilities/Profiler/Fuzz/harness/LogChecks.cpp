#include "harness/LogChecks.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "harness/LogRun.h"
#include "harness/LogShape.h"
#include "log/ChunkCheck.h"
#include "reports/SectionHeads.h"
#include "support/TestLog.h"

namespace zeb::fuzz {

namespace {

using Bytes = samplelog::Bytes;
using LogView = std::span<const std::uint8_t>;

constexpr std::size_t chunkPrefixSize = 4;
constexpr std::size_t inputsToAFullCheck = 32;

bool isEachCheckedInFull = false;

// Lines that the console has more than the CSV file: rules below titles and above the summary.
struct Table {
    std::string_view title;
    std::ptrdiff_t moreConsoleLines;
};
constexpr std::array<Table, 3> tables = {{
    {profiling::heads::oruLayers.title, 1},
    {profiling::heads::zebLayers.title, 2},
    {profiling::heads::layerMapping.title, 0},
}};

// Number of lines of each table; nothing when the titles don't stand there once, in their order. A text of
// the log may look like a title.
std::optional<std::array<std::ptrdiff_t, tables.size()>> countTableLines(std::string_view report) {
    std::array<std::size_t, tables.size() + 1> starts{};
    for (std::size_t index = 0; index < tables.size(); ++index) {
        const std::string line = "\n" + std::string(tables[index].title) + "\n";
        starts[index] = report.find(line);
        if (starts[index] == std::string_view::npos ||
            report.find(line, starts[index] + 1) != std::string_view::npos) {
            return std::nullopt;
        }
    }
    starts.back() = report.size();
    if (!std::is_sorted(starts.begin(), starts.end())) {
        return std::nullopt;
    }
    std::array<std::ptrdiff_t, tables.size()> lines{};
    for (std::size_t index = 0; index < tables.size(); ++index) {
        const std::string_view section = report.substr(starts[index], starts[index + 1] - starts[index]);
        lines[index] = std::count(section.begin(), section.end(), '\n');
    }
    return lines;
}

void checkTables(const Outcome& outcome) {
    const auto console = countTableLines(outcome.console);
    const auto csv = countTableLines(outcome.csv);
    for (std::size_t index = 0; console && csv && index < tables.size(); ++index) {
        require((*console)[index] == (*csv)[index] + tables[index].moreConsoleLines,
                "console and CSV file have the same table rows");
    }
}

void checkOutcome(const Outcome& outcome) {
    require(outcome.loaded || outcome.notes.empty(), "a failed load writes nothing");
    require(outcome.reported == outcome.failure.empty(), "a report fails for a value alone");
    require(outcome.failure.empty() || (outcome.console.empty() && outcome.csv.empty()),
            "a failed report writes nothing");
    require(outcome.loaded || std::any_of(outcome.lines.begin(), outcome.lines.end(),
                                          [](const std::string& line) { return line.starts_with("1 "); }),
            "a failed load says why");
}

Bytes followedBy(LogView log, LogView more) {
    Bytes all(log.begin(), log.end());
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

// A chunk that is good, with a message that would show in the report.
const Bytes& goodChunk() {
    static const Bytes chunk = test::logOf({{test::message(test::MethodType::Execute, "good", 7)}});
    return chunk;
}

// End of the first chunk that is not sound, nothing when all of them are.
std::optional<std::size_t> damagedChunkEnd(LogView log, const LogShape& shape) {
    std::size_t start = 0;
    for (const std::size_t end : shape.chunkEnds) {
        const LogView chunk = log.subspan(start, end - start).subspan(chunkPrefixSize);
        if (profiling::checkChunk(chunk) != profiling::ChunkFault::none) {
            return end;
        }
        start = end;
    }
    return std::nullopt;
}

// Requires that the log's chunks alone decide on the load.
void checkLoad(LogView log, const LogShape& shape, const Outcome& outcome) {
    require(outcome.loaded == (!damagedChunkEnd(log, shape) && !shape.isCutOff),
            "a load fails for a damaged chunk alone");
}

// Requires of the same chunks in other logs what follows from this one.
void checkChunks(LogView log, const LogShape& shape, const Outcome& outcome, const RunOptions& options) {
    if (const auto damagedEnd = damagedChunkEnd(log, shape)) {
        const LogView damaged = log.first(*damagedEnd);
        require(outcome == readLog(damaged, options), "the damaged chunk decides");
        require(outcome == readLog(followedBy(damaged, goodChunk()), options),
                "nothing follows a damaged chunk");
    } else if (!shape.chunkEnds.empty()) {
        const LogView whole = log.first(shape.chunkEnds.back());
        require(shape.isCutOff || outcome == readLog(followedBy(whole, Bytes{1, 0, 0}), options),
                "bytes that are no length end the log");
        require(readLog(log.first(shape.chunkEnds.front()), options).loaded,
                "a good log is good from its start");
    }
}

using Files = std::map<std::string, std::string>;

Files filesIn(const std::filesystem::path& directory) {
    Files files;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        files[entry.path().filename()] = test::fileText(entry.path());
    }
    return files;
}

/// Another working directory, for as long as it lives.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const std::filesystem::path& directory)
        : previous_(std::filesystem::current_path()) {
        std::filesystem::current_path(directory);
    }
    ~WorkingDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(previous_, ignored);
    }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    std::filesystem::path previous_;
};

void checkSaving(LogView log, RunOptions options, const Outcome& unsaved) {
    static const test::TempDir scratch;
    const WorkingDirectory inScratch(scratch.directory());
    options.saveObjects = true;
    const Outcome first = readLog(log, options);
    require(first.console == unsaved.console && first.csv == unsaved.csv, "saving does not change a report");
    const Files saved = filesIn(scratch.directory());
    readLog(log, options);
    const Files savedTwice = filesIn(scratch.directory());
    require(std::includes(savedTwice.begin(), savedTwice.end(), saved.begin(), saved.end()),
            "saving does not touch a file that exists");
    for (const auto& [name, content] : savedTwice) {
        std::filesystem::remove(scratch.directory() / name);
    }
}

void checkRuns(LogView log, const LogShape& shape, const RunOptions& options, const Outcome& outcome) {
    require(outcome == readLog(log, options), "a host gets the reports that are made in memory");
    require(outcome == readLog(log, options), "the same log gives the same texts");
    checkTables(outcome);
    checkChunks(log, shape, outcome, options);
    if (shape.hasObjects && shape.namesPlainFiles && outcome.loaded) {
        checkSaving(log, options, outcome);
    }
}

}  // namespace

void require(bool isKept, const char* promise) {
    if (!isKept) {
        static_cast<void>(std::fprintf(stderr, "Broken promise: %s\n", promise));
        std::abort();
    }
}

void checkEveryInputInFull() {
    isEachCheckedInFull = true;
}

bool isCheckedInFull(std::span<const std::uint8_t> input) {
    const std::string_view bytes(reinterpret_cast<const char*>(input.data()), input.size());
    return isEachCheckedInFull || std::hash<std::string_view>{}(bytes) % inputsToAFullCheck == 0;
}

void checkLog(LogView log, profiling::VisibilityLevel level) {
    const LogShape shape = shapeOf(log);
    if (!shape.isAffordable) {
        return;
    }
    const auto outcomes = readLogInMemory(log, level);
    checkLoad(log, shape, outcomes.front());
    const bool isInFull = isCheckedInFull(log);
    for (std::size_t index = 0; index < reportKinds.size(); ++index) {
        checkOutcome(outcomes[index]);
        if (isInFull) {
            checkRuns(log, shape, {.kind = reportKinds[index], .level = level}, outcomes[index]);
        }
    }
}

}  // namespace zeb::fuzz
