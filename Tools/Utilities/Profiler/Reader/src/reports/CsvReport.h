#pragma once

#include <iosfwd>

#include "reports/MethodForms.h"
#include "reports/ReportSource.h"

/// The generic CSV report: a row for every occurrence of every method, each followed by the rows of its
/// events. Nothing is quoted or escaped.
namespace zeb::profiling {

/// Writes the line of the column titles.
void writeCsvColumns(std::ostream& out);

void writeInitCsv(std::ostream& out, const ReportSource& source);
void writeComposeGraphsCsv(std::ostream& out, const ReportSource& source);
void writeFinalizeCsv(std::ostream& out, const ReportSource& source);
void writeDeInitCsv(std::ostream& out, const ReportSource& source);
void writeExecuteIpsCsv(std::ostream& out, const ReportSource& source);
void writeLibLoadCsv(std::ostream& out, const ReportSource& source);
/// Writes the rows of a method that has statistics.
void writeMethodCsv(std::ostream& out, const ReportSource& source, const MethodForm& form);
void writeContextCsv(std::ostream& out, const ReportSource& source);

/// Writes the rows of the latest update, all that the log of an adapter updater has.
void writeUpdateBinarySectionCsv(std::ostream& out, const ReportSource& source);

}  // namespace zeb::profiling
