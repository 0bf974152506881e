#pragma once

#include <vector>

#include "console/CommandManual.h"

namespace zeb::manual {

/// @return the options that the readers add to those of the viewer, from the help that they show
std::vector<console::ManualOption> readerOptions();

}  // namespace zeb::manual
