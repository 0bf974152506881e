#include "export/Export.h"

#include <iostream>
#include <new>
#include <optional>

#include "command/StandardOutput.h"
#include "export/ExportOptions.h"
#include "export/ExportRuns.h"
#include "text/BuildText.h"
#include "zeb/profiling/Version.h"

namespace zeb::exports {

namespace {

using command::Action;
using command::ExitCode;
using command::Failure;

// The path of the batch is all that goes to standard output.
ExitCode exportLogs(const ExportOptions& options) {
    command::MemoryLimit memory(options.maxMemory);
    try {
        RunIds known;
        if (options.skipsKnown) {
            known.addBatchesIn(options.directory);
        }
        command::InputList inputs(options.logs, options.filesFrom, options.labels);
        Batch batch(options.directory, options.tables);
        const ExportResult result = exportRuns(inputs, options, known, memory, batch);
        if (result.written != 0) {
            std::cout << batch.putInPlace() << '\n';
        }
        return result.rejected == 0 ? ExitCode::good : ExitCode::badLog;
    } catch (const std::bad_alloc&) {
        memory.releaseReserve();
        throw Failure(ExitCode::badLog, "the export " + memory.cause());
    }
}

}  // namespace

ExitCode runExport(int argc, const char* const* argv) {
    command::StandardOutput output;
    const ExportOptions options = parseCommandLine(argc, argv);
    ExitCode exitCode = ExitCode::good;
    switch (options.action) {
        case Action::showHelp:
            std::cout << helpText(exportManual());
            break;
        case Action::showVersion:
            std::cout << profiling::versionLines(programName, profiling::versionText);
            break;
        case Action::work:
            exitCode = exportLogs(options);
            break;
    }
    output.finish();
    return exitCode;
}

}  // namespace zeb::exports
