#include "reader/ZebProfileLogReader.h"

#include <fstream>
#include <iomanip>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "log/ChunkCheck.h"
#include "log/ChunkReader.h"
#include "log/FlatBufferReaderUtil.h"
#include "logging/Logger.h"
#include "reports/EventReport.h"
#include "reports/HeaderText.h"
#include "text/TextStream.h"

namespace zeb::profiling {

namespace {

// Null when there is no such buffer, which has been logged.
std::unique_ptr<const LogChunkBuffer> readChunk(ChunkReader& chunks) {
    try {
        auto buffer = chunks.readBody();
        if (!buffer) {  // the end of the file cuts the chunk off
            logMessage(ZEB_LOG_LEVEL_ERROR, damagedChunkText);
        }
        return buffer;
    } catch (const std::bad_alloc& error) {
        if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
            logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Unable to allocate memory: %s", error.what());
        }
    } catch (const std::length_error& error) {
        if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
            logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Length error: %s", error.what());
        }
    }
    return nullptr;
}

// Closes the walker's chunk before its buffer goes, also when decoding throws.
struct ChunkCloser {
    ~ChunkCloser() { walker.closeChunk(); }
    FlatBufferReaderUtil& walker;
};

}  // namespace

ZebProfileLogReader::ZebProfileLogReader(std::string logFilePath, VisibilityLevel visibilityLevel)
    : logWalker_(std::make_unique<FlatBufferReaderUtil>()),
      store_(static_cast<std::int8_t>(visibilityLevel)),
      logFilePath_(std::move(logFilePath)) {}

ZebProfileLogReader::~ZebProfileLogReader() = default;

bool ZebProfileLogReader::loadLog(bool saveObjects) {
    ChunkReader chunks(logFilePath_);
    if (!chunks.isOpen()) {
        if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
            logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Invalid or nonexistent file: %s", logFilePath_.c_str());
        }
        return false;
    }
    while (chunks.nextLength()) {
        const auto buffer = readChunk(chunks);
        if (!buffer || !logWalker_->openChunk(*buffer)) {
            return false;
        }
        const ChunkCloser closer{*logWalker_};
        if (!header_.headerSaved) {
            captureHeader();
        }
        messagesDone_ = false;
        while (!messagesDone_) {
            readNextMessage();
        }
    }
    TextStream notes;
    notes << std::fixed << std::setprecision(0);
    saveObjects_ = saveObjects;
    store_.aggregateStatistics(notes);
    notes.putOnStandardOutput();
    return true;
}

bool ZebProfileLogReader::readNextMessage() {
    if (const schema::LogMessage* message = logWalker_->nextMessage()) {
        return store_.dispatchMethod(*message, logWalker_->chunk());
    }
    messagesDone_ = true;
    logMessage(ZEB_LOG_LEVEL_DEBUG, "profiling::ZebProfileLogReader reached EOF!");
    return false;
}

bool ZebProfileLogReader::parseBackendArgs(commandline2::ParsedArgs& /*parsedArgs*/) {
    return true;
}

void ZebProfileLogReader::captureHeader() {
    if (header_.headerSaved) {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "Header details have been saved already.");
    } else if (const schema::LogHeader* const header = logWalker_->header()) {
        header_ = readLogHeader(*header);
    } else {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "hdr is nullptr");
    }
}

std::string ZebProfileLogReader::printHeader() {
    return headerText(header_, logFilePath_);
}

bool ZebProfileLogReader::generateReports(const std::string& outputPath) {
    std::ofstream csv;
    if (!outputPath.empty()) {
        csv = openCsvFile(outputPath);
        if (!csv.is_open()) {
            if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
                logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Invalid output file: [%s]", outputPath.c_str());
            }
            return false;
        }
    }
    TextStream console;
    console << std::fixed << std::setprecision(0);
    printConsoleReport(console);
    // Which of the two comes first shows when both go to one stream.
    if (header_.isAdapterUpdaterLog) {
        console.putOnStandardOutput();
    }
    if (csv.is_open()) {
        writeCsvReport(csv);
        csv.flush();
    }
    if (!header_.isAdapterUpdaterLog) {
        console.putOnStandardOutput();
    }
    return true;
}

void ZebProfileLogReader::printConsoleReport(std::ostream& out) {
    beginReport();
    printReportHeader(out);
    if (header_.isAdapterUpdaterLog) {
        printUpdateBinarySectionStats(out);
        return;
    }
    printStatisticsOverview(out);
    printContextRetrievalStats(out);
    printContextSectionRetrievalStats(out);
    printExecuteOverallStats(out);
    printExecuteAverageStats(out);
    printExecuteMinStats(out);
    printExecuteMaxStats(out);
    printLibLoadStats(out);
    printApplyBinarySectionAverageStats(out);
    printApplyBinarySectionMinStats(out);
    printApplyBinarySectionMaxStats(out);
    printFinalizeAfterTensorUpdatesAverageStats(out);
    printFinalizeAfterTensorUpdatesMinStats(out);
    printFinalizeAfterTensorUpdatesMaxStats(out);
}

void ZebProfileLogReader::writeCsvReport(std::ostream& out) {
    writeCsvPreamble(out);
    writeCsvColumns(out);
    if (header_.isAdapterUpdaterLog) {
        writeUpdateBinarySectionCsv(out);
        return;
    }
    writeInitCsv(out);
    writeComposeGraphsCsv(out);
    writeFinalizeCsv(out);
    writeDeInitCsv(out);
    writeExecuteCsv(out);
    writeExecuteIpsCsv(out);
    writeLibLoadCsv(out);
    writeApplyBinarySectionCsv(out);
    writeFinalizeAfterTensorUpdatesCsv(out);
    writeContextCsv(out);
}

void ZebProfileLogReader::printEvent(std::ostream& out, const EventList& events, std::uint64_t level) {
    for (const ProfileEvent& event : events) {
        if (!event.isObject()) {
            printEventLine(out, event, level);
        } else if (saveObjects_) {
            objectFiles_.writeObjectFile(event);
        }
        printEvent(out, event.subEvents, level + 1);  // of the class that the reader is
    }
}

void ZebProfileLogReader::writeEventCsv(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                                        const std::string& message) {
    writeEventRows(out, events, timestamp, message);
}

}  // namespace zeb::profiling
