#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"
#include "command/CommandLine.h"
#include "command/Failure.h"
#include "command/MemorySize.h"
#include "console/CommandManual.h"

namespace zeb::compare {

inline constexpr std::string_view programName = "zeb-profile-compare";

/// Where several hold, usage comes before badLog, that before badOutput, that before incomparable, and slower
/// is last.
/// @return what the exit code says, as the help has it; empty for a number that is none of this command
std::string_view meaningOf(command::ExitCode exitCode);

/// The command line of zeb-profile-compare.
struct CompareOptions {
    command::Action action = command::Action::work;
    std::vector<std::string> base;  ///< one log at least, and so below
    std::vector<std::string> changed;
    analysis::CompareSettings settings;
    double hideBelow = 0.005;               ///< a share
    std::size_t rows = 20;                  ///< of a table of layers in the text, at most
    std::optional<analysis::Gate> gate;     ///< nothing: every change is good
    std::vector<command::Given> formFiles;  ///< of the forms that are wanted (`comparisonForms`)
    command::MemorySize maxMemory = command::defaultMemorySize();
};

/// Help and version win over everything but words that no option takes.
/// @throws Failure for wrong usage
CompareOptions parseCommandLine(int argc, const char* const* argv);

/// @return what the command says about itself
console::CommandManual compareManual();

}  // namespace zeb::compare
