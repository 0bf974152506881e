#include "CompareOptions.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstddef>
#include <string_view>

#include "CompareFailure.h"
#include "text/NearestName.h"

namespace zeb::compare {

namespace {

using Words = std::vector<std::string>;

CompareFailure usageFailure(const std::string& line) {
    return {ExitCode::usage, line + "; see " + std::string(programName) + " --help"};
}

CompareFailure usageFailure(const std::string& argument, const std::string& cause) {
    return usageFailure(argument + ": " + cause);
}

double parseNumber(const std::string& name, const std::string& text, std::string_view form) {
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (error != std::errc() || rest != end || !(number >= 0.0) || number > 1e12) {
        throw usageFailure(name, "\"" + text + "\" is no " + std::string(form));
    }
    return number;
}

double parsePercent(const std::string& name, const std::string& text) {
    const bool hasSign = text.ends_with('%');
    try {
        return parseNumber(name, text.substr(0, text.size() - (hasSign ? 1 : 0)), "") / 100.0;
    } catch (const CompareFailure&) {
        throw usageFailure(name, "\"" + text + "\" is no per cent like 5, 0.5 or 5%");
    }
}

analysis::Rename parseRename(const std::string& name, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        throw usageFailure(name, "\"" + text + "\" is no OLD=NEW");
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

viewer::MemorySize parseMaxMemory(const std::string& name, const std::string& text) {
    const auto size = viewer::parseMemorySize(text);
    if (!size) {
        throw usageFailure(name, "\"" + text + "\" is no size like 800M, 2G or 1000000");
    }
    return *size;
}

struct GateName {
    std::string_view name;
    analysis::Total total;
};
constexpr GateName gateNames[] = {{"marlix", analysis::Total::marlix},
                                  {"accelerator", analysis::Total::accelerator},
                                  {"layers", analysis::Total::layers}};

Words namesOfGates() {
    Words names;
    for (const GateName& gate : gateNames) {
        names.emplace_back(gate.name);
    }
    return names;
}

analysis::Total parseGate(const std::string& name, const std::string& text) {
    for (const GateName& gate : gateNames) {
        if (gate.name == text) {
            return gate.total;
        }
    }
    const std::string cause = "\"" + text + "\" is none of " + profiling::namesInARow(namesOfGates());
    const auto meant = profiling::nearestName(text, namesOfGates());
    throw meant ? CompareFailure(ExitCode::usage, name + ": " + cause + ", did you mean " + *meant + "?")
                : usageFailure(name, cause);
}

enum class Takes : std::uint8_t { nothing, one, several };

// What is given, before the gate is put together: its options make none unless a growth is forbidden.
struct GivenOptions {
    CompareOptions options;
    analysis::Gate gate;
    bool isGated = false;
};

struct OptionRow {
    std::string name;
    Takes takes;
    std::string_view valueForm;  ///< as help shows it behind the name
    bool needsGate;              ///< would change nothing without --fail-above
    std::string help;
    void (*apply)(GivenOptions& given, const std::string& name, const std::string& value);
};

constexpr const char* baseName = "--base";
constexpr const char* newName = "--new";
constexpr const char* failName = "--fail-above";

// All options, in the order of the help. One that takes several values is applied to each.
const std::vector<OptionRow>& optionRows() {
    static const std::vector<OptionRow> rows = {
        {baseName, Takes::several, " LOG...", false, "The logs of the base.",
         [](auto& given, const auto& /*name*/, const auto& value) { given.options.base.push_back(value); }},
        {newName, Takes::several, " LOG...", false, "The logs of the new version.",
         [](auto& given, const auto& /*name*/, const auto& value) {
             given.options.changed.push_back(value);
         }},
        {"--rename", Takes::several, " OLD=NEW", false,
         "The ZEB layer OLD of the base is NEW in the new version. May be given again.",
         [](auto& given, const auto& name, const auto& value) {
             given.options.renames.push_back(parseRename(name, value));
         }},
        {"--hide-below", Takes::one, " PERCENT", false,
         "Only count layers whose change is a smaller share of the base's layer sum.\n"
         "Default 0.5.",
         [](auto& given, const auto& name, const auto& value) {
             given.options.hideBelow = parsePercent(name, value);
         }},
        {failName, Takes::one, " PERCENT", false,
         "Fail when a graph's time grew by more. With several logs a side a growth\n"
         "counts only where it is sure; with one a side the change alone decides.",
         [](auto& given, const auto& name, const auto& value) {
             given.isGated = true;
             given.gate.maxGrowth = parsePercent(name, value);
         }},
        {"--gate", Takes::one, " TIME", true,
         "The time to judge: " + profiling::namesInARow(namesOfGates()) + ". Default marlix.",
         [](auto& given, const auto& name, const auto& value) { given.gate.total = parseGate(name, value); }},
        {"--min-change-us", Takes::one, " N", true, "Let a growth by less than N microseconds pass.",
         [](auto& given, const auto& name, const auto& value) {
             given.gate.minChangeUs = parseNumber(name, value, "number of microseconds");
         }},
        {"--json", Takes::one, " FILE", false,
         "Write the comparison to FILE as JSON; \"-\" is standard output, without the\ntext.",
         [](auto& given, const auto& /*name*/, const auto& value) { given.options.json = value; }},
        {"--max-memory", Takes::one, " SIZE", false,
         "The most memory to use, in bytes or with K, M or G behind the number.\n"
         "Default: three quarters of the machine's, or of the control group's.",
         [](auto& given, const auto& name, const auto& value) {
             given.options.maxMemory = parseMaxMemory(name, value);
         }},
        {"--help", Takes::nothing, "", false, "Show this help.",
         [](auto& given, const auto& /*name*/, const auto& /*value*/) {
             given.options.action = Action::showHelp;
         }},
        {"--version", Takes::nothing, "", false, "Show the version.",
         [](auto& given, const auto& /*name*/, const auto& /*value*/) {
             given.options.action =
                 given.options.action == Action::showHelp ? Action::showHelp : Action::showVersion;
         }},
    };
    return rows;
}

// The options as they are declared to the parser. Values stay texts, so that every complaint is worded here.
class CommandLine {
public:
    CommandLine() : slots_(optionRows().size()) {
        app_.set_help_flag();
        app_.allow_extras();
        for (std::size_t index = 0; index < slots_.size(); ++index) {
            const OptionRow& row = optionRows()[index];
            Slot& slot = slots_[index];
            switch (row.takes) {
                case Takes::nothing:
                    app_.add_flag(row.name, slot.isOn);
                    break;
                case Takes::one:
                    app_.add_option(row.name, slot.text);
                    break;
                case Takes::several:
                    app_.add_option(row.name, slot.texts)->allow_extra_args(row.name != "--rename");
                    break;
            }
        }
    }

    void parse(int argc, const char* const* argv) { app_.parse(argc, argv); }

    [[nodiscard]] bool isGiven(const OptionRow& row) const {
        const Slot& slot = slots_[static_cast<std::size_t>(&row - optionRows().data())];
        return row.takes == Takes::nothing ? slot.isOn : app_.count(row.name) != 0;
    }

    // The values of an option, an empty text for one that takes none.
    [[nodiscard]] Words valuesOf(const OptionRow& row) const {
        const Slot& slot = slots_[static_cast<std::size_t>(&row - optionRows().data())];
        return row.takes == Takes::several ? slot.texts : Words{slot.text};
    }

    [[nodiscard]] Words remaining() const { return app_.remaining(); }

private:
    struct Slot {
        std::string text;
        Words texts;
        bool isOn = false;
    };

    CLI::App app_;
    std::vector<Slot> slots_;
};

void checkValue(const OptionRow& row, const std::string& value) {
    if (row.takes != Takes::nothing && value.empty()) {
        throw usageFailure(row.name, "needs a value");
    }
    if (value.starts_with("--")) {
        throw usageFailure(row.name, "needs a value, and " + value + " is an option");
    }
}

Words optionNames() {
    Words names;
    for (const OptionRow& row : optionRows()) {
        names.push_back(row.name);
    }
    return names;
}

// The words that belong to no option: BASE and NEW, and what is left of unknown options. Behind a "--" all
// are files.
Words filesAmong(const Words& words) {
    Words files;
    bool areAllFiles = false;
    for (const std::string& word : words) {
        if (!areAllFiles && word == "--") {
            areAllFiles = true;
        } else if (!areAllFiles && word.size() > 1 && word.starts_with('-')) {
            const std::string name = word.substr(0, word.find('='));
            const auto meant = profiling::nearestName(name, optionNames());
            throw usageFailure(name, "unknown option" + (meant ? ", did you mean " + *meant + "?" : ""));
        } else {
            files.push_back(word);
        }
    }
    return files;
}

void takeFiles(CompareOptions& options, const Words& files) {
    const bool areNamed = !options.base.empty() || !options.changed.empty();
    if (areNamed && !files.empty()) {
        throw usageFailure(files.front(),
                           "a word too many beside " + std::string(baseName) + " and " + newName);
    }
    if (!areNamed && files.size() == 2) {
        options.base = {files[0]};
        options.changed = {files[1]};
    }
    if (files.size() > 2) {
        throw usageFailure(
            files[2], "a word too many; several logs go behind " + std::string(baseName) + " and " + newName);
    }
    if (options.base.empty() || options.changed.empty()) {
        throw usageFailure(options.base.empty() && files.empty() ? "no BASE given" : "no NEW given");
    }
}

}  // namespace

std::string_view meaningOf(ExitCode exitCode) {
    switch (exitCode) {
        case ExitCode::good:
            return "good: compared, and nothing is slower than allowed";
        case ExitCode::badLog:
            return "a log can't be read, or needs more memory than it may have";
        case ExitCode::usage:
            return "wrong usage";
        case ExitCode::badOutput:
            return "standard output or the JSON can't be written";
        case ExitCode::slower:
            return "a time grew by more than --fail-above allows";
        case ExitCode::incomparable:
            return "--fail-above has nothing that it can compare";
    }
    return {};
}

CompareOptions parseCommandLine(int argc, const char* const* argv) {
    CommandLine line;
    try {
        line.parse(argc, argv);
    } catch (const CLI::ArgumentMismatch& error) {
        // The parser's text names the option, and tells the rest in its own terms.
        const std::string text = error.what();
        throw usageFailure(text.substr(0, text.find(':')), "to be given once, with a value");
    } catch (const CLI::ParseError& error) {
        throw usageFailure(error.what());
    }
    GivenOptions given;
    const Words files = filesAmong(line.remaining());
    for (const Action wanted : {Action::showHelp, Action::compare}) {  // help is shown whatever values hold
        for (const OptionRow& row : optionRows()) {
            if (line.isGiven(row) && (row.takes == Takes::nothing) == (wanted == Action::showHelp)) {
                for (const std::string& value : line.valuesOf(row)) {
                    checkValue(row, value);
                    row.apply(given, row.name, value);
                }
            }
        }
        if (given.options.action != Action::compare) {
            return given.options;
        }
    }
    for (const OptionRow& row : optionRows()) {
        if (row.needsGate && line.isGiven(row) && !given.isGated) {
            throw usageFailure(row.name, "takes " + std::string(failName));
        }
    }
    if (given.isGated) {
        given.options.gate = given.gate;
    }
    takeFiles(given.options, files);
    return given.options;
}

profiling::CommandManual compareManual() {
    profiling::CommandManual manual{
        .name = std::string(programName),
        .summary = "Compares two versions by the profiling logs of their runs.",
        .usages = {"[options] BASE NEW", "[options] --base BASE... --new NEW..."},
        .options = {},
        .tables = {},
        .paragraphs =
            {"A log may also be a file with the JSON of a run, as the viewer writes it. Give four logs or "
             "more of each version, taken in turns: with fewer a change can't be told from chance."},
        .exitCodes = {"Exit codes, the first that holds of 2, 1, 3, 7, 6", profiling::rowsOf(meaningOf)},
        .examples = {{"", "zeb-profile-compare old.zlog new.zlog"},
                     {"", "zeb-profile-compare --base old-*.zlog --new new-*.zlog"},
                     {"", "zeb-profile-compare --rename conv1=stem --hide-below 0 old.zlog new.zlog"},
                     {"A build pipeline that fails when an inference gets slower by more than 5 %",
                      "zeb-profile-compare --fail-above 5 --base main-*.zlog --new change-*.zlog"}}};
    for (const OptionRow& row : optionRows()) {
        manual.options.push_back({row.name, std::string(row.valueForm), row.help,
                                  row.name == "--gate" ? namesOfGates() : Words()});
    }
    return manual;
}

}  // namespace zeb::compare
