#pragma once

#include <string>

#include "analysis/Run.h"
#include "command/MemoryLimit.h"

namespace zeb::command {

/// Reads a run from a log, or from a file with its JSON, known by its content.
/// @param path may lead to a pipe, which is taken to its end; "-" is standard input
/// @throws Failure when it can't be read; std::bad_alloc, std::length_error when memory ends
analysis::Run readRun(const std::string& path, const MemoryLimit& memory);

/// Reads a run, with the end of memory as a failure like any other.
/// @throws Failure
analysis::Run loadRun(const std::string& path, MemoryLimit& memory);

}  // namespace zeb::command
