#include "log/FlatBufferReaderUtil.h"

#include "log/ChunkCheck.h"
#include "log/LogAccess.h"
#include "logging/Logger.h"

namespace zeb::profiling {

bool FlatBufferReaderUtil::openChunk(const LogChunkBuffer& buffer) {
    if (checkChunk(buffer.bytes()) != ChunkFault::none) {
        logMessage(ZEB_LOG_LEVEL_ERROR, "Corrupted flatbuffer binary stream");
        return false;
    }
    rootTable_ = schema::GetLogChunk(buffer.data());
    if (headerTable_ == nullptr) {
        headerTable_ = rootTable_->header();
    }
    messageVector_ = rootTable_->messages();
    messageIndex_ = 0;
    return true;
}

void FlatBufferReaderUtil::closeChunk() {
    rootTable_ = nullptr;
    headerTable_ = nullptr;
    messageVector_ = nullptr;
}

const schema::LogMessage* FlatBufferReaderUtil::nextMessage() {
    if (messageVector_ != nullptr && messageIndex_ < lengthOf(messageVector_)) {
        return tableAt(messageVector_, messageIndex_++);
    }
    if (const auto logger = loggerFor(ZEB_LOG_LEVEL_DEBUG)) {
        logMessage(*logger, ZEB_LOG_LEVEL_DEBUG,
                   "profiling::FlatBufferReaderUtil no more messages! (Message Counter: %d)",
                   static_cast<int>(messageIndex_));
    }
    return nullptr;
}

}  // namespace zeb::profiling
