#include "store/Statistics.h"

#include <cstdint>
#include <iterator>

#include "store/EventAverage.h"

namespace zeb::profiling {

namespace {

const MethodRecord* withoutMessage(const MethodRecord& record, EventArena& arena) {
    if (record.message.empty()) {
        return &record;
    }
    MethodRecord copy = record;
    copy.message = {};
    return arena.make(copy);
}

}  // namespace

const MethodRecord* averageRecords(const RecordList& records, EventArena& arena) {
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
    // Of a single record, `averageEvents` gives the very list where there is nothing to leave out.
    const auto first = records.begin();
    const bool isOnlyOne = first != records.end() && std::next(first) == records.end();
    return isOnlyOne && average.events.begin() == first->events.begin() ? withoutMessage(*first, arena)
                                                                        : arena.make(average);
}

const MethodRecord* maxRecord(const RecordList& records, EventArena& arena) {
    const MethodRecord* longest = &noRecord;
    for (const MethodRecord& record : records) {
        if (record.durationUs >= longest->durationUs) {
            longest = &record;
        }
    }
    return withoutMessage(*longest, arena);
}

const MethodRecord* minRecord(const RecordList& records, EventArena& arena) {
    const MethodRecord* shortest = &noRecord;
    for (const MethodRecord& record : records) {
        if (record.durationUs != 0 &&
            (shortest->durationUs == 0 || record.durationUs <= shortest->durationUs)) {
            shortest = &record;
        }
    }
    return withoutMessage(*shortest, arena);
}

}  // namespace zeb::profiling
