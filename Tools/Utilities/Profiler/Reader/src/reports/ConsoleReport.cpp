#include "reports/ConsoleReport.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "reports/ExecutionRate.h"
#include "reports/ReportForms.h"
#include "store/ContextMethods.h"
#include "store/Statistics.h"
#include "text/NumberText.h"
#include "text/Saturation.h"

namespace zeb::profiling {

void printInitStats(std::ostream& out, const ReportSource& source) {
    printSectionHead(out, heads::init);
    printTimeLine(out, source.store.initDurationUs);
    source.reader.printEvent(out, initSectionEvents(source.store), 1);
    out << '\n';
}

void printComposeGraphsStats(std::ostream& out, const ReportSource& source) {
    printSectionHead(out, heads::composeGraphs);
    printTimeLine(out, source.store.composeDurationUs);
    out << '\n';
}

namespace {

// One block for each graph: its head, its time, its events.
template <typename Entries>
void printGraphs(std::ostream& out, const ReportSource& source, const Entries& entries, bool withEvents) {
    std::size_t position = 0;
    for (const NamedMethodRecord& entry : entries) {
        printGraphHead(out, position++, entry.name);
        printTimeLine(out, entry.record->durationUs);
        if (withEvents) {
            source.reader.printEvent(out, entry.record->events, 1);
        }
        out << '\n';
    }
}

}  // namespace

void printFinalizeStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    printSectionHead(out, heads::finalize);
    printGraphs(out, source, store.finalizeRecords, store.hasFinalizeEvents);
    if (store.finalizeRecords.empty()) {
        out << '\n';
    }
}

void printStatisticsOverview(std::ostream& out, const ReportSource& source) {
    printSectionHead(out, heads::overview);
    printInitStats(out, source);
    printComposeGraphsStats(out, source);
    printFinalizeStats(out, source);
    printDeInitStats(out, source);
}

namespace {

void printContextBlock(std::ostream& out, std::string_view label, std::uint64_t durationUs) {
    out << label << ":\n";
    printTimeLine(out, durationUs);
    out << '\n';
}

}  // namespace

void printContextRetrievalStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasContextRetrieval) {
        return;
    }
    printSectionHead(out, heads::contextRetrieval);
    for (const NamedMethodRecord& entry : store.contextRetrieval) {
        printContextBlock(out, contextLabel(entry.name), entry.record->durationUs);
    }
}

void printContextSectionRetrievalStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasContextSectionRetrieval) {
        return;
    }
    const auto& [key, records] = store.contextSectionRetrieval[0];
    const std::string_view label = contextLabel(key);
    EventArena arena;
    const auto printBlock = [&](const SectionHead& head, const MethodRecord* record) {
        printSectionHead(out, head);
        printContextBlock(out, label, record->durationUs);
    };
    printBlock(heads::contextSectionAverage, averageRecords(records, arena));
    printBlock(heads::contextSectionMin, minRecord(records, arena));
    printBlock(heads::contextSectionMax, maxRecord(records, arena));
}

void printExecuteOverallStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasExecuteOverall ||
        store.executeOverallRecord.events.countByWalking() < executionRateEvents) {
        return;
    }
    printSectionHead(out, heads::executeOverall);
    indent(out, 1);
    out << "Marlix IPS (includes IO and misc. time): "
        << fixedPoint(static_cast<double>(executionRate(store.executeOverallRecord)), 4) << " inf/sec \n\n";
}

namespace {

std::uint64_t meanOf(const std::vector<std::uint64_t>& values) {
    const auto add = [](double sum, std::uint64_t value) { return sum + static_cast<double>(value); };
    const double sum = std::accumulate(values.begin(), values.end(), 0.0, add);
    return cutToWhole(sum / static_cast<double>(values.size()));
}

std::uint64_t queueWaitUs(const GraphQueueWaits& waits) {
    return meanOf(waits.queueWaits);
}
std::uint64_t queueWaitUs(const GraphQueueWait& wait) {
    return wait.queueWaitUs;
}

// The queue-wait list is empty, or it has the entries of the statistics list.
template <typename Waits>
void printExecuteStats(std::ostream& out, const ReportSource& source, const SectionHead& head,
                       const StatisticsList& entries, const std::vector<Waits>& waits) {
    printSectionHead(out, head);
    printSectionHead(out, heads::totalInferenceTime);
    if (entries.empty()) {
        out << '\n';
        return;
    }
    const bool isAsync = source.store.asyncExecute;
    for (std::size_t position = 0; position < entries.size(); ++position) {
        const auto& [name, record] = entries[position];
        printGraphHead(out, position, name);
        indent(out, 1);
        out << (isAsync ? "Marlix (Host Round-Trip): " : "Marlix: ") << record->durationUs << " us\n";
        if (isAsync && position < waits.size()) {
            indent(out, 1);
            out << "Marlix (Host Round-Trip excluding queue wait): "
                << record->durationUs - queueWaitUs(waits[position]) << '\n';
        }
        source.reader.printEvent(out, record->events, 1);
        out << '\n';
    }
}

void saveObjects(const EventList& events, ObjectFiles& files) {
    for (const ProfileEvent& event : events) {
        if (event.isObject()) {
            files.writeObjectFile(event);
        }
    }
}

// Those of an execution's events and of the events directly below them.
void saveObjectsOfExecutions(const EventStore& store, ObjectFiles& files) {
    for (const GraphMethodRecords& graph : store.executeRecords) {
        for (const MethodRecord& record : graph.records) {
            for (const ProfileEvent& event : record.events) {
                if (event.isObject()) {
                    files.writeObjectFile(event);
                }
                saveObjects(event.subEvents, files);
            }
        }
    }
}

}  // namespace

void printExecuteAverageStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    printExecuteStats(out, source, executeForm.average, store.executeAverage, store.executeQueueWaits);
    if (source.objectFiles != nullptr && !store.executeAverage.empty()) {
        saveObjectsOfExecutions(store, *source.objectFiles);
    }
}

void printExecuteMinStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    printExecuteStats(out, source, executeForm.min, store.executeMin, store.executeMinQueueWaits);
}

void printExecuteMaxStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    printExecuteStats(out, source, executeForm.max, store.executeMax, store.executeMaxQueueWaits);
}

void printLibLoadStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasLibLoad || store.libLoadRecord.events.empty()) {
        return;
    }
    printSectionHead(out, heads::libLoad);
    indent(out, 1);
    out << "Backend Latency: " << store.libLoadRecord.events.front().value().asNumber() << " us\n\n";
}

void printMethodStats(std::ostream& out, const ReportSource& source, const MethodForm& form,
                      const StatisticForm& statistic) {
    const EventStore& store = source.store;
    if (store.*form.isStored) {
        printSectionHead(out, form.*statistic.head);
        printGraphs(out, source, store.*(form.method.*statistic.records), true);
    }
}

void printUpdateBinarySectionStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasUpdateBinarySection) {
        return;
    }
    printSectionHead(out, heads::updateBinarySection);
    if (!store.updateBinarySectionRecords.empty()) {
        const MethodRecord& record = *store.updateBinarySectionRecords.front().record;
        printTimeLine(out, record.durationUs);
        source.reader.printEvent(out, record.events, 1);
        out << '\n';
    }
}

}  // namespace zeb::profiling
