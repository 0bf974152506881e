#include "viewer/RunForms.h"

#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "analysis/MakeRun.h"
#include "command/LoadProgress.h"
#include "command/LogDiagnosis.h"
#include "console/ConsoleStyle.h"
#include "forms/json/RunJson.h"
#include "forms/markdown/RunMarkdown.h"
#include "forms/page/Page.h"
#include "forms/text/TopText.h"
#include "forms/trace/Trace.h"

namespace zeb::viewer {

using analysis::EventTrees;
using command::ExitCode;
using command::Failure;
using command::LoadProgress;
using command::MemoryLimit;
using command::StandardOutput;
using command::whyEndedEarly;
using command::whyRejected;
using console::styleOfTerminal;

namespace {

using command::Words;
using Form = command::Form<RunFormInput>;

Words writeJson(std::ostream& out, const RunFormInput& input) {
    forms::writeRunJson(out, input.run);
    return {};
}

Words writeTrace(std::ostream& out, const RunFormInput& input) {
    const ViewerOptions& options = input.options;
    const auto result =
        forms::writeTrace(out, input.run, options.logPath,
                          {.level = options.level,
                           .fromMs = options.traceFromMs,
                           .toMs = options.traceToMs,
                           .slices = options.tracePlain ? forms::SliceForm::plain : forms::SliceForm::full});
    if (!result) {
        throw Failure(ExitCode::badLog, options.log, "the log has changed while it was read");
    }
    if (result->leftOutForTracks + result->leftOutAsTooLate == 0) {
        return {};
    }
    return {std::to_string(result->leftOutForTracks) + " messages overlap too many others to be drawn, and " +
            std::to_string(result->leftOutAsTooLate) + " lie too far behind the first"};
}

Words writePage(std::ostream& out, const RunFormInput& input) {
    forms::writePage(out, input.run);
    return {};
}

Words writeMarkdown(std::ostream& out, const RunFormInput& input) {
    forms::writeRunMarkdown(out, input.run);
    return {};
}

constexpr Form formTable[] = {
    {.option = "--json",
     .help = "Write all figures of the run to FILE as JSON",
     .write = writeJson,
     .isDetailed = true},
    {"--trace", "Write the log's timeline to FILE, for the trace viewers of browsers", writeTrace,
     std::uint64_t{256} << 20U, "are more than most browsers open; --trace-from and --trace-to cut it"},
    {"--html", "Write the run to FILE as a page for a browser", writePage, std::uint64_t{50} << 20U,
     "are more than most browsers show at ease; --json has the same figures", true},
    {"--markdown", "Write the run to FILE as Markdown, for a pull request or a job's summary", writeMarkdown},
};

}  // namespace

std::span<const Form> runForms() {
    return formTable;
}

RunForms::RunForms(const ViewerOptions& options)
    : options_(options), forms_(runForms(), options.formFiles, {&options.logPath, 1}) {}

GuardedStep RunForms::step() const {
    return {ExitCode::badReport, options_.log,
            "the figures of the run can't be told: ", "to tell the figures of the run "};
}

analysis::Run RunForms::readRun(MemoryLimit& memory) const {
    return guarded(step(), &memory, [&] {
        auto run = [this] {
            const LoadProgress progress(options_.logPath);
            return analysis::makeRun(options_.logPath, options_.level,
                                     forms_.haveDetailed() ? EventTrees::gathered : EventTrees::leftOut);
        }();
        if (!run) {
            throw Failure(ExitCode::badLog, options_.log,
                          whyRejected(options_.logPath, memory, pipedIntoViewer));
        }
        if (const auto trouble = whyEndedEarly(options_.logPath)) {
            throw Failure(ExitCode::badLog, options_.log, *trouble);
        }
        run->logFile = options_.log;
        run->labels = options_.labels;
        return std::move(*run);
    });
}

void RunForms::show(const analysis::Run& run, StandardOutput& output, MemoryLimit& memory) {
    guarded(step(), &memory, [&] {
        if (options_.topRows) {
            printTop(run, output);
        }
        forms_.write({run, options_}, programName);
        return true;
    });
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

}  // namespace zeb::viewer
