#pragma once

#include <string>

#include "zeb/profiling/IZebProfileLogReader.h"

#define ZEB_PROFILING_EXPORT __attribute__((visibility("default")))

/// The two functions that a reader plug-in exports, and all that it exports. They throw only
/// `std::bad_alloc`.
extern "C" {

/// Makes a reader for one log. The file is not touched before `loadLog`.
/// @param logFilePath is copied
/// @param level       messages of this level and above are left out
/// @return a reader that the caller owns and gives back through `deleteReader`, never null
ZEB_PROFILING_EXPORT zeb::profiling::IZebPluginLogReader* createReader(const std::string& logFilePath,
                                                                       zeb::profiling::VisibilityLevel level);

/// Destroys a reader that `createReader` of the same library made. A null pointer does nothing.
ZEB_PROFILING_EXPORT void deleteReader(zeb::profiling::IZebPluginLogReader* reader);
}
