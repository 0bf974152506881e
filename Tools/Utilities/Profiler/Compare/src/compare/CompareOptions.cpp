#include "compare/CompareOptions.h"

#include <charconv>
#include <cstddef>
#include <string_view>

#include "command/CommandLine.h"
#include "command/Forms.h"
#include "compare/ComparisonForms.h"

namespace zeb::compare {

namespace {

using command::CommandLine;
using command::ExitCode;
using command::Given;
using command::Takes;
using command::Words;
using command::wrongUsage;

// An amount in fixed notation that is not negative.
std::optional<double> amountOf(std::string_view text) {
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    const bool isGood = error == std::errc() && rest == end && number >= 0.0 && number <= 1e12;
    return isGood ? std::optional(number) : std::nullopt;
}

std::size_t rowsOf(const Given& given) {
    constexpr std::size_t maxRows = 1'000'000;
    const auto rows = command::numberOf<std::size_t>(given.value);
    if (!rows || *rows == 0 || *rows > maxRows) {
        throw wrongUsage(given.name,
                         "\"" + given.value + "\" is no number from 1 to " + std::to_string(maxRows));
    }
    return *rows;
}

double usOf(const Given& given) {
    const auto us = amountOf(given.value);
    if (!us) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no number of microseconds");
    }
    return *us;
}

analysis::Rename renameOf(const Given& given) {
    const std::size_t equals = given.value.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == given.value.size()) {
        throw wrongUsage(given.name, "\"" + given.value + "\" is no OLD=NEW");
    }
    return {given.value.substr(0, equals), given.value.substr(equals + 1)};
}

struct GateName {
    std::string_view name;
    analysis::Total total;
};
constexpr GateName gateNames[] = {{"marlix", analysis::Total::marlix},
                                  {"accelerator", analysis::Total::accelerator},
                                  {"layers", analysis::Total::layers}};

analysis::Total totalOf(const Given& given) {
    for (const GateName& gate : gateNames) {
        if (gate.name == given.value) {
            return gate.total;
        }
    }
    throw noneOf(given, command::namesOf(gateNames));
}

constexpr const char* baseName = "--base";
constexpr const char* newName = "--new";
constexpr const char* failName = "--fail-above";
constexpr const char* failLayerName = "--fail-layer-above";
constexpr const char* minChangeName = "--min-change-us";
constexpr const char* failUnsureName = "--fail-unsure";
constexpr const char* pairedName = "--paired";

// What is given, before the gate is put together: its options make none unless a growth is forbidden.
struct GivenOptions {
    CompareOptions options;
    analysis::Gate gate;
};

using OptionRows = std::vector<command::OptionRow<GivenOptions>>;

OptionRows ownRows() {
    return {
        {{baseName, " LOG...", "The logs of the base."},
         Takes::values,
         [](auto& all, const auto& given) { all.options.base.push_back(given.value); }},
        {{newName, " LOG...", "The logs of the new version."},
         Takes::values,
         [](auto& all, const auto& given) { all.options.changed.push_back(given.value); }},
        {{"--rename", " OLD=NEW",
          "The ZEB layer OLD of the base is NEW in the new version. May be given again."},
         Takes::valueEachTime,
         [](auto& all, const auto& given) { all.options.settings.renames.push_back(renameOf(given)); }},
        {{pairedName, "",
          "Take the first log of the base with the first new one, and so on: for logs that were taken in "
          "turns, at least " +
              std::to_string(analysis::minPairs) + " of each, better eight."},
         Takes::nothing,
         [](auto& all, const auto&) { all.options.settings.isPaired = true; }},
        {{"--hide-below", " PERCENT",
          "Only count layers whose change is a smaller share of the base's layer sum. Default 0.5."},
         Takes::value,
         [](auto& all, const auto& given) { all.options.hideBelow = command::shareOfPercent(given); }},
        {{"--rows", " N", "Rows of a table of layers in the text, at most; the rest is counted. Default 20."},
         Takes::value,
         [](auto& all, const auto& given) { all.options.rows = rowsOf(given); }},
        {{failName, " PERCENT",
          "Fail when a graph's time grew by more. With several logs a side a growth counts only where it is "
          "sure; with one a side the change alone decides. What can't be told passes, with a word."},
         Takes::value,
         [](auto& all, const auto& given) { all.gate.maxGrowth = command::shareOfPercent(given); }},
        {{failLayerName, " PERCENT",
          "Fail when a layer surely grew by more, beyond what all layers of its graph share."},
         Takes::value,
         [](auto& all, const auto& given) { all.gate.maxLayerGrowth = command::shareOfPercent(given); }},
        {{failUnsureName, "",
          "Fail also where it can't be told whether a time grew by more than is allowed."},
         Takes::nothing,
         [](auto& all, const auto&) { all.gate.failsUnsure = true; },
         {},
         {.needs = failName}},
        {{"--gate", " TIME",
          "The time to judge: " + console::namesInARow(command::namesOf(gateNames)) + ". Default marlix.",
          command::namesOf(gateNames)},
         Takes::value,
         [](auto& all, const auto& given) { all.gate.total = totalOf(given); },
         {},
         {.needs = failName}},
        {{minChangeName, " N",
          "Let a growth by less than N microseconds pass, of a time and of a layer. Needs a limit beside "
          "it."},
         Takes::value,
         [](auto& all, const auto& given) { all.gate.minChangeUs = usOf(given); }},
        {command::maxMemoryOption(), Takes::value,
         [](auto& all, const auto& given) { all.options.maxMemory = command::maxMemoryOf(given); }},
    };
}

