#pragma once

#include <ostream>

#include "reader/backend/BackendFigures.h"

/// The lines of one execution's times, which console and CSV take from one table.
namespace zeb::profiling {

void printExecutionLines(std::ostream& out, const BackendFigures& figures);
void writeExecutionLinesCsv(std::ostream& out, const BackendFigures& figures);

/// @return whether there is a line of a tensor copy or of the IPC time. The console has the fields of all its
///         tables on the left then, else on the right.
bool hasDetailLine(const ExecutionFigures& execution);

}  // namespace zeb::profiling
