#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "command/CommandLine.h"
#include "command/Failure.h"
#include "command/MemorySize.h"
#include "command/runs/Labels.h"
#include "console/CommandManual.h"
#include "forms/tables/RunTables.h"

namespace zeb::exports {

inline constexpr std::string_view programName = "zeb-profile-export";

/// @return what the exit code says, as the help has it; empty for a number that is none of this command
std::string_view meaningOf(command::ExitCode exitCode);

/// The command line of zeb-profile-export.
struct ExportOptions {
    command::Action action = command::Action::work;
    std::string directory;  ///< of all batches
    std::vector<std::string> logs;
    std::string filesFrom;  ///< a file that names further logs, "-": standard input; empty: none
    command::Labels labels;
    bool skipsKnown = false;
    std::vector<forms::Table> tables;  ///< each once, in their own order
    std::size_t jobs = 1;
    command::MemorySize maxMemory = command::defaultMemorySize();
};

/// Help and version win over everything but words that no option takes.
/// @throws Failure for wrong usage
ExportOptions parseCommandLine(int argc, const char* const* argv);

/// @return what the command says about itself
console::CommandManual exportManual();

}  // namespace zeb::exports
