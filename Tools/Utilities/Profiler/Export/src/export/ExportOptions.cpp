#include "export/ExportOptions.h"

#include <algorithm>
#include <thread>

#include "command/runs/Labels.h"

namespace zeb::exports {

namespace {

using command::CommandLine;
using command::ExitCode;
using command::Given;
using command::Takes;
using command::Words;
using command::wrongUsage;

constexpr std::size_t maxJobs = 256;

std::size_t jobsOf(const Given& given) {
    const auto jobs = command::numberOf<std::size_t>(given.value);
    if (!jobs || *jobs == 0 || *jobs > maxJobs) {
        throw wrongUsage(given.name,
                         "\"" + given.value + "\" is no number from 1 to " + std::to_string(maxJobs));
    }
    return *jobs;
}

std::vector<forms::Table> tablesOf(const Given& given) {
    std::vector<bool> isWanted(std::size(forms::allTables));
    std::string_view rest = given.value;
    while (true) {
        const std::string_view name = rest.substr(0, rest.find(','));
        const auto* const found = std::ranges::find(forms::allTables, name, &forms::NamedTable::name);
        if (found == std::end(forms::allTables)) {
            throw command::noneOf({given.name, std::string(name)}, command::namesOf(forms::allTables));
        }
        isWanted[static_cast<std::size_t>(found->table)] = true;
        if (name.size() == rest.size()) {
            break;
        }
        rest.remove_prefix(name.size() + 1);
    }
    std::vector<forms::Table> tables;
    for (const forms::NamedTable& each : forms::allTables) {
        if (isWanted[static_cast<std::size_t>(each.table)]) {
            tables.push_back(each.table);
        }
    }
    return tables;
}

using OptionRows = std::vector<command::OptionRow<ExportOptions>>;

// All options, in the order of the help.
const OptionRows& optionRows() {
    static const OptionRows rows = {
        {{"--to", " DIR", "The directory of all batches. It is made if it is not there."},
         Takes::value,
         [](ExportOptions& options, const Given& given) { options.directory = given.value; }},
        {command::filesFromOption(), Takes::value,
         [](ExportOptions& options, const Given& given) { options.filesFrom = given.value; }},
        {command::labelOption("all these runs"), Takes::valueEachTime,
         [](ExportOptions& options, const Given& given) { command::addLabelOf(given, options.labels); }},
        {{"--skip-known", "", "Leave out runs that a batch in DIR has."},
         Takes::nothing,
         [](ExportOptions& options, const Given& /*given*/) { options.skipsKnown = true; }},
        {{"--tables", " NAME,NAME",
          "Write these tables only: " + console::namesInARow(command::namesOf(forms::allTables)) + '.',
          command::namesOf(forms::allTables)},
         Takes::value,
         [](ExportOptions& options, const Given& given) { options.tables = tablesOf(given); }},
        {{"--jobs", " N", "Read N logs at a time. Default: as many as there are processors."},
         Takes::value,
         [](ExportOptions& options, const Given& given) { options.jobs = jobsOf(given); }},
        {command::maxMemoryOption(), Takes::value,
         [](ExportOptions& options, const Given& given) { options.maxMemory = command::maxMemoryOf(given); }},
    };
    return rows;
}

}  // namespace

std::string_view meaningOf(ExitCode exitCode) {
    switch (exitCode) {
        case ExitCode::good:
            return "good: all runs are in the tables";
        case ExitCode::badLog:
            return "a log can't be read, or needs more memory than it may have; the rest is in the tables";
        case ExitCode::usage:
            return "wrong usage; there is no batch";
        case ExitCode::badOutput:
            return "the batch can't be written, and there is none; or its path can't be, and it is there";
        case ExitCode::badPlugin:
        case ExitCode::badReport:
        case ExitCode::slower:
        case ExitCode::incomparable:
        case ExitCode::closedPipe:
            break;
    }
    return {};
}

ExportOptions parseCommandLine(int argc, const char* const* argv) {
    const CommandLine line = parsedBy(optionRows(), command::OwnWord::none, argc, argv);
    ExportOptions options;
    options.action = line.action();
    options.logs = command::filesAmong(line.remaining(), command::optionNames(optionRows()));
    if (options.action != command::Action::work) {  // a help that is shown whatever the values hold
        return options;
    }
    options.jobs = std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, maxJobs);
    for (const forms::NamedTable& each : forms::allTables) {
        options.tables.push_back(each.table);
    }
    applyGiven(line, optionRows(), options);
    if (options.directory.empty()) {
        throw wrongUsage("no --to given");
    }
    if (options.logs.empty() && options.filesFrom.empty()) {
        throw wrongUsage("no LOG given");
    }
    return options;
}

console::CommandManual exportManual() {
    return {
        .name = std::string(programName),
        .summary = "Writes the runs of profiling logs as flat tables, for databases.",
        .usages = {"[options] --to DIR LOG...", "[options] --to DIR --files-from FILE"},
        .options = manualOf(optionRows()),
        .tables = {},
        .paragraphs =
            {"A log may also be a file with the JSON of a run, as the viewer writes it. Each call makes one "
             "new "
             "folder in DIR, a batch of CSV files, and prints its path. The folder is there once it is "
             "whole, "
             "and any number of calls may run at once. A run that comes again within a call is taken once."},
        .exitCodes = {"Exit codes", console::rowsOf(meaningOf)},
        .examples = {{"", "zeb-profile-export --to fleet run-*.zlog"},
                     {"", "zeb-profile-export --to fleet --label site=lab --label board=7 run.zlog"},
                     {"All logs of a directory, and none twice",
                      "find logs -type f | zeb-profile-export --to all --skip-known --files-from -"},
                     {"", "zeb-profile-export --to fleet --tables runs,graphs run.zlog"}}};
}

}  // namespace zeb::exports
