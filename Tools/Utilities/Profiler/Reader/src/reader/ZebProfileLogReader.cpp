#include "reader/ZebProfileLogReader.h"

#include <fstream>
#include <iomanip>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "log/ChunkCheck.h"
#include "log/ChunkReader.h"
#include "logging/Logger.h"
#include "reports/ConsoleReport.h"
#include "reports/CsvReport.h"
#include "reports/EventReport.h"
#include "reports/HeaderText.h"
#include "reports/ReportForms.h"
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
        logFormatted(ZEB_LOG_LEVEL_ERROR, "Unable to allocate memory: %s", error.what());
    } catch (const std::length_error& error) {
        logFormatted(ZEB_LOG_LEVEL_ERROR, "Length error: %s", error.what());
    }
    return nullptr;
}

// Closes the walker's chunk before its buffer goes, also when decoding throws.
struct ChunkCloser {
    ~ChunkCloser() { walker.closeChunk(); }
    FlatBufferReaderUtil& walker;
};

void appendCsvReport(std::ofstream& csv, const ReportSource& source) {
    if (csv.is_open()) {
        writeCsvReport(csv, source);
        csv.flush();
    }
}

}  // namespace

ZebProfileLogReader::ZebProfileLogReader(std::string logFilePath, VisibilityLevel visibilityLevel)
    : store_(static_cast<std::int8_t>(visibilityLevel)), logFilePath_(std::move(logFilePath)) {}

bool ZebProfileLogReader::loadLog(bool saveObjects) {
    ChunkReader chunks(logFilePath_);
    if (!chunks.isOpen()) {
        logFormatted(ZEB_LOG_LEVEL_ERROR, "Invalid or nonexistent file: %s", logFilePath_.c_str());
        return false;
    }
    while (chunks.nextLength()) {
        const auto buffer = readChunk(chunks);
        if (!buffer || !logWalker_.openChunk(*buffer)) {
            return false;
        }
        const ChunkCloser closer{logWalker_};
        if (!header_.isRead) {
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
    if (const schema::LogMessage* message = logWalker_.nextMessage()) {
        return store_.dispatchMethod(*message, logWalker_.chunk());
    }
    messagesDone_ = true;
    logMessage(ZEB_LOG_LEVEL_DEBUG, "profiling::ZebProfileLogReader reached EOF!");
    return false;
}

bool ZebProfileLogReader::parseBackendArgs(commandline2::ParsedArgs& /*parsedArgs*/) {
    return true;
}

void ZebProfileLogReader::captureHeader() {
    if (const schema::LogHeader* const header = logWalker_.header()) {
        header_ = readLogHeader(*header);
    } else {
        logMessage(ZEB_LOG_LEVEL_DEBUG, "hdr is nullptr");
    }
}

std::string ZebProfileLogReader::printHeader() {
    return headerText(header_, logFilePath_);
}

bool ZebProfileLogReader::generateReports(const std::string& outputPath) {
    const ReportSource source = beginReport();
    std::ofstream csv;
    if (!outputPath.empty()) {
        csv = openCsvFile(outputPath);
        if (!csv.is_open()) {
            logFormatted(ZEB_LOG_LEVEL_ERROR, "Invalid output file: [%s]", outputPath.c_str());
            return false;
        }
    }
    TextStream console;
    console << std::fixed << std::setprecision(0);
    printReportHeader(console, source);
    // Which of the two comes first shows when both go to one stream.
    if (header_.isAdapterUpdaterLog) {
        printUpdateBinarySectionStats(console, source);
        console.putOnStandardOutput();
        appendCsvReport(csv, source);
    } else {
        printConsoleReport(console, source);
        appendCsvReport(csv, source);
        console.putOnStandardOutput();
    }
    return true;
}

void ZebProfileLogReader::printEvent(std::ostream& out, const EventList& events, std::uint64_t level) {
    for (const ProfileEvent& event : events) {
        printOneEvent(out, event, level, reportSource().objectFiles);
        printEvent(out, event.subEvents, level + 1);  // of the class that the reader is
    }
}

void ZebProfileLogReader::writeEventCsv(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                                        const std::string& message) {
    writeEventRows(out, events, timestamp, message);
}

}  // namespace zeb::profiling
