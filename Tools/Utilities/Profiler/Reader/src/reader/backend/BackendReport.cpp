#include "reader/backend/BackendReport.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reader/backend/ExecutionLines.h"
#include "reports/EventReport.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

// The lines that the reader's `printEvent` writes, but no object goes to a file, whatever the host asked for.
void printBackendEvents(std::ostream& out, const EventList& events, std::uint64_t level) {
    for (const ProfileEvent& event : events) {
        if (!event.isObject()) {
            printEventLine(out, event, level);
        }
        printBackendEvents(out, event.subEvents, level + 1);
    }
}

std::string_view levelLabel(ProfileLevel level) {
    switch (level) {
        case ProfileLevel::detailed:
            return "Detailed";
        case ProfileLevel::internal:
            return "Internal";
        case ProfileLevel::basic:
            break;
    }
    return "Basic";
}

}  // namespace

void printBackendInitStats(std::ostream& out, const EventStore& store) {
    printSectionHead(out, heads::init);
    printTimeLine(out, store.initDurationUs);
    printBackendEvents(out, initSectionEvents(store), 1);
    out << '\n';
}

void printBackendFinalizeStats(std::ostream& out, const EventStore& store) {
    printSectionHead(out, heads::finalize);
    if (store.finalizeRecords.empty()) {
        out << '\n';
        return;
    }
    std::size_t position = 0;
    for (const auto& [name, record] : store.finalizeRecords) {
        printGraphHead(out, position++, name);
        if (store.hasFinalizeEvents) {
            printBackendEvents(out, record->events, 1);
        }
        out << '\n';
    }
}

void printExecutionStats(std::ostream& out, const EventStore& store, const BackendFigures& figures) {
    printSectionHead(out, heads::backendExecution);
    if (!figures.execution.hasAverage) {
        out << '\n';
        return;
    }
    std::size_t position = 0;
    for (const auto& [name, record] : store.executeAverage) {
        printGraphHead(out, position++, name);
        if (!store.asyncExecute) {
            printTimeLine(out, record->durationUs);
        }
    }
    printExecutionLines(out, figures);
}

void writeExecutionCsv(std::ostream& out, const BackendFigures& figures) {
    out << "Profile Level, " << levelLabel(figures.profileLevel) << '\n';
    writeExecutionLinesCsv(out, figures);
}

}  // namespace zeb::profiling
