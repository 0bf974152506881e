// The timing sections of the backend's report: Init, Finalize and Execution, and the Execution lines of its
// CSV form.

#include <algorithm>
#include <array>
#include <iomanip>
#include <iterator>

#include "logging/Logger.h"
#include "reader/backend/BackendReport.h"
#include "reader/backend/CheckedNumbers.h"
#include "reports/EventText.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view graphProfileName = "Graph Execute Profile Data";
constexpr std::array<std::string_view, 2> queueWaitNames = {"graphQueueWaitUs", "dispatcherQueueWaitUs"};
constexpr std::array<std::string_view, 2> tensorCopyNames = {"Input Tensor Copy Time",
                                                             "Output Tensor Copy Time"};
constexpr int detailLabelWidth = 25;
constexpr double hzPerMhz = 1000000.0;

std::uint64_t differenceOrZero(std::uint64_t larger, std::uint64_t smaller) {
    return larger > smaller ? larger - smaller : 0;
}

// Shows events like `printEvent`, but never saves an object.
void printBackendEvents(std::ostream& out, const EventList& events, std::uint64_t level) {
    for (const ProfileEvent& event : events) {
        if (!event.isObject()) {
            printEventLine(out, event, level);
        }
        printBackendEvents(out, event.subEvents, level + 1);
    }
}

// Depth first, parents before children.
void collectObjectEvents(const EventList& events, std::vector<ProfileEvent>& objects) {
    for (const ProfileEvent& event : events) {
        if (event.isObject()) {
            objects.push_back(event);
        }
        collectObjectEvents(event.subEvents, objects);
    }
}

// Leaves the stream left-aligned with precision 3.
template <typename Value>
void printDetailLine(std::ostream& out, std::string_view name, const Value& value) {
    indent(out, 3);
    out << std::left << std::setfill(' ') << std::setprecision(3) << std::setw(detailLabelWidth)
        << std::string(name).append(": ") << value << " us\n";
}

