#include "log/FlatBufferReaderUtil.h"

#include <atomic>

#include "log/LogAccess.h"
#include "logging/Logger.h"

namespace zeb::profiling {

bool FlatBufferReaderUtil::openChunk(const LogChunkBuffer& buffer) {
    static std::atomic<std::uint64_t> chunks = 0;
    fault_ = checkChunk(buffer.bytes());
    if (fault_ != ChunkFault::none) {
        logMessage(ZEB_LOG_LEVEL_ERROR, damagedChunkText);
        return false;
    }
    const schema::LogChunk* const rootTable = schema::GetLogChunk(buffer.data());
    if (headerTable_ == nullptr) {
        headerTable_ = rootTable->header();
    }
    messageVector_ = rootTable->messages();
    chunk_ = {buffer.bytes(), ++chunks};
    messageIndex_ = 0;
    return true;
}

void FlatBufferReaderUtil::closeChunk() {
    headerTable_ = nullptr;
    messageVector_ = nullptr;
    chunk_ = {};
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
