#include "ViewerOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "Failure.h"
#include "text/NearestName.h"

namespace zeb::viewer {

namespace {

constexpr int minLevel = -128;
constexpr int maxLevel = 127;

Failure usageFailure(const std::string& line) {
    return {ExitCode::usage, line + "; see " + std::string(programName) + " --help"};
}

Failure usageFailure(const std::string& argument, const std::string& cause) {
    return usageFailure(argument + ": " + cause);
}

// The parser's text names the option, and tells the rest in its own terms.
Failure usageFailure(const CLI::ArgumentMismatch& error) {
    const std::string text = error.what();
    return usageFailure(text.substr(0, text.find(':')), "to be given once, with a value");
}

profiling::VisibilityLevel parseLevel(const std::string& name, const std::string& text) {
    int level = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, level);
    if (error != std::errc() || rest != end || level < minLevel || level > maxLevel) {
        throw usageFailure(name, "\"" + text + "\" is no number from -128 to 127");
    }
    return profiling::VisibilityLevel{static_cast<std::int8_t>(level)};
}

MemorySize parseMaxMemory(const std::string& name, const std::string& text) {
    const auto size = parseMemorySize(text);
    if (!size) {
        throw usageFailure(name, "\"" + text + "\" is no size like 800M, 2G or 1000000");
    }
    return *size;
}

std::size_t parseRows(const std::string& name, const std::string& text) {
    std::size_t rows = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, rows);
    if (error != std::errc() || rest != end || rows == 0) {
        throw usageFailure(name, "\"" + text + "\" is no number of layers");
    }
    return rows;
}

double parseMs(const std::string& name, const std::string& text) {
    double ms = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, ms);
    if (error != std::errc() || rest != end || !(ms >= 0.0)) {
        throw usageFailure(name, "\"" + text + "\" is no number of milliseconds");
    }
    return ms;
}

struct LayerOrderName {
    std::string_view name;
    forms::LayerOrder order;
};
constexpr LayerOrderName layerOrders[] = {{"time", forms::LayerOrder::time},
                                          {"order", forms::LayerOrder::order},
                                          {"name", forms::LayerOrder::name}};

template <typename Rows>
std::vector<std::string> namesOf(const Rows& rows) {
    std::vector<std::string> names;
    for (const auto& row : rows) {
        names.emplace_back(row.name);
    }
    return names;
}

forms::LayerOrder parseOrder(const std::string& name, const std::string& text) {
    for (const auto& [orderName, order] : layerOrders) {
        if (text == orderName) {
            return order;
        }
    }
    std::vector<std::string> names = namesOf(layerOrders);
    const auto meant = profiling::nearestName(text, names);
    const std::string last = names.back();
    names.pop_back();
    const std::string cause = "\"" + text + "\" is none of " + profiling::namesInARow(names) + " and " + last;
    throw meant ? Failure(ExitCode::usage, name, cause + ", did you mean " + *meant + "?")
                : usageFailure(name, cause);
}

// What an option takes. Numbers are read last: help is shown whatever they hold.
enum class Takes : std::uint8_t { nothing, text, optionalText, number };

struct Given {
    std::string name;
    std::string value;
};

struct OptionRow {
    std::string name;
    Takes takes;
    std::string_view valueForm;  ///< as help shows it behind the name
    std::string help;
    std::string_view valueLeftOut;  ///< what an optional text is where it is not given
    void (*apply)(ViewerOptions& options, const Given& given);
};

std::string readerNames() {
    std::string names;
    for (const NamedReader& reader : namedReaders) {
        names.append(names.empty() ? "" : ", ").append(reader.name);
        names += &reader == &namedReaders[0] ? " (default)" : "";
    }
    return names;
}

// The values of an option that can be named.
std::vector<std::string> valuesOf(std::string_view option) {
    return option == "--reader" ? namesOf(namedReaders)
           : option == "--sort" ? namesOf(layerOrders)
                                : std::vector<std::string>();
}