void printClockLine(std::ostream& out, std::string_view label, std::uint32_t hz, std::uint32_t mhz) {
    indent(out, 3);
    out << label << hz << " (" << mhz << " MHz) \n";
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

void BackendReport::printBackendInitStats(std::ostream& out) {
    printSectionHead(out, "Init Stats:", 11);
    printTimeLine(out, store_.initDurationUs);
    const EventList events = initSectionEvents(store_);
    printBackendEvents(out, events, 1);
    out << '\n';
    std::vector<ProfileEvent> objects;
    collectObjectEvents(events, objects);
    if (objects.size() >= 2) {
        loadNodeMapping(objects[0], objects[1]);
    } else if (objects.size() == 1) {
        logMessage(ZEB_LOG_LEVEL_WARN, "Expected 2 opaque objects for node mapping, got 1; skipping.");
    }
}

void BackendReport::loadNodeMapping(const ProfileEvent& mappingEvent, const ProfileEvent& namesEvent) {
    zebLayers_ = gatherZebLayers(readNodeMapping(mappingEvent.objectBytes(), namesEvent.objectBytes()));
    for (const ZebLayer& layer : zebLayers_.layers) {
        maxZebLayerNameLength_ = std::max(maxZebLayerNameLength_, layer.name.size());
    }
    zebNameColumnWidth_ = maxZebLayerNameLength_;
}

void BackendReport::printBackendFinalizeStats(std::ostream& out) {
    printSectionHead(out, "Finalize Stats:", 15);
    if (store_.finalizeRecords.empty()) {
        out << '\n';
        return;
    }
    std::vector<ProfileEvent> objects;
    std::size_t position = 0;
    for (const auto& [name, record] : store_.finalizeRecords) {
        printGraphHead(out, position++, name);
        if (store_.hasFinalizeEvents) {
            printBackendEvents(out, record->events, 1);
            collectObjectEvents(record->events, objects);
        }
        out << '\n';
    }
    if (!objects.empty()) {
        loadLayerConfig(objects.front());
    }
}

void BackendReport::loadLayerConfig(const ProfileEvent& event) {
    layerConfig_ = readLayerConfig(event.objectBytes(), hasLayers());
}

void BackendReport::printExecutionStats(std::ostream& out) {
    printSectionHead(out, "Execution Stats (Average):", 21);
    if (store_.executeAverage.empty()) {
        out << '\n';
        // A log that failed to load has executions without an average; the CSV form names their tensor
        // copies.
        for (const std::string_view name : tensorCopyNames) {
            if (findExecuteEventValue(name)) {
                tensorCopies_.push_back({name, 0.0});
            }
        }
        return;
    }
    std::size_t position = 0;
    for (const auto& [name, record] : store_.executeAverage) {
        printGraphHead(out, position++, name);
        if (!store_.asyncExecute) {
            printTimeLine(out, record->durationUs);
        }
    }
    loadGraphProfiles();
    workOutExecutionFigures();
    if (backendExecuteUs_) {
        if (store_.asyncExecute) {
            printTimeLine(out,
                          differenceOrZero(store_.executeAverage.back().record->durationUs, queueWaitUs_));
        }
        indent(out, 2);
        out << "Backend (" << apiName() << "): " << differenceOrZero(*backendExecuteUs_, queueWaitUs_)
            << " us\n";
    }
    for (const TensorCopy& copy : tensorCopies_) {
        printDetailLine(out, copy.name, copy.timeUs);
    }
    if (ipcTimeUs_ != 0) {
        printDetailLine(out, "IPC Time", ipcTimeUs_);
    }
    indent(out, 3);
    out << "Accelerator Time:        " << perExecution(graphProfile_.acceleratorTimeUs) << " us\n";
    indent(out, 3);
    out << "Execution Count:         " << graphProfile_.executionCount << '\n';
    printClockLine(out, "ADSP Clock Freq:         ", layerConfig_.dspClockHz, dspClockMhz_);
    printClockLine(out, "Krel Clock Freq:         ", layerConfig_.krelClockHz, krelClockMhz_);
}

// Only objects directly below the events of an execution count.
void BackendReport::loadGraphProfiles() {
    if (!store_.mayHaveEvent(graphProfileName)) {
        return;
    }
    std::vector<const ProfileEvent*> objects;
    for (const GraphMethodRecords& graph : store_.executeRecords) {
        for (const MethodRecord& record : graph.records) {
            for (const ProfileEvent& event : record.events) {
                for (const ProfileEvent& subEvent : event.subEvents) {
                    if (subEvent.isObject() && subEvent.name == graphProfileName) {
                        objects.push_back(&subEvent);
                    }
                }
            }
        }
    }
    if (objects.empty()) {
        return;
    }
    const auto hlosText = findExecuteEventValue("HLOS Graph Execution Time");
    const auto hlosTimeUs = hlosText ? std::optional(checkedUnsigned64(*hlosText)) : std::nullopt;
    for (const ProfileEvent* const object : objects) {
        loadGraphProfile(*object, hlosTimeUs);
    }
    layerStats_ = computeLayerStats(graphProfile_, layerConfig_);
}

// The totals of the last profile stand; the layers of all of them follow one another.
void BackendReport::loadGraphProfile(const ProfileEvent& event, std::optional<std::uint64_t> hlosTimeUs) {
    std::vector<LayerRecord> layerRecords = std::move(graphProfile_.layerRecords);
    graphProfile_ = readGraphProfile(event.objectBytes(), hasLayers());
    if (!layerRecords.empty()) {
        layerRecords.insert(layerRecords.end(), graphProfile_.layerRecords.begin(),
                            graphProfile_.layerRecords.end());
        graphProfile_.layerRecords = std::move(layerRecords);
    }
    if (hlosTimeUs) {
        ipcTimeUs_ =
            cutToWhole(averagePerExecution(differenceOrZero(*hlosTimeUs, graphProfile_.dspGraphTimeUs)));
        if (const auto logger = loggerFor(ZEB_LOG_LEVEL_INFO)) {
            logMessage(*logger, ZEB_LOG_LEVEL_INFO, "dsp graph exec time is %u",
                       static_cast<unsigned>(graphProfile_.dspGraphTimeUs));
        }
    }
}

void BackendReport::workOutExecutionFigures() {
    dspClockMhz_ = static_cast<std::uint32_t>(layerConfig_.dspClockHz / hzPerMhz);
    krelClockMhz_ = static_cast<std::uint32_t>(layerConfig_.krelClockHz / hzPerMhz);
    if (store_.asyncExecute) {
        for (const std::string_view name : queueWaitNames) {
            if (const auto text = findExecuteEventValue(name)) {
                queueWaitUs_ += perExecution(checkedUnsigned64(*text));
            }
        }
    }
    if (const auto text = findExecuteEventValue(apiName())) {
        backendExecuteUs_ = perExecution(checkedUnsigned64(*text));
    }
    for (const std::string_view name : tensorCopyNames) {
        if (const auto text = findExecuteEventValue(name)) {
            tensorCopies_.push_back({name, averagePerExecution(checkedUnsigned64(*text))});
        }
    }
}

std::uint64_t BackendReport::perExecution(std::uint64_t total) const {
    return graphProfile_.executionCount == 0 ? 0 : total / graphProfile_.executionCount;
}

double BackendReport::averagePerExecution(std::uint64_t total) const {
    return graphProfile_.executionCount == 0 ? 0.0
                                             : static_cast<double>(total) / graphProfile_.executionCount;
}

std::string_view BackendReport::apiName() const {
    return store_.asyncExecute ? "ZebGraph_executeAsync" : "ZebGraph_execute";
}

// The separators differ from line to line and are part of the format.
void BackendReport::writeExecutionCsv(std::ostream& out) const {
    out << "Profile Level, " << levelLabel(profileLevel_) << '\n';
    if (const auto durationUs = singleGraphDuration()) {
        out << "Marlix, " << differenceOrZero(*durationUs, queueWaitUs_) << " us\n";
    }
    out << "Backend (" << apiName() << "), " << differenceOrZero(backendExecuteUs_.value_or(0), queueWaitUs_)
        << " us\n";
    for (const TensorCopy& copy : tensorCopies_) {
        out << copy.name << ", " << std::setprecision(3) << copy.timeUs << " us\n";
    }
    if (ipcTimeUs_ != 0) {
        out << "IPC Time," << ipcTimeUs_ << " us\n";
    }
    out << "Accelerator Time," << perExecution(graphProfile_.acceleratorTimeUs) << " us\n"
        << "Execution Count," << graphProfile_.executionCount << '\n'
        << "ADSP Clock Freq (Hz)," << layerConfig_.dspClockHz << " (" << dspClockMhz_ << " MHz) \n"
        << "Krel Clock Freq (Hz)," << layerConfig_.krelClockHz << " (" << krelClockMhz_ << " MHz) \n";
}

}  // namespace zeb::profiling
