#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/runs/History.h"
#include "command/CommandLine.h"
#include "command/Failure.h"
#include "command/MemorySize.h"
#include "console/CommandManual.h"

namespace zeb::history {

inline constexpr std::string_view programName = "zeb-profile-history";

/// Where several hold, usage comes before badLog, that before badOutput, that before incomparable, and slower
/// is last.
/// @return what the exit code says, as the help has it; empty for a number that is none of this command
std::string_view meaningOf(command::ExitCode exitCode);

/// The command line of zeb-profile-history.
struct HistoryOptions {
    command::Action action = command::Action::work;
    std::vector<std::string> logs;
    std::string filesFrom;  ///< a file that names further logs, "-": standard input; empty: none
    std::string by;     ///< what tells a version: a label, "backend" or "generator"; empty: every run is one
    std::string split;  ///< a label that tells series apart; empty: none
    analysis::VersionOrder order = analysis::VersionOrder::given;
    std::optional<double> failAbove;  ///< a share; nothing: every step is good
    bool failsUnsure = false;
    std::vector<command::Given> formFiles;  ///< the forms that are wanted
    command::MemorySize maxMemory = command::defaultMemorySize();
};

/// Help and version win over everything but words that no option takes.
/// @throws Failure for wrong usage
HistoryOptions parseCommandLine(int argc, const char* const* argv);

/// @return what the command says about itself
console::CommandManual historyManual();

}  // namespace zeb::history
