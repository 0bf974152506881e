#pragma once

#include <string>

#include "reports/ObjectFiles.h"
#include "store/EventStore.h"
#include "store/LogHeaderDetails.h"
#include "zeb/profiling/IZebProfileLogReader.h"

namespace zeb::profiling {

/// What a report is made from, all of it the reader's, which outlives the report.
struct ReportSource {
    /// Its `printHeader`, `printEvent` and `writeEventCsv` make the header's text and the lines and rows of
    /// events, so that a reader which overrides one is heard.
    IZebPluginLogReader& reader;
    const EventStore& store;
    const LogHeaderDetails& header;
    const std::string& logFilePath;
    ObjectFiles* objectFiles;  ///< where the objects of executions go; null when they are not saved
};

}  // namespace zeb::profiling
