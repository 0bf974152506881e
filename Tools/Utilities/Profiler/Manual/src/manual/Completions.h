#pragma once

#include <string>

#include "console/CommandManual.h"

namespace zeb::manual {

/// Scripts that let a shell complete the options of a command, their values and file names.

std::string bashCompletion(const console::CommandManual& manual);
std::string zshCompletion(const console::CommandManual& manual);
std::string fishCompletion(const console::CommandManual& manual);

}  // namespace zeb::manual