// All options, in the order of the help.
const OptionRows& optionRows() {
    static const OptionRows rows = [] {
        OptionRows all = ownRows();
        const OptionRows forms = command::formRows<GivenOptions>(
            comparisonForms(), "the text",
            [](GivenOptions& given, const Given& form) { given.options.formFiles.push_back(form); });
        all.insert(all.end(), forms.begin(), forms.end());
        return all;
    }();
    return rows;
}

void takeFiles(CompareOptions& options, const Words& files) {
    const bool areNamed = !options.base.empty() || !options.changed.empty();
    if (areNamed && !files.empty()) {
        throw wrongUsage(files.front(),
                         "a word too many beside " + std::string(baseName) + " and " + newName);
    }
    if (!areNamed && files.size() == 2) {
        options.base = {files[0]};
        options.changed = {files[1]};
    }
    if (files.size() > 2) {
        throw wrongUsage(
            files[2], "a word too many; several logs go behind " + std::string(baseName) + " and " + newName);
    }
    if (options.base.empty() || options.changed.empty()) {
        throw wrongUsage(options.base.empty() && files.empty() ? "no BASE given" : "no NEW given");
    }
}

void checkGate(const CommandLine& line, const analysis::Gate& gate) {
    if (line.isGiven(minChangeName) && !line.isGiven(failName) && !line.isGiven(failLayerName)) {
        throw wrongUsage(minChangeName,
                         "needs " + std::string(failName) + " or " + failLayerName + " beside it");
    }
    if (gate.failsUnsure && gate.maxGrowth == 0.0) {
        throw wrongUsage(failUnsureName, "needs a limit above 0, since no change is known to be 0");
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
            return "standard output or a file can't be written";
        case ExitCode::slower:
            return "a time or a layer grew by more than is allowed";
        case ExitCode::incomparable:
            return "a gate has nothing that it can compare, or can't tell and has --fail-unsure";
        case ExitCode::badPlugin:
        case ExitCode::badReport:
        case ExitCode::closedPipe:
            break;
    }
    return {};
}

CompareOptions parseCommandLine(int argc, const char* const* argv) {
    const CommandLine line = parsedBy(optionRows(), command::OwnWord::none, argc, argv);
    GivenOptions all;
    all.options.action = line.action();
    const Words files = command::filesAmong(line.remaining(), command::optionNames(optionRows()));
    if (all.options.action != command::Action::work) {  // a help that is shown whatever the values hold
        return all.options;
    }
    applyGiven(line, optionRows(), all);
    checkGate(line, all.gate);
    if (all.gate.maxGrowth || all.gate.maxLayerGrowth) {
        all.options.gate = all.gate;
    }
    takeFiles(all.options, files);
    if (all.options.settings.isPaired && all.options.base.size() != all.options.changed.size()) {
        throw wrongUsage(pairedName, "takes as many logs of the base as new ones, and there are " +
                                         std::to_string(all.options.base.size()) + " and " +
                                         std::to_string(all.options.changed.size()));
    }
    return all.options;
}

console::CommandManual compareManual() {
    return {
        .name = std::string(programName),
        .summary = "Compares two versions by the profiling logs of their runs.",
        .usages = {"[options] BASE NEW", "[options] --base BASE... --new NEW..."},
        .options = manualOf(optionRows()),
        .tables = {},
        .paragraphs =
            {"A log may also be a file with the JSON of a run, as the viewer writes it. Give four logs or "
             "more of each version, taken in turns: with fewer a change can't be told from chance."},
        .exitCodes = {"Exit codes, the first that holds of 2, 1, 3, 7, 6", console::rowsOf(meaningOf)},
        .examples = {{"", "zeb-profile-compare old.zlog new.zlog"},
                     {"", "zeb-profile-compare --base old-*.zlog --new new-*.zlog"},
                     {"", "zeb-profile-compare --rename conv1=stem --hide-below 0 old.zlog new.zlog"},
                     {"", "zeb-profile-compare --html changes.html --base old-*.zlog --new new-*.zlog"},
                     {"Logs that were taken in turns: old-1, new-1, old-2 and so on",
                      "zeb-profile-compare --paired --base old-*.zlog --new new-*.zlog"},
                     {"A build pipeline that fails when an inference gets slower by more than 5 %",
                      "zeb-profile-compare --fail-above 5 --base main-*.zlog --new change-*.zlog"}}};
}

}  // namespace zeb::compare
