#pragma once

#include <ostream>

#include "reader/backend/BackendFigures.h"
#include "text/TableText.h"

/// The lines of one execution's times, which console and CSV take from one table.
namespace zeb::profiling {

void printExecutionLines(std::ostream& out, const BackendFigures& figures);
void writeExecutionLinesCsv(std::ostream& out, const BackendFigures& figures);

/// @return the side that the console has the fields of its tables on: the left behind a line of a tensor copy
///         or of the IPC time
Alignment tableAlignment(const ExecutionFigures& execution);

}  // namespace zeb::profiling
