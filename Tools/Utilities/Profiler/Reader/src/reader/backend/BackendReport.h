#pragma once

#include <ostream>

#include "reader/backend/BackendFigures.h"
#include "reports/ReportSource.h"

/// The two forms of the backend's report. Neither changes what it prints, so each can be printed again, and
/// in any order.
namespace zeb::profiling {

/// Writes the sections of the console report that follow the log's header.
/// @param source has the store that the figures were worked out from; of its objects those of the De-Init
///               section are saved
/// @param internalColumns whether the ORU table shows all its columns
void printBackendReport(std::ostream& out, const ReportSource& source, const BackendFigures& figures,
                        bool internalColumns);

/// Writes the CSV report.
void writeBackendCsv(std::ostream& out, const ReportSource& source, const BackendFigures& figures,
                     bool internalColumns);

}  // namespace zeb::profiling
