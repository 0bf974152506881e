#include "store/Statistics.h"

#include <vector>

#include "store/EventAverage.h"

namespace zeb::profiling {

MethodRecord averageRecords(std::span<const MethodRecord> records, EventArena& arena) {
    MethodRecord average;
    std::vector<EventList> lists;
    lists.reserve(records.size());
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
    for (const MethodRecord& record : records) {
        sum += record.durationUs;
        count += record.durationUs != 0 ? 1 : 0;
        average.timestamp = record.timestamp;
        if (!record.events.empty()) {
            lists.push_back(record.events);
        }
    }
    average.durationUs = count == 0 ? 0 : sum / count;
    average.events = averageEvents(lists, arena);
    return average;
}

MethodRecord maxRecord(std::span<const MethodRecord> records) {
    MethodRecord longest;
    for (const MethodRecord& record : records) {
        if (record.durationUs >= longest.durationUs) {
            longest = record;
        }
    }
    longest.message = {};
    return longest;
}

MethodRecord minRecord(std::span<const MethodRecord> records) {
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
