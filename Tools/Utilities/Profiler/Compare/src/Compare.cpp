#include "Compare.h"

#include <unistd.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string_view>
#include <vector>

#include "CompareOptions.h"
#include "ComparisonJson.h"
#include "ComparisonText.h"
#include "Failure.h"
#include "FormFile.h"
#include "LoadRun.h"
#include "StandardOutput.h"
#include "TerminalStyle.h"
#include "TerminalText.h"
#include "text/BuildText.h"
#include "zeb/profiling/Version.h"

namespace zeb::compare {

namespace {

void printErrorLine(std::string_view text) noexcept {
    try {
        std::cerr << std::string(programName).append(": ").append(forms::shownOnOneLine(text)).append("\n");
    } catch (...) {
        std::fputs("zeb-profile-compare: there is not enough memory\n", stderr);
    }
}

std::vector<analysis::RunSummary> load(const std::vector<std::string>& logs, viewer::MemoryLimit& memory) {
    std::vector<analysis::RunSummary> runs;
    for (const std::string& log : logs) {
        runs.push_back(analysis::summarize(loadRun(log, memory)));
    }
    return runs;
}

ExitCode exitCodeOf(analysis::GateOutcome outcome) {
    switch (outcome) {
        case analysis::GateOutcome::pass:
            return ExitCode::good;
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
    if (result.outcome == analysis::GateOutcome::pass && hasText) {
        std::cout << "\nThe gate passes: no time for " << nameOf(gate.total)
                  << " grew by more than is allowed.\n";
    }
    for (const std::string& reason : result.reasons) {
        printErrorLine(reason);
    }
    return exitCodeOf(result.outcome);
}

void writeJson(const CompareOptions& options, const analysis::Comparison& comparison) {
    std::optional<viewer::FormFile> file;
    for (const auto* const side : {&options.base, &options.changed}) {
        for (const std::string& log : *side) {
            file.emplace(options.json, log);  // which is to be none of them
        }
    }
    file->write([&](std::ostream& out) { forms::writeComparisonJson(out, comparison, options.gate); });
}

ExitCode compareVersions(const CompareOptions& options, viewer::StandardOutput& output) {
    viewer::MemoryLimit memory(options.maxMemory);
    try {
        const std::vector<analysis::RunSummary> base = load(options.base, memory);
        const std::vector<analysis::RunSummary> changed = load(options.changed, memory);
        const analysis::Comparison comparison = analysis::compare(base, changed, options.renames);
        if (!options.json.empty()) {
            writeJson(options, comparison);
        }
        const bool hasText = options.json != viewer::FormFile::standardOutput;
        if (hasText) {
            output
                .showRaw();  // names are made fit for a terminal where they are printed; colours have to pass
            const forms::ConsoleStyle style = viewer::styleOfTerminal(STDOUT_FILENO);
            forms::printComparison(std::cout, comparison,
                                   {.hasColour = style.hasColour,
                                    .hasUnicode = style.hasUnicode,
                                    .hideBelow = options.hideBelow});
        }
        output.finish();
        const ExitCode exitCode = options.gate ? judgeBy(comparison, *options.gate, hasText) : ExitCode::good;
        output.finish();
        return exitCode;
    } catch (const std::bad_alloc&) {
        memory.releaseReserve();
        throw CompareFailure(ExitCode::badLog, "the comparison " + memory.cause());
    }
}

ExitCode run(int argc, const char* const* argv) {
    viewer::StandardOutput output;
    const CompareOptions options = parseCommandLine(argc, argv);
    switch (options.action) {
        case Action::showHelp:
            std::cout << helpText(compareManual());
            break;
        case Action::showVersion:
            std::cout << profiling::versionLines(programName, profiling::versionText);
            break;
        case Action::compare:
            return compareVersions(options, output);
    }
    output.finish();
    return ExitCode::good;
}

}  // namespace

ExitCode runCompare(int argc, const char* const* argv) noexcept {
    try {
        return run(argc, argv);
    } catch (const CompareFailure& failure) {
        printErrorLine(failure.what());
        return failure.exitCode();
    } catch (const viewer::Failure& failure) {  // of standard output, and of a memory limit that can't be set
        printErrorLine(failure.what());
        return failure.exitCode() == viewer::ExitCode::badOutput ? ExitCode::badOutput : ExitCode::usage;
    } catch (const std::exception& error) {
        printErrorLine(error.what());
    } catch (...) {
        printErrorLine("unknown error");
    }
    return ExitCode::badLog;
}

}  // namespace zeb::compare
