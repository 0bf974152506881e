#pragma once

#include <iosfwd>
#include <vector>

#include "store/EventArena.h"
#include "store/MethodRecord.h"

/// What is derived from the records after the last message. All throw `std::bad_alloc`.
namespace zeb::profiling {

/// Adds the statistics of a method's records, an entry for each graph.
/// @param arena that of the records
void aggregate(const GraphRecordList& graphs, StatisticsList& average, StatisticsList& max,
               StatisticsList& min, EventArena& arena);

/// @return the queue waits of each execution, graph by graph; nothing when one has not exactly one, which is
///         told: several of them to the user, none to the log
/// @param notes receives what is to be told to the user, whole lines
std::vector<GraphQueueWaits> queueWaitsOfAll(const GraphRecordList& graphs, std::ostream& notes);

/// @return the queue wait of each execution of a statistics list; nothing as above
/// @param noneFound is logged of an execution without one
std::vector<GraphQueueWait> queueWaitsOfEach(const StatisticsList& records, std::ostream& notes,
                                             const char* noneFound);

}  // namespace zeb::profiling
