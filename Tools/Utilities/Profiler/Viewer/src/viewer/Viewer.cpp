#include "viewer/Viewer.h"

#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include "analysis/Run.h"
#include "command/CommandLine.h"
#include "command/LoadProgress.h"
#include "command/LogDiagnosis.h"
#include "command/MemoryLimit.h"
#include "command/PipedLog.h"
#include "command/StandardOutput.h"
#include "text/BuildText.h"
#include "viewer/CsvFile.h"
#include "viewer/GuardedStep.h"
#include "viewer/PluginLibrary.h"
#include "viewer/ReportRun.h"
#include "viewer/RunForms.h"
#include "viewer/ViewerArgs.h"
#include "viewer/ViewerOptions.h"
#include "zeb/profiling/Version.h"

namespace zeb::viewer {

using command::Action;
using command::ExitCode;
using command::Failure;
using command::LoadProgress;
using command::MemoryLimit;
using command::PipedLog;
using command::StandardOutput;

namespace {

using profiling::IZebPluginLogReader;

bool parseReaderOptions(IZebPluginLogReader& reader, ViewerArgs& args, const std::string& name,
                        ExitCode exitCode) {
    return guarded({exitCode, name, "the reader failed on its options: ", ""}, nullptr,
                   [&] { return reader.parseBackendArgs(args); });
}

void showReaderHelp(const ViewerOptions& options) {
    const PluginLibrary plugin(options.reader);
    const ReaderPtr reader = plugin.createReader(options.logPath, options.level);
    ViewerArgs args({"--help"});
    parseReaderOptions(*reader, args, options.reader, ExitCode::badPlugin);
}

void showHelp(const ViewerOptions& options, StandardOutput& output) {
    std::cout << helpText(viewerManual());
    output.finish();
    try {
        showReaderHelp(options);
    } catch (const Failure& failure) {
        printErrorLine(std::string("note: no help of the reader: ") + failure.what());
    }
    output.finish();
}

void refuseLeftovers(const ViewerArgs& args) {
    const auto leftover = args.firstLeftover();
    if (!leftover) {
        return;
    }
    if (!leftover->isOption) {
        throw Failure(ExitCode::usage, leftover->name, "a word too many, there is one LOG");
    }
    command::Words known = viewerOptionNames();
    known.insert(known.end(), args.askedNames().begin(), args.askedNames().end());
    throw command::unknownOption(leftover->name, known);
}

void showReport(IZebPluginLogReader& reader, const ViewerOptions& options, StandardOutput& output,
                MemoryLimit& memory) {
    output.setMuted(options.quiet);
    ReportRun(reader, options, output, memory).show();
    output.setMuted(false);
}

// In place of a report that nobody sees and that leaves no file. Only of a log with a fault it is made, for
// the reader's words on that.
std::optional<analysis::Run> readWithoutReport(IZebPluginLogReader& reader, const ViewerOptions& options,
                                               const RunForms& forms, StandardOutput& output,
                                               MemoryLimit& memory) {
    try {
        return forms.readRun(memory);
    } catch (const Failure&) {
        showReport(reader, options, output, memory);
        if (options.wantsForms()) {
            throw;
        }
        return std::nullopt;
    }
}

// What a plug-in is asked for, and all forms. Gives false when the reader has shown its help instead.
bool showAll(const ViewerOptions& options, PipedLog& pipe, RunForms& forms, StandardOutput& output) {
    std::optional<MemoryLimit> memory;
    std::optional<analysis::Run> run;
    {
        const PluginLibrary plugin(options.reader);
        const ReaderPtr reader = plugin.createReader(options.logPath, options.level);
        ViewerArgs args(options.readerArguments);
        if (!parseReaderOptions(*reader, args, options.reader, ExitCode::usage)) {
            return false;  // the reader has said why
        }
        refuseLeftovers(args);
        if (!options.csv.empty()) {
            checkCsvPath(options.csv, options.logPath);
        }
        pipe.prepare();
        memory.emplace(options.maxMemory);
        if (options.needsReport()) {
            showReport(*reader, options, output, *memory);
        } else {
            run = readWithoutReport(*reader, options, forms, output, *memory);
        }
    }
    if (options.wantsForms()) {
        if (!run) {
            run = forms.readRun(*memory);
        }
        forms.show(*run, output, *memory);
    }
    return true;
}

ExitCode show(ViewerOptions options, StandardOutput& output) {
    if (!options.quiet) {
        LoadProgress::showFor(programName);
    }
    PipedLog pipe(options.log);
    options.log = pipe.given();
    options.logPath = pipe.path();
    RunForms forms(options);
    if (!isFormAlone(options.formFiles)) {
        return showAll(options, pipe, forms, output) ? ExitCode::good : ExitCode::usage;
    }
    pipe.prepare();
    MemoryLimit memory(options.maxMemory);
    forms.show(forms.readRun(memory), output, memory);
    return ExitCode::good;
}

}  // namespace

ExitCode runViewer(int argc, const char* const* argv) {
    StandardOutput output;
    ViewerOptions options = parseCommandLine(argc, argv);
    if (options.raw) {
        output.showRaw();
    }
    ExitCode exitCode = ExitCode::good;
    switch (options.action) {
        case Action::showHelp:
            showHelp(options, output);
            break;
        case Action::showVersion:
            std::cout << profiling::versionLines(programName, profiling::versionText);
            output.finish();
            break;
        case Action::work:
            exitCode = show(std::move(options), output);
            break;
    }
    return output.isPipeClosed() ? ExitCode::closedPipe : exitCode;
}

}  // namespace zeb::viewer
