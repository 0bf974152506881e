#pragma once

#include <string>

#include "store/LogHeaderDetails.h"

namespace zeb::profiling {

/// @return the lines at the head of every console report; empty when the log had no header, and when its
/// creation time has no text
std::string headerText(const LogHeaderDetails& header, const std::string& logFilePath);

}  // namespace zeb::profiling
