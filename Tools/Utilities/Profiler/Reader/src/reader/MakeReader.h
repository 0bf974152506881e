#pragma once

#include <memory>
#include <string>

#include "zeb/profiling/IZebProfileLogReader.h"

namespace zeb::profiling {

/// Makes the reader of a plug-in. Each plug-in defines it for the class that it is made for; all else about
/// the exports is the same in all of them.
std::unique_ptr<IZebPluginLogReader> makeReader(const std::string& logFilePath, VisibilityLevel level);

}  // namespace zeb::profiling
