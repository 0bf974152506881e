#include "history/ShowHistory.h"

#include <unistd.h>

#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "analysis/runs/History.h"
#include "command/StandardOutput.h"
#include "command/runs/InputList.h"
#include "command/runs/LoadRun.h"
#include "console/ConsoleStyle.h"
#include "forms/text/HistoryText.h"
#include "history/HistoryForms.h"
#include "history/HistoryOptions.h"
#include "text/BuildText.h"
#include "zeb/profiling/Version.h"

namespace zeb::history {

namespace {

using analysis::HistoryRun;
using command::Action;
using command::ExitCode;
using command::Failure;
using command::MemoryLimit;
using command::StandardOutput;

constexpr std::string_view backendKey = "backend";
constexpr std::string_view generatorKey = "generator";

// What a key says of a run; nothing where the run does not have it.
std::optional<std::string> valueOf(const std::string& key, const analysis::RunSummary& run) {
    if (const auto label = run.labels.find(key); label != run.labels.end()) {
        return label->second;
    }
    const std::string* const told = key == backendKey     ? &run.backendVersion
                                    : key == generatorKey ? &run.generator
                                                          : nullptr;
    return told == nullptr || told->empty() ? std::nullopt : std::optional(*told);
}

HistoryRun historyRunOf(analysis::RunSummary summary, const HistoryOptions& options) {
    HistoryRun run;
    const auto version = options.by.empty() ? std::optional(summary.logFile) : valueOf(options.by, summary);
    if (!version) {
        throw Failure(ExitCode::badLog, summary.logFile,
                      "the run has no \"" + options.by + "\" that would tell its version");
    }
    run.version = *version;
    if (!options.split.empty()) {
        run.split = options.split + ' ' + valueOf(options.split, summary).value_or("not told");
    }
    run.summary = std::move(summary);
    return run;
}

struct LoadedRuns {
    std::vector<HistoryRun> runs;
    bool isAnyBad = false;
};

// What can't be read is told in a line, and the rest goes on.
LoadedRuns loadRuns(const HistoryOptions& options, MemoryLimit& memory) {
    LoadedRuns loaded;
    command::InputList inputs(options.logs, options.filesFrom, {});
    while (const auto input = inputs.next()) {
        try {
            analysis::RunSummary summary =
                analysis::summarize(command::loadRun(input->path, memory, input->labels));
            loaded.runs.push_back(historyRunOf(std::move(summary), options));
        } catch (const Failure& failure) {
            if (failure.exitCode() != ExitCode::badLog) {
                throw;
            }
            command::printErrorLine(programName, failure.what());
            loaded.isAnyBad = true;
        }
    }
    return loaded;
}

ExitCode exitCodeOf(const std::optional<analysis::NewestVerdict>& verdict, const HistoryOptions& options) {
    if (!verdict) {
        return ExitCode::good;
    }
    switch (verdict->outcome) {
        case analysis::NewestOutcome::good:
            return ExitCode::good;
        case analysis::NewestOutcome::slower:
            return ExitCode::slower;
        case analysis::NewestOutcome::unsure:
            return options.failsUnsure ? ExitCode::incomparable : ExitCode::good;
    }
    return ExitCode::incomparable;
}

// Reasons stand on standard error; what passes is a part of the text.
void tellVerdict(const analysis::NewestVerdict& verdict, bool hasText) {
    if (verdict.outcome == analysis::NewestOutcome::good && hasText) {
        std::cout
            << "\nThe gate passes: no sure step beyond what is allowed holds until the newest version.\n";
    }
    for (const std::string& reason : verdict.reasons) {
        command::printErrorLine(programName, reason);
    }
}

ExitCode showHistory(const HistoryOptions& options, StandardOutput& output) {
    MemoryLimit memory(options.maxMemory);
    try {
        command::WantedForms<HistoryFormInput> forms(historyForms(), options.formFiles, options.logs);
        const LoadedRuns loaded = loadRuns(options, memory);
        analysis::RankSumChance chance;
        const analysis::History history = analysis::historyOf(loaded.runs, options.order, chance);
        const auto verdict = options.failAbove
                                 ? std::optional(analysis::judgeNewest(history, *options.failAbove, chance))
                                 : std::nullopt;
        forms.write({history, chance, verdict}, programName);
        const bool hasText = !isFormAlone(options.formFiles);
        if (hasText) {
            // Names are made fit for a terminal where they are printed; the colours have to pass.
            output.showRaw();
            const console::ConsoleStyle style = console::styleOfTerminal(STDOUT_FILENO);
            forms::printHistory(std::cout, history, chance,
                                {.hasColour = style.hasColour, .hasUnicode = style.hasUnicode});
        }
        if (verdict) {
            tellVerdict(*verdict, hasText);
        }
        output.finish();
        if (loaded.isAnyBad) {
            return ExitCode::badLog;
        }
        return history.series.empty() ? ExitCode::incomparable : exitCodeOf(verdict, options);
    } catch (const std::bad_alloc&) {
        memory.releaseReserve();
        throw Failure(ExitCode::badLog, "the history " + memory.cause());
    }
}

}  // namespace

ExitCode runHistory(int argc, const char* const* argv) {
    StandardOutput output;
    const HistoryOptions options = parseCommandLine(argc, argv);
    switch (options.action) {
        case Action::showHelp:
            std::cout << helpText(historyManual());
            break;
        case Action::showVersion:
            std::cout << profiling::versionLines(programName, profiling::versionText);
            break;
        case Action::work:
            return showHistory(options, output);
    }
    output.finish();
    return ExitCode::good;
}

}  // namespace zeb::history
