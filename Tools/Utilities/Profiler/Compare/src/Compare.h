#pragma once

#include "CompareFailure.h"

namespace zeb::compare {

/// The command: loads one log after the other, prints the comparison on standard output, and judges it where
/// a gate is set. Every failure, and every reason of a gate's, is a line on standard error.
ExitCode runCompare(int argc, const char* const* argv) noexcept;

}  // namespace zeb::compare
