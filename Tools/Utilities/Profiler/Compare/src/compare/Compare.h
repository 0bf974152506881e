#pragma once

#include "command/Failure.h"

namespace zeb::compare {

/// The command: loads one log after the other, prints the comparison on standard output, and judges it where
/// a gate is set. Every reason of a gate's is a line on standard error.
/// @throws Failure
command::ExitCode runCompare(int argc, const char* const* argv);

}  // namespace zeb::compare
