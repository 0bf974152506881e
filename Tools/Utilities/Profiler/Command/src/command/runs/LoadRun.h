#pragma once

#include <string>

#include "analysis/Run.h"
#include "command/MemoryLimit.h"
#include "command/runs/Labels.h"

namespace zeb::command {

/// Reads a run from a log, or from a file with its JSON, known by its content.
/// @param path may lead to a pipe, which is taken to its end; "-" is standard input
/// @param labels that it has besides those in its JSON
/// @throws Failure when it can't be read, or a label has two values; std::bad_alloc, std::length_error when
/// memory ends
analysis::Run readRun(const std::string& path, const MemoryLimit& memory, const Labels& labels = {});

/// Reads a run, with the end of memory as a failure like any other.
/// @throws Failure
analysis::Run loadRun(const std::string& path, MemoryLimit& memory, const Labels& labels = {});

}  // namespace zeb::command
