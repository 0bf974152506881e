#pragma once

#include <ostream>

#include "reader/backend/BackendFigures.h"
#include "store/EventStore.h"

/// The backend's sections of the report that are no table of layers. None changes what it prints.
namespace zeb::profiling {

void printBackendInitStats(std::ostream& out, const EventStore& store);
void printBackendFinalizeStats(std::ostream& out, const EventStore& store);
void printExecutionStats(std::ostream& out, const EventStore& store, const BackendFigures& figures);
void writeExecutionCsv(std::ostream& out, const BackendFigures& figures);

}  // namespace zeb::profiling
