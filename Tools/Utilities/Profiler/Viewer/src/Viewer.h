#pragma once

#include "Failure.h"

namespace zeb::viewer {

/// The command: takes the command line apart, drives the reader and tells every failure on standard error.
/// Standard output gets the report, or help or version when they are asked for.
ExitCode runViewer(int argc, const char* const* argv) noexcept;

}  // namespace zeb::viewer
