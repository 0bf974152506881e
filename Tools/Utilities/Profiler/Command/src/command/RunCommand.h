#pragma once

#include <functional>
#include <string_view>

#include "command/Failure.h"

namespace zeb::command {

/// Does the work of a command in a process that is fit for it: its standard streams are there, and a closed
/// pipe and a file-size limit are errors of the write that meets them, and no sudden end. What the work
/// throws becomes a line on standard error and an exit code.
/// @return the exit code, for `main`
int runCommand(std::string_view programName, const std::function<ExitCode()>& work) noexcept;

}  // namespace zeb::command
