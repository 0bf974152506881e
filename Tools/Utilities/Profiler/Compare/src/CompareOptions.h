#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Comparison.h"
#include "Gate.h"
#include "MemoryLimit.h"
#include "text/CommandManual.h"

namespace zeb::compare {

enum class Action : std::uint8_t { compare, showHelp, showVersion };

/// The command line of zeb-profile-compare.
struct CompareOptions {
    Action action = Action::compare;
    std::vector<std::string> base;  ///< one log at least, and so below
    std::vector<std::string> changed;
    std::vector<analysis::Rename> renames;
    double hideBelow = 0.005;            ///< a share
    std::optional<analysis::Gate> gate;  ///< nothing: every change is good
    std::string json;                    ///< empty: no JSON; "-": on standard output, without the text
    viewer::MemorySize maxMemory = viewer::defaultMemorySize();
};

/// Help and version win over everything but words that no option takes.
/// @throws CompareFailure for wrong usage
CompareOptions parseCommandLine(int argc, const char* const* argv);

/// @return what the command says about itself
profiling::CommandManual compareManual();

}  // namespace zeb::compare