// All options, in the order of the help.
const std::vector<OptionRow>& optionRows() {
    static const std::vector<OptionRow> rows = {
        {"--reader", Takes::text, " NAME|PATH",
         "Plug-in that reads the log: " + readerNames() +
             ", or the path of a\n"
             "library. A name is looked for beside this program, in its ../lib and\n"
             "where the loader looks.",
         "", [](auto& options, const auto& given) { options.reader = given.value; }},
        {"--csv", Takes::text, " FILE", "Append the CSV report to FILE.", "",
         [](auto& options, const auto& given) { options.csv = given.value; }},
        {"--raw", Takes::nothing, "",
         "Let control characters in names and texts of the log reach a terminal, where\n"
         "they show as \"?\" otherwise. A file or a pipe gets them in any case.",
         "", [](auto& options, const auto& /*given*/) { options.raw = true; }},
        {"--quiet", Takes::nothing, "", "Leave out the console report, and all progress.", "",
         [](auto& options, const auto& /*given*/) { options.quiet = true; }},
        {"--level", Takes::number, " N",
         "Visibility level, -128 to 127: messages of this level and above are\n"
         "left out. Default 127: everything below it.",
         "", [](auto& options, const auto& given) { options.level = parseLevel(given.name, given.value); }},
        {"--save-objects", Takes::optionalText, "[=DIR]",
         "Let the reader save object events to files in the directory DIR (default:\n"
         "the working directory). Files that are there are not overwritten, and a\n"
         "log whose object names lead out of the directory, or to the CSV file, is\n"
         "refused.",
         ".", [](auto& options, const auto& given) { options.objectDirectory = given.value; }},
        {"--trust-object-names", Takes::nothing, "", "Save objects under whatever names the log gives them.",
         "", [](auto& options, const auto& /*given*/) { options.trustObjectNames = true; }},
        {"--max-memory", Takes::number, " SIZE",
         "The most memory to use, in bytes or with K, M or G behind the number.\n"
         "Default: three quarters of the machine's, or of the control group's.",
         "",
         [](auto& options, const auto& given) {
             options.maxMemory = parseMaxMemory(given.name, given.value);
         }},
        {"--top", Takes::optionalText, "[=N]",
         "Behind the report, show where the time of an inference goes, the N costliest\n"
         "layers (default 10) and what stands out.",
         "10",
         [](auto& options, const auto& given) { options.topRows = parseRows(given.name, given.value); }},
        {"--sort", Takes::text, " ORDER", "Order of the layers of --top: time (default), order or name.", "",
         [](auto& options, const auto& given) { options.topOrder = parseOrder(given.name, given.value); }},
        {"--filter", Takes::text, " TEXT", "Show layers of --top whose name holds TEXT, in any case.", "",
         [](auto& options, const auto& given) { options.topFilter = given.value; }},
        {"--json", Takes::text, " FILE",
         "Write all figures of the run to FILE as JSON; \"-\" is standard output,\n"
         "without a report.",
         "", [](auto& options, const auto& given) { options.json = given.value; }},
        {"--trace", Takes::text, " FILE",
         "Write the log's timeline to FILE, for the trace viewers of browsers; \"-\" is\n"
         "standard output, without a report.",
         "", [](auto& options, const auto& given) { options.trace = given.value; }},
        {"--trace-from", Takes::number, " MS",
         "Leave out of the timeline what ends before MS, from its start.", "",
         [](auto& options, const auto& given) { options.traceFromMs = parseMs(given.name, given.value); }},
        {"--trace-to", Takes::number, " MS", "Leave out of the timeline what begins behind MS.", "",
         [](auto& options, const auto& given) { options.traceToMs = parseMs(given.name, given.value); }},
        {"--html", Takes::text, " FILE",
         "Write the run to FILE as a page for a browser; \"-\" as for --json.", "",
         [](auto& options, const auto& given) { options.html = given.value; }},
        {"--help", Takes::nothing, "", "Show this help and that of the reader.", "",
         [](auto& options, const auto& /*given*/) { options.action = Action::showHelp; }},
        {"--version", Takes::nothing, "", "Show the version.", "",
         [](auto& options, const auto& /*given*/) {
             options.action = options.action == Action::showHelp ? Action::showHelp : Action::showVersion;
         }},
    };
    return rows;
}

// The options as they are declared to the parser, and what it makes of them: text in all cases.
class CommandLine {
public:
    CommandLine() : slots_(optionRows().size()) {
        app_.set_help_flag();
        app_.allow_extras();
        app_.add_option(logName, log_);
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            declare(optionRows()[index], slots_[index]);
        }
    }

    void parse(int argc, const char* const* argv) { app_.parse(argc, argv); }

    // Puts the options into effect that take a number, or all others.
    void apply(ViewerOptions& options, bool numbers) const {
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            const OptionRow& row = optionRows()[index];
            const bool isGiven = row.takes == Takes::nothing ? slots_[index].isOn : app_.count(row.name) != 0;
            if (isGiven && (row.takes == Takes::number) == numbers) {
                checkValue(row, slots_[index].text);
                row.apply(options, {row.name, slots_[index].text});
            }
        }
    }

    // Options that make sense beside others only, or not beside them.
    void checkTogether(const ViewerOptions& options) const {
        for (const char* const name : {"--sort", "--filter"}) {
            if (app_.count(name) != 0 && !options.topRows) {
                throw usageFailure(name, "needs --top beside it");
            }
        }
        for (const char* const name : {"--trace-from", "--trace-to"}) {
            if (app_.count(name) != 0 && options.trace.empty()) {
                throw usageFailure(name, "needs --trace beside it");
            }
        }
        checkFormsApart(options);
        if (options.isFormAlone()) {
            checkFormAlone(options);
        }
    }

    // What is written goes to a place of its own.
    static void checkFormsApart(const ViewerOptions& options) {
        const Given files[] = {{"--csv", options.csv},
                               {"--json", options.json},
                               {"--trace", options.trace},
                               {"--html", options.html}};
        for (const Given* later = std::begin(files); later != std::end(files); ++later) {
            const Given* const other = std::find_if(
                std::begin(files), later, [&](const Given& file) { return file.value == later->value; });
            if (other != later && !later->value.empty()) {
                throw usageFailure(later->name,
                                   later->value == "-"
                                       ? "standard output takes one form, and " + other->name + " has it"
                                       : "goes to where " + other->name + " goes");
            }
        }
    }

    // What is on standard output has it for itself, and no reader is asked.
    void checkFormAlone(const ViewerOptions& options) const {
        for (const char* const name : {"--csv", "--top", "--save-objects"}) {
            if (app_.count(name) != 0) {
                throw usageFailure(name, "there is no report while a form goes to standard output");
            }
        }
        if (!options.readerArguments.empty()) {
            throw usageFailure(options.readerArguments.front(),
                               "no reader is asked while a form goes to standard output");
        }
    }

    [[nodiscard]] bool hasLog() const { return app_.count(logName) != 0; }
    [[nodiscard]] const std::string& log() const { return log_; }
    [[nodiscard]] std::vector<std::string> remaining() const { return app_.remaining(); }

