#pragma once

#include "command/Failure.h"

namespace zeb::history {

/// The command, but for failures, which its caller reports.
/// @throws Failure
command::ExitCode runHistory(int argc, const char* const* argv);

}  // namespace zeb::history
