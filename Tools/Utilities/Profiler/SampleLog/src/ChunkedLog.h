#pragma once

#include <cstddef>
#include <ostream>
#include <span>
#include <vector>

#include "LogWriter.h"

namespace zeb::samplelog {

/// Writes a log of any length: a chunk goes out as soon as it has the size of a full one.
class ChunkedLog {
public:
    static constexpr std::size_t usualChunkSize = 65536;

    /// @param out has to outlive the log; its state tells whether writing succeeded
    /// @param chunkSize bytes from which on a chunk is full
    ChunkedLog(std::ostream& out, const Header& header, std::size_t chunkSize = usualChunkSize);

    void add(const Message& message);
    /// Writes what is not out yet; nothing may be added behind it.
    void finish();

private:
    LogWriter writer_;
    std::size_t chunkSize_;
    bool chunkOpen_ = true;
};

/// Messages, in chunks as they are to stand in the log.
using Chunks = std::vector<std::vector<Message>>;

/// Writes a log whose first chunk holds the header.
void writeChunks(std::ostream& out, const Header& header, std::span<const std::vector<Message>> chunks);

}  // namespace zeb::samplelog
