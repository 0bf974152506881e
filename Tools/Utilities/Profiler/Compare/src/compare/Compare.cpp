#include "compare/Compare.h"

#include <unistd.h>

#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "command/Failure.h"
#include "command/StandardOutput.h"
#include "command/runs/LoadRun.h"
#include "compare/CompareOptions.h"
#include "compare/ComparisonForms.h"
#include "console/ConsoleStyle.h"
#include "forms/text/ComparisonText.h"
#include "text/BuildText.h"
#include "zeb/profiling/Version.h"

namespace zeb::compare {

namespace {

using command::Action;
using command::ExitCode;
using command::Failure;
using command::MemoryLimit;
using command::StandardOutput;

std::vector<analysis::RunSummary> load(const std::vector<std::string>& logs, MemoryLimit& memory) {
    std::vector<analysis::RunSummary> runs;
    for (const std::string& log : logs) {
        runs.push_back(analysis::summarize(command::loadRun(log, memory)));
    }
    return runs;
}

ExitCode exitCodeOf(analysis::GateOutcome outcome, bool failsUnsure) {
    switch (outcome) {
        case analysis::GateOutcome::pass:
            return ExitCode::good;
        case analysis::GateOutcome::unsure:
            return failsUnsure ? ExitCode::incomparable : ExitCode::good;
        case analysis::GateOutcome::slower:
            return ExitCode::slower;
        case analysis::GateOutcome::incomparable:
            return ExitCode::incomparable;
    }
    return ExitCode::incomparable;
}

// The gate's words are a part of the text.
ExitCode judgeBy(const analysis::Comparison& comparison, const analysis::Gate& gate, bool hasText) {
    const analysis::GateResult result = analysis::judge(comparison, gate);
    if (hasText && result.outcome == analysis::GateOutcome::pass) {
        std::cout << "\nThe gate passes: nothing grew by more than is allowed.\n";
    } else if (hasText && result.outcome == analysis::GateOutcome::unsure && !gate.failsUnsure) {
        std::cout << "\nThe gate passes, since nothing is known to have grown by more than is allowed.\n";
    }
    for (const std::string& reason : result.reasons) {
        command::printErrorLine(programName, reason);
    }
    return exitCodeOf(result.outcome, gate.failsUnsure);
}

void writeForms(const CompareOptions& options, const analysis::Comparison& comparison) {
    std::vector<std::string> logs = options.base;
    logs.insert(logs.end(), options.changed.begin(), options.changed.end());
    command::WantedForms<ComparisonFormInput> forms(comparisonForms(), options.formFiles, logs);
    forms.write({comparison, options}, programName);
}

ExitCode compareVersions(const CompareOptions& options, StandardOutput& output) {
    MemoryLimit memory(options.maxMemory);
    try {
        const std::vector<analysis::RunSummary> base = load(options.base, memory);
        const std::vector<analysis::RunSummary> changed = load(options.changed, memory);
        const analysis::Comparison comparison = analysis::compare(base, changed, options.settings);
        writeForms(options, comparison);
        const bool hasText = !isFormAlone(options.formFiles);
        if (hasText) {
            // Names are made fit for a terminal where they are printed; the colours have to pass.
            output.showRaw();
            const console::ConsoleStyle style = console::styleOfTerminal(STDOUT_FILENO);
            forms::printComparison(std::cout, comparison,
                                   {.hasColour = style.hasColour,
                                    .hasUnicode = style.hasUnicode,
                                    .hideBelow = options.hideBelow,
                                    .rows = options.rows,
                                    .width = style.width});
        }
        output.finish();
        if (MemoryLimit::wasHit()) {
            throw std::bad_alloc();
        }
        const ExitCode exitCode = options.gate ? judgeBy(comparison, *options.gate, hasText) : ExitCode::good;
        output.finish();
        return exitCode;
    } catch (const std::bad_alloc&) {
        memory.releaseReserve();
        throw Failure(ExitCode::badLog, "the comparison " + memory.cause());
    }
}

}  // namespace

ExitCode runCompare(int argc, const char* const* argv) {
    StandardOutput output;
    const CompareOptions options = parseCommandLine(argc, argv);
    switch (options.action) {
        case Action::showHelp:
            std::cout << helpText(compareManual());
            break;
        case Action::showVersion:
            std::cout << profiling::versionLines(programName, profiling::versionText);
            break;
        case Action::work:
            return compareVersions(options, output);
    }
    output.finish();
    return ExitCode::good;
}

}  // namespace zeb::compare
