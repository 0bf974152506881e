#include "ChunkedLog.h"

namespace zeb::samplelog {

ChunkedLog::ChunkedLog(std::ostream& out, const Header& header, std::size_t chunkSize)
    : writer_(out), chunkSize_(chunkSize) {
    writer_.setHeader(header);
}

void ChunkedLog::add(const Message& message) {
    writer_.add(message);
    chunkOpen_ = writer_.openChunkSize() < chunkSize_;
    if (!chunkOpen_) {
        writer_.finishChunk();
    }
}

void ChunkedLog::finish() {
    if (chunkOpen_) {
        writer_.finishChunk();
        chunkOpen_ = false;
    }
}

void writeChunks(std::ostream& out, const Header& header, std::span<const std::vector<Message>> chunks) {
    LogWriter writer(out);
    writer.setHeader(header);
    for (const std::vector<Message>& chunk : chunks) {
        for (const Message& message : chunk) {
            writer.add(message);
        }
        writer.finishChunk();
    }
}

}  // namespace zeb::samplelog
