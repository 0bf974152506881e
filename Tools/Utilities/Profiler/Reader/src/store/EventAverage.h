#pragma once

#include "store/EventArena.h"
#include "store/MethodRecord.h"

namespace zeb::profiling {

/// Merges the event lists of records by name, level by level, into one list of mean values: each value
/// divided by the number of values in it, integers cut. The work is in proportion to the events of the lists,
/// however wide they are.
///
/// An event is added to the first event of its name that earlier lists have left; without one it takes its
/// place at the end. Integers, and events without a value, add up as unsigned 64-bit numbers that wrap;
/// floats add up with floats, doubles with doubles; any other pair keeps the later value. An object event
/// does not start an entry of the list, but goes along below an event that does.
///
/// @param records have events that were made in `arena`, all with a name that it keeps once
/// @return a list made in `arena`, which shares what stayed as it was with `records`
/// @throws std::bad_alloc
EventList averageEvents(const RecordList& records, EventArena& arena);

}  // namespace zeb::profiling
