#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/CommandLine.h"
#include "command/MemorySize.h"
#include "command/runs/Labels.h"
#include "console/CommandManual.h"
#include "forms/text/TopText.h"
#include "viewer/NamedReaders.h"
#include "viewer/ProgramName.h"
#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::viewer {

/// The command line of the viewer.
struct ViewerOptions {
    command::Action action = command::Action::work;
    std::string reader{namedReaders[0].name};  ///< or the path of a plug-in
    std::string csv;                           ///< empty: no CSV report
    bool quiet = false;                        ///< no console report and no progress
    bool raw = false;                          ///< control characters reach a terminal as they are
    profiling::VisibilityLevel level{127};
    std::optional<std::string> objectDirectory;  ///< nothing: objects are not saved
    bool trustObjectNames = false;
    command::MemorySize maxMemory = command::defaultMemorySize();
    std::optional<std::size_t> topRows;  ///< nothing: no ranking behind the report
    forms::LayerOrder topOrder = forms::LayerOrder::time;
    std::string topFilter;
    std::vector<command::Given> formFiles;  ///< of the forms that are wanted (`runForms`)
    std::optional<double> traceFromMs;      ///< behind the smallest start; so is the next one
    std::optional<double> traceToMs;
    bool tracePlain = false;
    command::Labels labels;
    std::string log;      ///< as it was given, for people
    std::string logPath;  ///< what leads to it; differs for a pipe that has been kept
    /// What the viewer doesn't know, in its order, with a "--" mark.
    std::vector<std::string> readerArguments;

    /// @return whether anybody sees what the plug-in's report says
    [[nodiscard]] bool needsReport() const { return !quiet || !csv.empty() || objectDirectory; }
    /// @return whether more than the plug-in's report is wanted
    [[nodiscard]] bool wantsForms() const { return topRows || !formFiles.empty(); }
};

/// @return what the exit code says, as help and README have it; empty for a number that is none of this
/// command
std::string_view meaningOf(command::ExitCode exitCode);

/// Help and version win over a missing LOG and wrong values.
/// @throws Failure for wrong usage
ViewerOptions parseCommandLine(int argc, const char* const* argv);

/// @return the names of the viewer's own options, with their dashes
command::Words viewerOptionNames();

/// @return what the viewer says about itself, without what a reader does
console::CommandManual viewerManual();

}  // namespace zeb::viewer
