#pragma once

#include "command/Failure.h"

namespace zeb::viewer {

/// The command: takes the command line apart and drives the reader. Standard output gets the report, or help
/// or version when they are asked for.
/// @throws Failure
command::ExitCode runViewer(int argc, const char* const* argv);

}  // namespace zeb::viewer
