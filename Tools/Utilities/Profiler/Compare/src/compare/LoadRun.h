#pragma once

#include <string>

#include "analysis/Run.h"
#include "command/MemoryLimit.h"

namespace zeb::compare {

/// Loads a run from a log, or from a file with its JSON, known by its content.
/// @param path may lead to a pipe; "-" is standard input
/// @throws Failure when it can't be read, also for want of memory
analysis::Run loadRun(const std::string& path, command::MemoryLimit& memory);

}  // namespace zeb::compare
