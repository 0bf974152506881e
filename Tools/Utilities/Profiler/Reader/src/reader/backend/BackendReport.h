#pragma once

#include <ostream>

#include "reader/ZebProfileLogReader.h"
#include "reader/backend/BackendFigures.h"

/// The two forms of the backend's report. Neither changes what it prints, so each can be printed again, and
/// in any order.
namespace zeb::profiling {

/// Writes the sections of the console report that follow the log's header.
/// @param reader has the store that the figures were worked out from, and saves the objects of the De-Init
///               section if objects are saved
/// @param internalColumns whether the ORU table shows all its columns
void printBackendReport(std::ostream& out, ZebProfileLogReader& reader, const BackendFigures& figures,
                        bool internalColumns);

/// Writes the CSV report.
void writeBackendCsv(std::ostream& out, const ZebProfileLogReader& reader, const BackendFigures& figures,
                     bool internalColumns);

}  // namespace zeb::profiling
