#include "viewer/RunForms.h"

#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "analysis/MakeRun.h"
#include "command/LoadProgress.h"
#include "command/LogDiagnosis.h"
#include "command/TerminalStyle.h"
#include "forms/json/RunJson.h"
#include "forms/page/Page.h"
#include "forms/text/TopText.h"
#include "forms/trace/Trace.h"

namespace zeb::viewer {

using command::ExitCode;
using command::Failure;
using command::FormFile;
using command::LoadProgress;
using command::MemoryLimit;
using command::StandardOutput;
using command::styleOfTerminal;
using command::whyEndedEarly;
using command::whyRejected;

namespace {

constexpr std::uint64_t mostBytesOfBrowsers = std::uint64_t{256} << 20U;

}  // namespace

RunForms::RunForms(const ViewerOptions& options)
    : options_(options),
      json_(FormFile::openIfWanted(options.json, {&options.logPath, 1})),
      trace_(FormFile::openIfWanted(options.trace, {&options.logPath, 1})),
      html_(FormFile::openIfWanted(options.html, {&options.logPath, 1})) {}

void RunForms::show(StandardOutput& output, MemoryLimit& memory) {
    if (!options_.wantsForms()) {
        return;
    }
    const GuardedStep printing{ExitCode::badReport, options_.log,
                               "the figures of the run can't be told: ", "to tell the figures of the run "};
    guarded(printing, &memory, [&] {
        const analysis::Run run = readRun(memory);
        if (options_.topRows) {
            printTop(run, output);
        }
        if (json_) {
            json_->write([&run](std::ostream& out) { forms::writeRunJson(out, run); });
        }
        if (trace_) {
            writeTrace(run);
        }
        if (html_) {
            html_->write([&run](std::ostream& out) { forms::writePage(out, run); });
        }
        return true;
    });
}

analysis::Run RunForms::readRun(MemoryLimit& memory) const {
    auto run = [this] {
        const LoadProgress progress(options_.logPath);
        return analysis::makeRun(options_.logPath, options_.level);
    }();
    if (!run) {
        throw Failure(ExitCode::badLog, options_.log, whyRejected(options_.logPath, memory, pipedIntoViewer));
    }
    if (const auto trouble = whyEndedEarly(options_.logPath)) {
        throw Failure(ExitCode::badLog, options_.log, *trouble);
    }
    run->logFile = options_.log;
    return std::move(*run);
}

// What the log's names hold is made fit for a terminal there, and colours have to reach it.
void RunForms::printTop(const analysis::Run& run, StandardOutput& output) const {
    output.finish();
    output.showRaw();
    forms::printTop(std::cout, run,
                    {.rows = *options_.topRows,
                     .order = options_.topOrder,
                     .filter = options_.topFilter,
                     .style = styleOfTerminal(STDOUT_FILENO)});
    output.finish();
}

void RunForms::writeTrace(const analysis::Run& run) {
    std::optional<forms::TraceResult> result;
    trace_->write([&](std::ostream& out) {
        result = forms::writeTrace(
            out, run, options_.logPath,
            {.level = options_.level, .fromMs = options_.traceFromMs, .toMs = options_.traceToMs});
        if (!result) {
            throw Failure(ExitCode::badLog, options_.log, "the log has changed while it was read");
        }
    });
    const auto note = [this](const std::string& what) { printErrorLine(options_.trace + ": note: " + what); };
    if (result->leftOutForTracks + result->leftOutAsTooLate > 0) {
        note(std::to_string(result->leftOutForTracks) +
             " messages overlap too many others to be drawn, and " +
             std::to_string(result->leftOutAsTooLate) + " lie too far behind the first");
    }
    if (result->bytes > mostBytesOfBrowsers) {
        note(std::to_string(result->bytes >> 20U) +
             " MB are more than most browsers open; --trace-from and --trace-to cut it");
    }
}

}  // namespace zeb::viewer
