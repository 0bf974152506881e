#pragma once

#include <string>

#include "viewer/CsvSpool.h"

namespace zeb::viewer {

/// Tests cheaply, and without creating it, whether a CSV file could be appended to.
/// @throws Failure when it could not, or when it is the log itself
void checkCsvPath(const std::string& path, const std::string& logPath);

/// Appends the report to a file, which is created if need be, all of it or nothing. A regular file is locked
/// meanwhile, so that viewers that run at the same time do not mix their reports. Signals that end the
/// process are held back while it is written.
/// @throws Failure when it can't be written; a regular file is then as it was before
void appendToFile(const std::string& path, const CsvSpool& report);

}  // namespace zeb::viewer
