// What is derived from the records after the last message.

#include <ostream>
#include <string_view>
#include <utility>
#include <vector>

#include "logging/Logger.h"
#include "store/EventStore.h"
#include "store/QueueWait.h"
#include "store/Statistics.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view multipleQueueWaits =
    "Multiple queue-wait time events found per execution. Cannot calculate Host Round-Trip excluding queue "
    "wait\n";

// Graph by graph, since a graph's records lie apart from those of the others.
void aggregate(const GraphRecordList& graphs, EventArena& arena, BlockList<NamedMethodRecord>& averages,
               BlockList<NamedMethodRecord>& maxima, BlockList<NamedMethodRecord>& minima) {
    for (const GraphMethodRecords& graph : graphs) {
        averages.add({graph.graphName, averageRecords(graph.records, arena)});
        maxima.add({graph.graphName, maxRecord(graph.records, arena)});
        minima.add({graph.graphName, minRecord(graph.records, arena)});
    }
}

void tellMissingQueueWait(const QueueWait& wait, std::ostream& notes, const char* noneFound) {
    if (wait.count > 1) {
        notes << multipleQueueWaits;
    } else {
        logMessage(ZEB_LOG_LEVEL_DEBUG, noneFound);
    }
}

std::vector<GraphQueueWaits> queueWaitsOfAll(const GraphRecordList& graphs, std::ostream& notes) {
    std::vector<GraphQueueWaits> all;
    for (const GraphMethodRecords& graph : graphs) {
        GraphQueueWaits waits{graph.graphName, {}};
        waits.queueWaits.reserve(graph.records.size());
        for (const MethodRecord& record : graph.records) {
            const QueueWait wait = queueWaitOf(record.events);
            if (wait.count != 1) {
                tellMissingQueueWait(wait, notes, "No queue-wait time event found per execution.");
                return {};
            }
            waits.queueWaits.push_back(wait.lastUs);
        }
        all.push_back(std::move(waits));
    }
    return all;
}

std::vector<GraphQueueWait> queueWaitsOfEach(const BlockList<NamedMethodRecord>& records, std::ostream& notes,
                                             const char* noneFound) {
    std::vector<GraphQueueWait> waits;
    for (const NamedMethodRecord& entry : records) {
        const QueueWait wait = queueWaitOf(entry.record->events);
        if (wait.count != 1) {
            tellMissingQueueWait(wait, notes, noneFound);
            return {};
        }
        waits.push_back({entry.name, wait.lastUs});
    }
    return waits;
}

}  // namespace

void EventStore::aggregateStatistics(std::ostream& notes) {
    aggregate(executeRecords, arena_, executeAverage, executeMax, executeMin);
    aggregate(applyBinarySectionRecords, arena_, applyBinarySectionAverage, applyBinarySectionMax,
              applyBinarySectionMin);
    aggregate(finalizeAfterTensorUpdatesRecords, arena_, finalizeAfterTensorUpdatesAverage,
              finalizeAfterTensorUpdatesMax, finalizeAfterTensorUpdatesMin);
    if (asyncExecute) {
        aggregateQueueWaits(notes);
    }
    aggregateInitRow();
}

void EventStore::aggregateQueueWaits(std::ostream& notes) {
    executeQueueWaits = queueWaitsOfAll(executeRecords, notes);
    executeMaxQueueWaits =
        queueWaitsOfEach(executeMax, notes, "No max queue-wait time event found per execution.");
    executeMinQueueWaits =
        queueWaitsOfEach(executeMin, notes, "No min queue-wait time event found per execution.");
}

void EventStore::aggregateInitRow() {
    if (hasInitRecord) {
        initTimestamp = initRecord.timestamp;
        initDurationUs = initRecord.durationUs;
    } else if (hasFinalize) {
        initTimestamp = initStepTimestamp;
        initDurationUs = composeDurationUs + initStepDurationUs;
        for (const NamedMethodRecord& entry : finalizeRecords) {
            initDurationUs += entry.record->durationUs;
        }
    }
}

}  // namespace zeb::profiling
