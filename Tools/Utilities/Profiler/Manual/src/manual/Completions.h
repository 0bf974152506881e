#pragma once

#include <string>

#include "text/CommandManual.h"

namespace zeb::manual {

/// Scripts that let a shell complete the options of a command, their values and file names.

std::string bashCompletion(const profiling::CommandManual& manual);
std::string zshCompletion(const profiling::CommandManual& manual);
std::string fishCompletion(const profiling::CommandManual& manual);

}  // namespace zeb::manual
