#include "reader/ZebProfileLogReader.h"

#include <iomanip>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

#include "log/ChunkReader.h"
#include "logging/Logger.h"
#include "reader/TextStream.h"

namespace zeb::profiling {

namespace {

// Null when there is no such buffer, which has been logged.
std::unique_ptr<const LogChunkBuffer> readChunk(ChunkReader& chunks) {
    try {
        auto buffer = chunks.readBody();
        if (!buffer) {  // the end of the file cuts the chunk off
            logMessage(ZEB_LOG_LEVEL_ERROR, "Corrupted flatbuffer binary stream");
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
    : store_(static_cast<std::int8_t>(visibilityLevel)), logFilePath_(std::move(logFilePath)) {}

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
        if (!buffer || !logWalker_.openChunk(*buffer)) {
            return false;
        }
        const ChunkCloser closer{logWalker_};
        if (!headerSaved_) {
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

void ZebProfileLogReader::writeObjectFile(const ProfileEvent& event) {
    if (saveObjects_ && event.isObject()) {
        objectFiles_.write(event);
    }
}

}  // namespace zeb::profiling
