#include "reports/ConsoleReport.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "reports/EventReport.h"
#include "reports/ExecutionRate.h"
#include "reports/ReportForms.h"
#include "store/Statistics.h"
#include "text/NumberText.h"
#include "text/Saturation.h"

namespace zeb::profiling {

namespace {

void printInitStats(std::ostream& out, const ReportSource& source) {
    printSectionHead(out, "Init Stats:", 11);
    printTimeLine(out, source.store.initDurationUs);
    printEvents(out, initSectionEvents(source.store), 1, source.objectFiles);
    out << '\n';
}

void printComposeGraphsStats(std::ostream& out, const ReportSource& source) {
    printSectionHead(out, "Compose Graphs Stats:", 14);
    printTimeLine(out, source.store.composeDurationUs);
    out << '\n';
}

// One block for each graph: its head, its time, its events.
template <typename Entries>
void printGraphs(std::ostream& out, const ReportSource& source, const Entries& entries, bool withEvents) {
    std::size_t position = 0;
    for (const NamedMethodRecord& entry : entries) {
        printGraphHead(out, position++, entry.name);
        printTimeLine(out, entry.record->durationUs);
        if (withEvents) {
            printEvents(out, entry.record->events, 1, source.objectFiles);
        }
        out << '\n';
    }
}

void printFinalizeStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    printSectionHead(out, "Finalize Stats:", 15);
    printGraphs(out, source, store.finalizeRecords, store.hasFinalizeEvents);
    if (store.finalizeRecords.empty()) {
        out << '\n';
    }
}

void printStatisticsOverview(std::ostream& out, const ReportSource& source) {
    printSectionHead(out, "Zeb Init/Prepare/Finalize/De-Init/Execute/Lib-Load Statistics:", 60);
    printInitStats(out, source);
    printComposeGraphsStats(out, source);
    printFinalizeStats(out, source);
    printDeInitStats(out, source);
}

void printContextBlock(std::ostream& out, std::string_view label, std::uint64_t durationUs) {
    out << label << ":\n";
    printTimeLine(out, durationUs);
    out << '\n';
}

void printContextRetrievalStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasContextRetrieval) {
        return;
    }
    printSectionHead(out, "Context Retrieval Stats:", 24);
    for (const NamedMethodRecord& entry : store.contextRetrieval) {
        const bool isSize = entry.name == "CONTEXT GET BINARY SIZE";
        printContextBlock(out, isSize ? "Get Binary Size" : "Get Binary", entry.record->durationUs);
    }
}

void printContextSectionRetrievalStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasContextSectionRetrieval) {
        return;
    }
    const RecordList& records = store.contextSectionRetrieval[0].records;
    EventArena arena;
    const auto printBlock = [&out](std::string_view title, std::size_t underline,
                                   const MethodRecord* record) {
        printSectionHead(out, title, underline);
        printContextBlock(out, "Get Binary Section Size", record->durationUs);
    };
    printBlock("Context Section Retrieval Stats (Average):", 47, averageRecords(records, arena));
    printBlock("Context Section Retrieval Stats (Min):", 42, minRecord(records, arena));
    printBlock("Context Section Retrieval Stats (Max):", 42, maxRecord(records, arena));
}

void printExecuteOverallStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasExecuteOverall || store.executeOverallRecord.events.size() < executionRateEvents) {
        return;
    }
    printSectionHead(out, "Execute Stats (Overall):", 24);
    indent(out, 1);
    out << "Marlix IPS (includes IO and misc. time): "
        << fixedPoint(static_cast<double>(executionRate(store.executeOverallRecord)), 4) << " inf/sec \n\n";
}

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
void printExecuteStats(std::ostream& out, const ReportSource& source, std::string_view title,
                       const BlockList<NamedMethodRecord>& entries, const std::vector<Waits>& waits) {
    printSectionHead(out, title, 24);
    printSectionHead(out, "Total Inference Time: ", 21);
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
        printEvents(out, record->events, 1, source.objectFiles);
        out << '\n';
    }
}

