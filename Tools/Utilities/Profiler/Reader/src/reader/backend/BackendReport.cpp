#include "reader/backend/BackendReport.h"

#include "logging/Logger.h"
#include "reader/backend/CheckedNumbers.h"
#include "reports/EventText.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

BackendReport::BackendReport(ZebProfileLogReader& reader, bool internalColumns)
    : reader_(reader),
      store_(reader.store()),
      internalColumns_(internalColumns),
      zebNameColumnWidth_(defaultNameWidth()) {}

void BackendReport::printConsole(std::ostream& out) {
    readProfileLevel();
    printReportHeader(out, reader_);
    printBackendInitStats(out);
    printBackendFinalizeStats(out);
    printDeInitStats(out, reader_);
    printExecutionStats(out);
    if (hasLayers()) {
        addLayerTimes(zebLayers_.layers, layerStats_);
        oruTable_.emplace(internalColumns_, layerStats_, layerConfig_.layerCount);
        oruTable_->printOruLayerStats(out);
        printZebLayerStats(out, zebLayers_.layers, zebNameColumnWidth_);
        printLayerMapping(out, zebLayers_.layers, maxZebLayerNameLength_);
    }
}

void BackendReport::writeCsv(std::ostream& out) const {
    writeCsvPreamble(out, reader_);
    writeExecutionCsv(out);
    if (oruTable_) {
        oruTable_->writeOruLayerCsv(out);
        writeZebLayerCsv(out, zebLayers_.layers);
        writeLayerMappingCsv(out, zebLayers_.layers, maxZebLayerNameLength_);
    }
}

void BackendReport::readProfileLevel() {
    const auto text = findExecuteEventValue("Execute Profiling Level");
    if (!text) {
        logMessage(ZEB_LOG_LEVEL_WARN, "failed get Profile Level Value!");
        return;
    }
    if (text->empty()) {
        logMessage(ZEB_LOG_LEVEL_WARN,
                   "Profiling Level is not found, CSV file will still be generated with basic level.");
        return;
    }
    switch (const auto level = static_cast<ProfileLevel>(checkedSigned32(*text))) {
        case ProfileLevel::basic:
        case ProfileLevel::detailed:
        case ProfileLevel::internal:
            profileLevel_ = level;
            return;
    }
    if (const auto logger = loggerFor(ZEB_LOG_LEVEL_WARN)) {
        logMessage(*logger, ZEB_LOG_LEVEL_WARN, "Profile Level Value %s not supported.", text->c_str());
    }
}

std::optional<std::string> BackendReport::findExecuteEventValue(std::string_view name) const {
    if (!store_.mayHaveEvent(name)) {
        return std::nullopt;
    }
    for (const GraphMethodRecords& graph : store_.executeRecords) {
        for (const MethodRecord& record : graph.records) {
            if (auto value = findEventValue(name, record.events)) {
                return value;
            }
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> BackendReport::singleGraphDuration() const {
    if (store_.executeAverage.size() != 1) {
        logMessage(ZEB_LOG_LEVEL_ERROR, "multiple graph not supported yet!");
        return std::nullopt;
    }
    return store_.executeAverage.front().record->durationUs;
}

}  // namespace zeb::profiling
