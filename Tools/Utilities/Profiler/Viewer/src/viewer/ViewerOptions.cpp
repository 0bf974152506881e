#include "viewer/ViewerOptions.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "command/CommandLine.h"
#include "command/Forms.h"
#include "text/NearestName.h"
#include "viewer/RunForms.h"

namespace zeb::viewer {

namespace {

using command::CommandLine;
using command::ExitCode;
using command::Failure;
using command::Given;
using command::Takes;
using command::wrongUsage;

constexpr int minLevel = -128;
constexpr int maxLevel = 127;

profiling::VisibilityLevel levelOf(const Given& given) {
    const auto level = command::numberOf<int>(given.value);
    if (!level || *level < minLevel || *level > maxLevel) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no number from -128 to 127");
    }
    return profiling::VisibilityLevel{static_cast<std::int8_t>(*level)};
}

std::size_t rowsOf(const Given& given) {
    const auto rows = command::numberOf<std::size_t>(given.value);
    if (!rows || *rows == 0) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no number of layers");
    }
    return *rows;
}

double msOf(const Given& given) {
    const auto ms = command::numberOf<double>(given.value);
    if (!ms || !(*ms >= 0.0)) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no number of milliseconds");
    }
    return *ms;
}

struct LayerOrderName {
    std::string_view name;
    forms::LayerOrder order;
};
constexpr LayerOrderName layerOrders[] = {{"time", forms::LayerOrder::time},
                                          {"order", forms::LayerOrder::order},
                                          {"name", forms::LayerOrder::name}};

forms::LayerOrder orderOf(const Given& given) {
    for (const auto& [name, order] : layerOrders) {
        if (given.value == name) {
            return order;
        }
    }
    throw noneOf(given, command::namesOf(layerOrders));
}

std::string csvOf(const Given& given) {
    if (given.value == "-") {
        throw wrongUsage(given.name, "standard output has the report, so the CSV report can't go there");
    }
    return given.value;
}

std::string readerNames() {
    std::string names;
    for (const NamedReader& reader : namedReaders) {
        names.append(names.empty() ? "" : ", ").append(reader.name);
        names += &reader == &namedReaders[0] ? " (default)" : "";
    }
    return names;
}

using OptionRows = std::vector<command::OptionRow<ViewerOptions>>;

OptionRows ownRows() {
    return {
        {{"--reader", " NAME|PATH",
          "Plug-in that reads the log: " + readerNames() +
              ", or the path of a library. A name is looked for beside this program, in its ../lib and where "
              "the loader looks.",
          command::namesOf(namedReaders)},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.reader = given.value; }},
        {{"--csv", " FILE", "Append the CSV report to FILE."},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.csv = csvOf(given); },
         {},
         {.needsText = true, .writesFile = true}},
        {{"--raw", "",
          "Let control characters in names and texts of the log reach a terminal, where they show as \"?\" "
          "otherwise. A file or a pipe gets them in any case."},
         Takes::nothing,
         [](ViewerOptions& options, const Given& /*given*/) { options.raw = true; }},
        {{"--quiet", "",
          "Leave out the console report, and all progress. Without --csv and --save-objects the report is "
          "not "
          "made at all."},
         Takes::nothing,
         [](ViewerOptions& options, const Given& /*given*/) { options.quiet = true; }},
        {{"--level", " N",
          "Visibility level, -128 to 127: messages of this level and above are left out. Default 127: "
          "everything below it."},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.level = levelOf(given); }},
        {{"--save-objects", "[=DIR]",
          "Let the reader save object events to files in the directory DIR (default: the working directory). "
          "Files that are there are not overwritten, and a log whose object names lead out of the directory, "
          "or to another file that is to be written, is refused."},
         Takes::optionalValue,
         [](ViewerOptions& options, const Given& given) { options.objectDirectory = given.value; },
         ".",
         {.needsText = true}},
        {{"--trust-object-names", "", "Save objects under whatever names the log gives them."},
         Takes::nothing,
         [](ViewerOptions& options, const Given& /*given*/) { options.trustObjectNames = true; }},
        {command::maxMemoryOption(), Takes::value,
         [](ViewerOptions& options, const Given& given) { options.maxMemory = command::maxMemoryOf(given); }},
        {{"--top", "[=N]",
          "Behind the report, show where the time of an inference goes, the N costliest layers (default 10) "
          "and what stands out."},
         Takes::optionalValue,
         [](ViewerOptions& options, const Given& given) { options.topRows = rowsOf(given); },
         "10",
         {.needsText = true}},
        {{"--sort", " ORDER", "Order of the layers of --top: time (default), order or name.",
          command::namesOf(layerOrders)},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.topOrder = orderOf(given); },
         {},
         {.needs = "--top"}},
        {{"--filter", " TEXT", "Show layers of --top whose name holds TEXT, in any case."},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.topFilter = given.value; },
         {},
         {.needs = "--top"}},
    };
}

OptionRows rowsOfForms() {
    return {
        {{"--trace-from", " MS", "Leave out of the timeline what ends before MS, from its start."},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.traceFromMs = msOf(given); },
         {},
         {.needs = "--trace"}},
        {{"--trace-to", " MS", "Leave out of the timeline what begins behind MS."},
         Takes::value,
         [](ViewerOptions& options, const Given& given) { options.traceToMs = msOf(given); },
         {},
         {.needs = "--trace"}},
        {{"--trace-plain", "",
          "Write the timeline without arguments of slices, for viewers that take them for a part of the "
          "name, as Speedscope does, and then add up nothing."},
         Takes::nothing,
         [](ViewerOptions& options, const Given& /*given*/) { options.tracePlain = true; },
         {},
         {.needs = "--trace"}},
        {command::labelOption("the run, for its JSON, its page and its Markdown"), Takes::valueEachTime,
         [](ViewerOptions& options, const Given& given) { command::addLabelOf(given, options.labels); }},
    };
}

