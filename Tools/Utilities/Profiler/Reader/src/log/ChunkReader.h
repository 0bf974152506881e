#pragma once

#include <array>
#include <cstdint>
#include <fstream>
#include <memory>
#include <span>
#include <string>

#include "log/ChunkPrefix.h"
#include "log/LogChunkBuffer.h"

namespace zeb::profiling {

/// Reads a log file chunk by chunk, and takes no interest in what a chunk holds. Each chunk is a 32-bit
/// little-endian length and that many bytes.
class ChunkReader {
public:
    /// Opens the file. Other readers and writers of it are not barred.
    explicit ChunkReader(const std::string& path);

    [[nodiscard]] bool isOpen() const { return file_.is_open(); }

    /// Reads the length of the next chunk. A file that ends within the four bytes ends like one without them.
    /// @return false at the end of the log
    bool nextLength();

    /// @return the current chunk's length prefix; at the end of the log the bytes behind the last chunk,
    /// which are
    ///         fewer. Valid until `nextLength` is called
    [[nodiscard]] std::span<const std::uint8_t> prefix() const { return {prefix_.data(), prefixSize_}; }

    /// @return bytes of the current chunk, without its length prefix
    [[nodiscard]] std::uint32_t length() const { return length_; }
    /// @return where the current chunk's length prefix stands in the file, in bytes
    [[nodiscard]] std::uint64_t offset() const { return offset_; }
    /// @return number of the current chunk in the log, counted from 0
    [[nodiscard]] std::uint64_t index() const { return index_; }

    /// Reads the body of the current chunk into a buffer of its exact size. To be called once after each
    /// `nextLength` that gave true.
    /// @return null when the file ends before the chunk does; `bytesRead` then tells how much of it there is
    /// @throws std::bad_alloc or std::length_error when there can be no such buffer
    std::unique_ptr<const LogChunkBuffer> readBody();

    /// @return how many bytes of the current chunk's body the file has given
    [[nodiscard]] std::uint64_t bytesRead() const { return bytesRead_; }

private:
    std::unique_ptr<char[]> fileBuffer_;  // outlives the file that uses it
    std::ifstream file_;
    std::uint64_t fileSize_ = 0;  ///< 0 when it is not known, as that of a pipe
    std::array<std::uint8_t, chunkPrefixSize> prefix_{};
    std::size_t prefixSize_ = 0;
    std::uint32_t length_ = 0;
    std::uint64_t offset_ = 0;
    std::uint64_t index_ = 0;
    std::uint64_t nextOffset_ = 0;
    std::uint64_t nextIndex_ = 0;
    std::uint64_t bytesRead_ = 0;
};

}  // namespace zeb::profiling
