#pragma once

#include "store/EventArena.h"
#include "store/MethodRecord.h"

/// Statistics over the occurrences of a method. Each gives a record whose `message` is empty, which is one of
/// the occurrences where that is the same; over no records it is all zero. All throw `std::bad_alloc`.
namespace zeb::profiling {

/// The mean duration of the records whose duration is not 0, cut to whole us; the timestamp of the last
/// record; and the events of all records, merged by name, each with the mean of its values.
/// @param arena takes what is made; the events of the records, if they have any, have to be its own
const MethodRecord* averageRecords(const RecordList& records, EventArena& arena);

/// The longest record, the last one of equals.
const MethodRecord* maxRecord(const RecordList& records, EventArena& arena);

/// The shortest record whose duration is not 0, the last one of equals. When all are 0 it is all zero.
const MethodRecord* minRecord(const RecordList& records, EventArena& arena);

}  // namespace zeb::profiling
