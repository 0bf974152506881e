#include "store/Aggregation.h"

#include <ostream>
#include <string_view>
#include <utility>

#include "logging/Logger.h"
#include "store/QueueWait.h"
#include "store/Statistics.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view multipleQueueWaits =
    "Multiple queue-wait time events found per execution. Cannot calculate Host Round-Trip excluding queue "
    "wait\n";

void noteMissingQueueWait(const QueueWait& wait, std::ostream& notes, const char* noneFound) {
    if (wait.count > 1) {
        notes << multipleQueueWaits;
    } else {
        logMessage(ZEB_LOG_LEVEL_DEBUG, noneFound);
    }
}

}  // namespace

// Graph by graph, since a graph's records lie apart from those of the others.
void aggregate(const GraphRecordList& graphs, StatisticsList& average, StatisticsList& max,
               StatisticsList& min, EventArena& arena) {
    for (const GraphMethodRecords& graph : graphs) {
        average.add({graph.graphName, averageRecords(graph.records, arena)});
        max.add({graph.graphName, maxRecord(graph.records, arena)});
        min.add({graph.graphName, minRecord(graph.records, arena)});
    }
}

std::vector<GraphQueueWaits> queueWaitsOfAll(const GraphRecordList& graphs, std::ostream& notes) {
    std::vector<GraphQueueWaits> all;
    for (const GraphMethodRecords& graph : graphs) {
        GraphQueueWaits waits{graph.graphName, {}};
        waits.queueWaits.reserve(graph.records.countByWalking());
        for (const MethodRecord& record : graph.records) {
            const QueueWait wait = queueWaitOf(record.events);
            if (wait.count != 1) {
                noteMissingQueueWait(wait, notes, "No queue-wait time event found per execution.");
                return {};
            }
            waits.queueWaits.push_back(wait.lastUs);
        }
        all.push_back(std::move(waits));
    }
    return all;
}

std::vector<GraphQueueWait> queueWaitsOfEach(const StatisticsList& records, std::ostream& notes,
                                             const char* noneFound) {
    std::vector<GraphQueueWait> waits;
    for (const NamedMethodRecord& entry : records) {
        const QueueWait wait = queueWaitOf(entry.record->events);
        if (wait.count != 1) {
            noteMissingQueueWait(wait, notes, noneFound);
            return {};
        }
        waits.push_back({entry.name, wait.lastUs});
    }
    return waits;
}

}  // namespace zeb::profiling
