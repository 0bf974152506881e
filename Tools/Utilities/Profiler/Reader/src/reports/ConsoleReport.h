#pragma once

#include <iosfwd>

#include "reports/ReportSource.h"

namespace zeb::profiling {

/// Writes the sections of the generic console report, in their order.
void printConsoleReport(std::ostream& out, const ReportSource& source);

/// Writes the one section that the log of an adapter updater has.
void printUpdateBinarySectionStats(std::ostream& out, const ReportSource& source);

}  // namespace zeb::profiling
