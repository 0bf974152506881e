#pragma once

#include <vector>

#include "text/CommandManual.h"

namespace zeb::manual {

/// @return the manuals of all commands that are installed
std::vector<profiling::CommandManual> commandManuals();

}  // namespace zeb::manual
