#pragma once

#include <cstdint>

#include "log/ChunkCheck.h"
#include "log/LogChunkBuffer.h"
#include "log/OpenChunk.h"
#include "log/ProfileLog_generated.h"

namespace zeb::profiling {

/// Walks the messages of a log, one chunk after the other. It owns nothing: all tables that it gives lie in
/// the buffer of the open chunk, which the caller keeps for as long as it uses them.
class FlatBufferReaderUtil {
public:
    FlatBufferReaderUtil() = default;
    FlatBufferReaderUtil(const FlatBufferReaderUtil&) = delete;
    FlatBufferReaderUtil& operator=(const FlatBufferReaderUtil&) = delete;
    virtual ~FlatBufferReaderUtil() = default;

    /// Verifies a chunk and opens it at its first message.
    /// @return false for a damaged chunk, which has been logged; the walker stays as it was but for `fault`
    bool openChunk(const LogChunkBuffer& buffer);

    /// @return what `openChunk` found last
    [[nodiscard]] ChunkFault fault() const { return fault_; }

    /// @return the open chunk, which has no bytes when none is open
    [[nodiscard]] const OpenChunk& chunk() const { return chunk_; }

    /// Lets go of the open chunk, whose buffer may then go: there are no more messages and no header.
    void closeChunk();

    /// @return the next message of the open chunk, null at its end and when no chunk is open
    const schema::LogMessage* nextMessage();

    /// @return the first header of the log, null before one was met. It may be read only while the
    ///         chunk is open that it was met in.
    [[nodiscard]] const schema::LogHeader* header() const { return headerTable_; }

private:
    using MessageVector = flatbuffers::Vector<flatbuffers::Offset<schema::LogMessage>>;

    ChunkFault fault_ = ChunkFault::none;
    OpenChunk chunk_;
    const schema::LogHeader* headerTable_ = nullptr;
    const MessageVector* messageVector_ = nullptr;
    std::uint32_t messageIndex_ = 0;
};

}  // namespace zeb::profiling