private:
    static constexpr const char* logName = "LOG";

    struct Slot {
        std::string text;
        bool isOn = false;
    };

    void declare(const OptionRow& row, Slot& slot) {
        switch (row.takes) {
            case Takes::nothing:
                app_.add_flag(row.name, slot.isOn);
                break;
            case Takes::text:
            case Takes::number:
                app_.add_option(row.name, slot.text);
                break;
            case Takes::optionalText:
                app_.add_flag(row.name + "{" + std::string(row.valueLeftOut) + "}", slot.text)
                    ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
                break;
        }
    }

    static void checkValue(const OptionRow& row, const std::string& value) {
        if (row.takes == Takes::text && value.empty()) {
            throw usageFailure(row.name, "needs a value");
        }
        if (row.takes == Takes::text && value.starts_with("--")) {
            throw usageFailure(row.name, "needs a value, and " + value + " is an option");
        }
    }

    CLI::App app_;
    std::string log_;
    std::vector<Slot> slots_;
};

// The parser takes the word behind an option that ends in its "=" for its value.
void refuseEmptyValues(int argc, const char* const* argv) {
    for (int index = 1; index < argc && std::string_view(argv[index]) != "--"; ++index) {
        for (const OptionRow& row : optionRows()) {
            if (row.takes != Takes::nothing && argv[index] == row.name + "=") {
                throw usageFailure(row.name, "needs a value");
            }
        }
    }
}

}  // namespace

ViewerOptions parseCommandLine(int argc, const char* const* argv) {
    refuseEmptyValues(argc, argv);
    CommandLine line;
    try {
        line.parse(argc, argv);
    } catch (const CLI::ArgumentMismatch& error) {
        throw usageFailure(error);
    } catch (const CLI::ParseError& error) {
        throw usageFailure(error.what());
    }
    ViewerOptions options;
    options.log = line.log() == "-" ? "/dev/stdin" : line.log();
    options.readerArguments = line.remaining();
    line.apply(options, false);
    if (options.action == Action::report) {
        line.apply(options, true);
        if (!line.hasLog()) {
            throw usageFailure("no LOG given");
        }
        if (options.csv == "-") {
            throw usageFailure("--csv", "standard output has the report, so the CSV report can't go there");
        }
        line.checkTogether(options);
    }
    return options;
}

std::vector<std::string> viewerOptionNames() {
    return namesOf(optionRows());
}

profiling::CommandManual viewerManual() {
    profiling::CommandManual manual{
        .name = std::string(programName),
        .summary = "Reads a profiling log and prints the report of its run.",
        .usages = {"[options] LOG [reader options]"},
        .options = {},
        .tables = {},
        .paragraphs =
            {"Options that the viewer doesn't know go to the reader. Give them behind LOG, and their "
             "values as --name=value or as the words behind the name. A \"--\" ends the options: what "
             "follows it are file names.",
             "LOG may also be a pipe, and \"-\" is standard input."},
        .exitCodes = {"Exit codes", profiling::rowsOf(meaningOf)},
        .examples = {{"", "zeb-profile-viewer run.log"},
                     {"", "zeb-profile-viewer --csv runs.csv run.log --internal"},
                     {"", "zeb-profile-viewer --save-objects=objects run.log"},
                     {"", "zeb-profile-viewer --reader generic --level 2 run.log"},
                     {"", "zeb-profile-viewer --top=20 --filter conv run.log"},
                     {"", "zeb-profile-viewer --trace run.json run.log"},
                     {"", "zeb-profile-viewer --html run.html run.log"},
                     {"", "zeb-profile-viewer --json - run.log | jq .graphs[0].spread"},
                     {"", "zcat run.log.gz | zeb-profile-viewer -"}}};
    for (const OptionRow& row : optionRows()) {
        manual.options.push_back({row.name, std::string(row.valueForm), row.help, valuesOf(row.name)});
    }
    return manual;
}

}  // namespace zeb::viewer
