#include "samplelog/ChunkedLog.h"

#include <cstddef>

namespace zeb::samplelog {

namespace {

// Bytes from which on a chunk is full.
constexpr std::size_t fullChunkSize = 65536;

}  // namespace

ChunkedLog::ChunkedLog(std::ostream& out, const Header& header) : writer_(out) {
    writer_.setHeader(header);
}

void ChunkedLog::add(const Message& message) {
    writer_.add(message);
    chunkOpen_ = writer_.openChunkSize() < fullChunkSize;
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

void writeChunks(std::ostream& out, const Header& header, const std::vector<std::vector<Message>>& chunks) {
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