// All options, in the order of the help.
const OptionRows& optionRows() {
    static const OptionRows rows = [] {
        OptionRows all = ownRows();
        const auto takeForm = [](ViewerOptions& options, const Given& given) {
            options.formFiles.push_back(given);
        };
        for (const OptionRows& more :
             {command::formRows<ViewerOptions>(runForms(), "a report", takeForm), rowsOfForms()}) {
            all.insert(all.end(), more.begin(), more.end());
        }
        return all;
    }();
    return rows;
}

// What is not the viewer's may be an option of the reader's, unless it is all but one of the viewer's.
Failure withoutLog(const command::Words& remaining) {
    for (const std::string& word : remaining) {
        const std::string name = word.substr(0, word.find('='));
        if (word.starts_with('-') && profiling::nearestName(name, viewerOptionNames())) {
            return command::unknownOption(name, viewerOptionNames());
        }
    }
    return wrongUsage("no LOG given");
}

// "--top 5 run.log" makes a LOG of the 5.
void refuseValueAsLog(const CommandLine& line) {
    const std::string& word = *line.word();
    const auto& option = line.optionBeforeWord();
    std::error_code error;
    const bool isLog =
        word == "-" || (std::filesystem::exists(word, error) && !std::filesystem::is_directory(word, error));
    const command::Words& rest = line.remaining();
    const bool isLogBehind = !rest.empty() && !rest.front().starts_with('-');
    if (option && !isLog && (isLogBehind || command::numberOf<std::size_t>(word))) {
        throw wrongUsage(*option, "its value goes behind a \"=\": " + *option + "=" + word);
    }
}

}  // namespace

std::string_view meaningOf(ExitCode exitCode) {
    switch (exitCode) {
        case ExitCode::good:
            return "good";
        case ExitCode::badLog:
            return "the log can't be read, needs more memory than it may have (--max-memory), or has an "
                   "object that would be saved outside of the directory for objects, or as another file to "
                   "write";
        case ExitCode::usage:
            return "wrong usage, or the reader has shown its help";
        case ExitCode::badOutput:
            return "a file, an object or standard output can't be written; a file is as it was";
        case ExitCode::badPlugin:
            return "the reader plug-in can't be loaded";
        case ExitCode::badReport:
            return "the report failed on a value in the log";
        case ExitCode::closedPipe:
            return "nobody reads standard output any more; files are written all the same";
        case ExitCode::slower:
        case ExitCode::incomparable:
            break;
    }
    return {};
}

ViewerOptions parseCommandLine(int argc, const char* const* argv) {
    const CommandLine line = parsedBy(optionRows(), command::OwnWord::one, argc, argv);
    ViewerOptions options;
    options.action = line.action();
    if (options.action != command::Action::work) {  // a help that is shown whatever the values hold
        if (line.isGiven("--reader")) {
            options.reader = line.valuesOf("--reader").front();
        }
        return options;
    }
    applyGiven(line, optionRows(), options);
    if (!line.word()) {
        throw withoutLog(line.remaining());
    }
    refuseValueAsLog(line);
    if (!options.labels.empty() &&
        std::ranges::all_of(options.formFiles, [](const Given& form) { return form.name == "--trace"; })) {
        throw wrongUsage("--label", "needs --json, --html or --markdown beside it");
    }
    options.log = *line.word();
    options.logPath = options.log;
    options.readerArguments = line.remaining();
    if (isFormAlone(options.formFiles) && !options.readerArguments.empty()) {
        throw wrongUsage(options.readerArguments.front(),
                         "no reader is asked while a form goes to standard output");
    }
    return options;
}

command::Words viewerOptionNames() {
    return optionNames(optionRows());
}

console::CommandManual viewerManual() {
    return {.name = std::string(programName),
            .summary = "Reads a profiling log and prints the report of its run.",
            .usages = {"[options] LOG [reader options]"},
            .options = manualOf(optionRows(), "Show this help and that of the reader."),
            .tables = {},
            .paragraphs = {"Options that the viewer doesn't know go to the reader. Give them behind LOG, and "
                           "their values as --name=value or as the words behind the name. A \"--\" ends the "
                           "options: what follows it are file names.",
                           "LOG may also be a pipe, and \"-\" is standard input."},
            .exitCodes = {"Exit codes", console::rowsOf(meaningOf)},
            .examples = {{"", "zeb-profile-viewer run.log"},
                         {"", "zeb-profile-viewer --csv runs.csv run.log --internal"},
                         {"", "zeb-profile-viewer --save-objects=objects run.log"},
                         {"", "zeb-profile-viewer --reader generic --level 2 run.log"},
                         {"", "zeb-profile-viewer --top=20 --filter conv run.log"},
                         {"", "zeb-profile-viewer --trace run.json run.log"},
                         {"", "zeb-profile-viewer --html run.html run.log"},
                         {"", "zeb-profile-viewer --json - run.log | jq .graphs[0].spread"},
                         {"", "zcat run.log.gz | zeb-profile-viewer -"}}};
}

}  // namespace zeb::viewer
