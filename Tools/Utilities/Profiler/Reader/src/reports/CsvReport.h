#pragma once

#include <iosfwd>

#include "reports/ReportSource.h"

namespace zeb::profiling {

/// Writes the generic CSV report: a row for every occurrence of every method, each followed by the rows of
/// its events. The log of an adapter updater has rows for its latest update alone. Nothing is quoted or
/// escaped.
void writeCsvReport(std::ostream& out, const ReportSource& source);

}  // namespace zeb::profiling
