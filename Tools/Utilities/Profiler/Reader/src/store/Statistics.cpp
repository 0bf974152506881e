#include "store/Statistics.h"

#include "store/EventAverage.h"

namespace zeb::profiling {

MethodRecord averageRecords(const RecordList& records, EventArena& arena) {
    MethodRecord average;
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
    for (const MethodRecord& record : records) {
        sum += record.durationUs;
        count += record.durationUs != 0 ? 1 : 0;
        average.timestamp = record.timestamp;
    }
    average.durationUs = count == 0 ? 0 : sum / count;
    average.events = averageEvents(records, arena);
    return average;
}

MethodRecord maxRecord(const RecordList& records) {
    MethodRecord longest;
    for (const MethodRecord& record : records) {
        if (record.durationUs >= longest.durationUs) {
            longest = record;
        }
    }
    longest.message = {};
    return longest;
}

MethodRecord minRecord(const RecordList& records) {
    MethodRecord shortest;
    for (const MethodRecord& record : records) {
        if (record.durationUs != 0 &&
            (shortest.durationUs == 0 || record.durationUs <= shortest.durationUs)) {
            shortest = record;
        }
    }
    shortest.message = {};
    return shortest;
}

}  // namespace zeb::profiling
