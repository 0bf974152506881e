#pragma once

#include <vector>

#include "console/CommandManual.h"

namespace zeb::manual {

/// @return the manuals of all commands that are installed
std::vector<console::CommandManual> commandManuals();

}  // namespace zeb::manual
