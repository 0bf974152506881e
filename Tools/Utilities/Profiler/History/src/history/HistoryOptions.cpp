#include "history/HistoryOptions.h"

#include "command/Forms.h"
#include "history/HistoryForms.h"

namespace zeb::history {

namespace {

using command::CommandLine;
using command::ExitCode;
using command::Given;
using command::Takes;
using command::wrongUsage;

struct OrderName {
    std::string_view name;
    analysis::VersionOrder order;
};
constexpr OrderName orderNames[] = {{"given", analysis::VersionOrder::given},
                                    {"epoch", analysis::VersionOrder::epoch}};

analysis::VersionOrder orderOf(const Given& given) {
    for (const OrderName& each : orderNames) {
        if (each.name == given.value) {
            return each.order;
        }
    }
    throw noneOf(given, command::namesOf(orderNames));
}

constexpr const char* failName = "--fail-above";

using OptionRows = std::vector<command::OptionRow<HistoryOptions>>;

OptionRows ownRows() {
    return {
        {{"--by", " KEY",
          "Runs with the same KEY are of one version: a label of the runs, \"backend\" or \"generator\". "
          "Without it every "
          "run is a version."},
         Takes::value,
         [](HistoryOptions& options, const Given& given) { options.by = given.value; }},
        {{"--order", " ORDER",
          "Put the versions in the order in which their runs are given, or by the clock of the logs: " +
              console::namesInARow(command::namesOf(orderNames)) + ". Default given.",
          command::namesOf(orderNames)},
         Takes::value,
         [](HistoryOptions& options, const Given& given) { options.order = orderOf(given); }},
        {{"--split", " KEY", "Runs that differ in the label KEY are series of their own."},
         Takes::value,
         [](HistoryOptions& options, const Given& given) { options.split = given.value; }},
        {command::filesFromOption(), Takes::value,
         [](HistoryOptions& options, const Given& given) { options.filesFrom = given.value; }},
        {{failName, " PERCENT",
          "Fail when a graph's time has a sure step by more than PERCENT that holds until the newest "
          "version."},
         Takes::value,
         [](HistoryOptions& options, const Given& given) {
             options.failAbove = command::shareOfPercent(given);
         }},
        {{"--fail-unsure", "", "Fail also when such a step might hide in the newest versions."},
         Takes::nothing,
         [](HistoryOptions& options, const Given& /*given*/) { options.failsUnsure = true; },
         {},
         {.needs = failName}},
        {command::maxMemoryOption(), Takes::value,
         [](HistoryOptions& options, const Given& given) {
             options.maxMemory = command::maxMemoryOf(given);
         }},
    };
}

// All options, in the order of the help.
const OptionRows& optionRows() {
    static const OptionRows rows = [] {
        OptionRows all = ownRows();
        const OptionRows forms = command::formRows<HistoryOptions>(
            historyForms(), "the text",
            [](HistoryOptions& options, const Given& form) { options.formFiles.push_back(form); });
        all.insert(all.end(), forms.begin(), forms.end());
        return all;
    }();
    return rows;
}

}  // namespace

std::string_view meaningOf(ExitCode exitCode) {
    switch (exitCode) {
        case ExitCode::good:
            return "good: no step is worse than allowed";
        case ExitCode::badLog:
            return "a log can't be read, or needs more memory than it may have; the rest is shown";
        case ExitCode::usage:
            return "wrong usage";
        case ExitCode::badOutput:
            return "standard output or a file can't be written";
        case ExitCode::slower:
            return "a time stepped by more than --fail-above allows, until the newest version";
        case ExitCode::incomparable:
            return "there is nothing to judge, or --fail-unsure does not let that pass";
        case ExitCode::badPlugin:
        case ExitCode::badReport:
        case ExitCode::closedPipe:
            break;
    }
    return {};
}

HistoryOptions parseCommandLine(int argc, const char* const* argv) {
    const CommandLine line = parsedBy(optionRows(), command::OwnWord::none, argc, argv);
    HistoryOptions options;
    options.action = line.action();
    options.logs = command::filesAmong(line.remaining(), command::optionNames(optionRows()));
    if (options.action != command::Action::work) {  // a help that is shown whatever the values hold
        return options;
    }
    applyGiven(line, optionRows(), options);
    if (options.logs.empty() && options.filesFrom.empty()) {
        throw wrongUsage("no RUN given");
    }
    return options;
}

console::CommandManual historyManual() {
    return {.name = std::string(programName),
            .summary = "Shows when many versions got slower, by how much, and which layers did it.",
            .usages = {"[options] RUN...", "[options] --files-from FILE"},
            .options = manualOf(optionRows()),
            .tables = {},
            .paragraphs = {"A run is a log, or a file with its JSON as the viewer writes it. Give versions "
                           "in their order, oldest "
                           "first. A step is told once four versions stand on either side of it, and needs "
                           "some ten in all; for one "
                           "new version against the one before use zeb-profile-compare."},
            .exitCodes = {"Exit codes, the first that holds of 2, 1, 3, 7, 6", console::rowsOf(meaningOf)},
            .examples = {{"", "zeb-profile-history nightly-*.zlog"},
                         {"Several runs of each version, which their labels tell",
                          "zeb-profile-history --by build --files-from runs.txt"},
                         {"", "zeb-profile-history --by backend --order epoch fleet/*.json"},
                         {"A pipeline that fails once a step of more than 5 % is sure",
                          "zeb-profile-history --fail-above 5 nightly-*.zlog"}}};
}

}  // namespace zeb::history
