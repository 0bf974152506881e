#pragma once

#include "store/EventArena.h"
#include "store/MethodRecord.h"

/// Statistics over the occurrences of a method. Each gives a record of its own whose `message` is empty; over
/// no records it is all zero. All throw `std::bad_alloc`.
namespace zeb::profiling {

/// The mean duration of the records whose duration is not 0, cut to whole us; the timestamp of the last
/// record; and the events of all records, merged by name, each with the mean of its values.
/// @param arena holds the events of the records, and takes the merged ones
MethodRecord averageRecords(const RecordList& records, EventArena& arena);

/// The longest record, the last one of equals.
MethodRecord maxRecord(const RecordList& records);

/// The shortest record whose duration is not 0, the last one of equals. When all are 0 it is all zero.
MethodRecord minRecord(const RecordList& records);

}  // namespace zeb::profiling
