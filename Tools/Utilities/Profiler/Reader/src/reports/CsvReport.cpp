#include "reports/CsvReport.h"

#include <ostream>
#include <string>
#include <string_view>

#include "log/Methods.h"
#include "reports/ExecutionRate.h"
#include "reports/ReportForms.h"
#include "text/NumberText.h"

namespace zeb::profiling {

namespace {

using schema::MethodType;

constexpr std::string_view columnLine =
    "Msg Timestamp, Message, Time, Unit of Measurement, Timing Source, Event Level, Event Identifier\n";

constexpr std::string_view marlixUs = ",US,MARLIX,ROOT,";
constexpr std::string_view labuUs = ",US,LABU,ROOT,";

std::string textOrNull(std::string_view text, std::string_view suffix = {}) {
    return text.empty() ? "null" : std::string(text).append(suffix);
}

std::string graphIdentifier(std::size_t position, std::string_view text) {
    return "Graph " + std::to_string(position) + ": " + std::string(text);
}

constexpr std::string_view nameOf(MethodType method) {
    return methodOf(method).csvName;
}

void writeMethodRow(std::ostream& out, std::uint64_t timestamp, std::string_view keyword,
                    std::uint64_t durationUs, std::string_view identifier,
                    std::string_view source = marlixUs) {
    out << timestamp << ',' << keyword << ',' << durationUs << source << identifier << '\n';
}

}  // namespace

void writeCsvColumns(std::ostream& out) {
    out << columnLine;
}

void writeInitCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    writeMethodRow(out, store.initTimestamp, nameOf(MethodType::Init), store.initDurationUs,
                   textOrNull(store.initStepMessage, " (init)"));
    source.reader.writeEventCsv(out, initSectionEvents(store), store.initTimestamp, "INIT");
}

void writeComposeGraphsCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    out << store.composeTimestamp << ',' << nameOf(MethodType::ComposeGraphs) << ','
        << store.composeDurationUs << marlixUs;
    std::string_view between;
    for (const StoredText name : store.composeGraphNames) {
        out << between << name;
        between = "; ";
    }
    out << (store.composeGraphNames.empty() ? "null\n" : "\n");
}

void writeFinalizeCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    const std::string eventMessage = "FINALIZE";
    std::size_t position = 0;
    for (const auto& [name, record] : store.finalizeRecords) {
        writeMethodRow(out, record->timestamp, nameOf(MethodType::Finalize), record->durationUs,
                       graphIdentifier(position++, name));
        if (store.hasFinalizeEvents) {
            source.reader.writeEventCsv(out, record->events, record->timestamp, eventMessage);
        }
    }
}

void writeDeInitCsv(std::ostream& out, const ReportSource& source) {
    const MethodRecord& record = source.store.deInitRecord;
    writeMethodRow(out, record.timestamp, nameOf(MethodType::DeInit), record.durationUs,
                   textOrNull(record.message, " (deinit)"));
    source.reader.writeEventCsv(out, record.events, record.timestamp, "DE-INIT");
}

// A row for every record of every graph.
void writeMethodCsv(std::ostream& out, const ReportSource& source, const MethodForm& form) {
    const GraphRecordList& graphs = source.store.*form.method.records;
    const std::string eventMessage(form.csvEventMessage);
    for (std::size_t position = 0; position < graphs.size(); ++position) {
        const GraphMethodRecords& graph = graphs[position];
        for (const MethodRecord& record : graph.records) {
            const StoredText& text = form.csvShowsMessage ? record.message : graph.graphName;
            writeMethodRow(out, record.timestamp, form.csvMessage, record.durationUs,
                           graphIdentifier(position, text));
            source.reader.writeEventCsv(out, record.events, record.timestamp, eventMessage);
        }
    }
}

void writeExecuteIpsCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    const MethodRecord& record = store.executeOverallRecord;
    if (store.hasExecuteOverall && record.events.countByWalking() >= executionRateEvents) {
        out << record.timestamp << ',' << nameOf(MethodType::ExecuteOverall) << ','
            << fixedPoint(static_cast<double>(executionRate(record)), 6) << ",INF/SEC,MARLIX,ROOT,null\n";
    }
}

void writeLibLoadCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    const MethodRecord& record = store.libLoadRecord;
    if (store.hasLibLoad && !record.events.empty()) {
        writeMethodRow(out, record.timestamp, nameOf(MethodType::DynamicLibLoad),
                       record.events.front().value().asNumber(), "null");
    }
}

void writeContextCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    for (const auto& [key, record] : store.contextRetrieval) {
        writeMethodRow(out, record->timestamp, key, record->durationUs, textOrNull(record->message));
    }
    for (const GraphMethodRecords& entry : store.contextSectionRetrieval) {
        for (const MethodRecord& record : entry.records) {
            writeMethodRow(out, record.timestamp, entry.graphName, record.durationUs,
                           textOrNull(record.message));
        }
    }
}

void writeUpdateBinarySectionCsv(std::ostream& out, const ReportSource& source) {
    const EventStore& store = source.store;
    if (!store.updateBinarySectionRecords.empty()) {
        const MethodRecord& record = *store.updateBinarySectionRecords.front().record;
        writeMethodRow(out, record.timestamp, nameOf(MethodType::UpdateBinarySection), record.durationUs,
                       "null", labuUs);
        source.reader.writeEventCsv(out, record.events, record.timestamp, "UPDATE_BINARY_SECTION");
    }
}

}  // namespace zeb::profiling
