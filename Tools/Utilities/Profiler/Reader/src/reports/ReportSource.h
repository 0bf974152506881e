#pragma once

#include <string>

#include "reports/ObjectFiles.h"
#include "store/EventStore.h"
#include "store/LogHeaderDetails.h"

namespace zeb::profiling {

/// What a report is made from, all of it the reader's, which outlives the report.
struct ReportSource {
    const EventStore& store;
    const LogHeaderDetails& header;
    const std::string& logFilePath;
    ObjectFiles* objectFiles;  ///< where object events go; null when they are not saved
};

}  // namespace zeb::profiling