void saveObjects(const EventList& events, ObjectFiles& files) {
    for (const ProfileEvent& event : events) {
        if (event.isObject()) {
            files.write(event);
        }
    }
}

// Those of an execution's events and of the events directly below them.
void saveObjectsOfExecutions(const EventStore& store, ObjectFiles& files) {
    for (const GraphMethodRecords& graph : store.executeRecords) {
        for (const MethodRecord& record : graph.records) {
            for (const ProfileEvent& event : record.events) {
                if (event.isObject()) {
                    files.write(event);
                }
                saveObjects(event.subEvents, files);
            }
        }
    }
}

void printExecuteStatistics(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    printExecuteStats(out, source, "Execute Stats (Average):", store.executeAverage, store.executeQueueWaits);
    if (source.objectFiles != nullptr && !store.executeAverage.empty()) {
        saveObjectsOfExecutions(store, *source.objectFiles);
    }
    printExecuteStats(out, source, "Execute Stats (Min):", store.executeMin, store.executeMinQueueWaits);
    printExecuteStats(out, source, "Execute Stats (Max):", store.executeMax, store.executeMaxQueueWaits);
}

void printLibLoadStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasLibLoad || store.libLoadRecord.events.empty()) {
        return;
    }
    printSectionHead(out, "Dynamic Lib Load Stats:", 24);
    indent(out, 1);
    out << "Backend Latency: " << store.libLoadRecord.events[0].value().asNumber() << " us\n\n";
}

// A section that shows one statistics list, graph by graph.
struct StatisticsSection {
    std::string_view title;
    std::size_t underline;
    bool EventStore::*isPrinted;
    BlockList<NamedMethodRecord> EventStore::*entries;
};

constexpr std::array<StatisticsSection, 6> statisticsSections = {{
    {"ApplyBinarySection Stats (Average):", 35, &EventStore::hasApplyBinarySection,
     &EventStore::applyBinarySectionAverage},
    {"ApplyBinarySection Stats (Min):", 35, &EventStore::hasApplyBinarySection,
     &EventStore::applyBinarySectionMin},
    {"ApplyBinarySection Stats (Max):", 35, &EventStore::hasApplyBinarySection,
     &EventStore::applyBinarySectionMax},
    {"FinalizeAfterTensorUpdates Stats (Average):", 45, &EventStore::hasFinalizeAfterTensorUpdates,
     &EventStore::finalizeAfterTensorUpdatesAverage},
    {"FinalizeAfterTensorUpdates Stats (Min):", 40, &EventStore::hasFinalizeAfterTensorUpdates,
     &EventStore::finalizeAfterTensorUpdatesMin},
    {"FinalizeAfterTensorUpdates Stats (Max):", 40, &EventStore::hasFinalizeAfterTensorUpdates,
     &EventStore::finalizeAfterTensorUpdatesMax},
}};

}  // namespace

void printConsoleReport(std::ostream& out, const ReportSource& source) {
    printStatisticsOverview(out, source);
    printContextRetrievalStats(out, source);
    printContextSectionRetrievalStats(out, source);
    printExecuteOverallStats(out, source);
    printExecuteStatistics(out, source);
    printLibLoadStats(out, source);
    for (const StatisticsSection& section : statisticsSections) {
        if (source.store.*section.isPrinted) {
            printSectionHead(out, section.title, section.underline);
            printGraphs(out, source, source.store.*section.entries, true);
        }
    }
}

void printUpdateBinarySectionStats(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.hasUpdateBinarySection) {
        return;
    }
    printSectionHead(out, "UpdateBinarySection Stats:", 32);
    if (!store.updateBinarySectionRecords.empty()) {
        const MethodRecord& record = *store.updateBinarySectionRecords.front().record;
        printTimeLine(out, record.durationUs);
        printEvents(out, record.events, 1, source.objectFiles);
        out << '\n';
    }
}

}  // namespace zeb::profiling
