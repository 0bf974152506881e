#pragma once

#include <iosfwd>

#include "reports/MethodForms.h"
#include "reports/ReportSource.h"

/// The sections of the generic console report. One of a method that the log has no message of writes nothing,
/// or its head.
namespace zeb::profiling {

/// Writes the head over the sections of Init, ComposeGraphs, Finalize and De-Init, and these.
void printStatisticsOverview(std::ostream& out, const ReportSource& source);
void printInitStats(std::ostream& out, const ReportSource& source);
void printComposeGraphsStats(std::ostream& out, const ReportSource& source);
void printFinalizeStats(std::ostream& out, const ReportSource& source);

void printContextRetrievalStats(std::ostream& out, const ReportSource& source);
void printContextSectionRetrievalStats(std::ostream& out, const ReportSource& source);
void printExecuteOverallStats(std::ostream& out, const ReportSource& source);

/// Saves the objects of all executions besides, those of an execution's events and of the events right below.
void printExecuteAverageStats(std::ostream& out, const ReportSource& source);
void printExecuteMinStats(std::ostream& out, const ReportSource& source);
void printExecuteMaxStats(std::ostream& out, const ReportSource& source);
void printLibLoadStats(std::ostream& out, const ReportSource& source);

/// Writes a section of another method with statistics.
void printMethodStats(std::ostream& out, const ReportSource& source, const MethodForm& form,
                      const StatisticForm& statistic);

/// Writes the one section that the log of an adapter updater has.
void printUpdateBinarySectionStats(std::ostream& out, const ReportSource& source);

}  // namespace zeb::profiling
