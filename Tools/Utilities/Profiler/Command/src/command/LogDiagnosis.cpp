#include "command/LogDiagnosis.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <new>
#include <span>
#include <stdexcept>
#include <string_view>

#include "command/Failure.h"
#include "command/FileDescriptor.h"
#include "log/ChunkCheck.h"
#include "log/ChunkPrefix.h"
#include "log/ChunkReader.h"

namespace zeb::command {

namespace {

using profiling::ChunkFault;
using profiling::chunkPrefixSize;
using profiling::ChunkReader;

std::string unreadable(int error) {
    return "the log can't be read: " + errorText(error);
}

std::optional<std::string> troubleWithRegularFile(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    char byte = 0;
    const ssize_t count = file.isOpen() ? ::read(file.get(), &byte, 1) : -1;
    if (count < 0) {
        return unreadable(errno);
    }
    return count == 0 ? std::optional<std::string>("the file is empty") : std::nullopt;
}

std::string cutOff(std::uint64_t bytesThere) {
    return "is cut off at the end of the file: only " + std::to_string(bytesThere) + " bytes of it are there";
}

// Gives how many of the bytes there are, negative for an error of the system.
ssize_t readAt(const FileDescriptor& file, std::uint64_t offset, std::span<std::uint8_t> bytes) {
    return restarted(
        [&] { return ::pread(file.get(), bytes.data(), bytes.size(), static_cast<::off_t>(offset)); });
}

// Reads the lengths of a log's chunks. Those of short chunks come many at a time, that behind a long chunk by
// itself.
class LengthReader {
public:
    explicit LengthReader(const FileDescriptor& file) : file_(file) {}

    /// @return the length that stands at an offset beyond all before, nothing at the end of the file or when
    ///         it can't be read
    std::optional<profiling::ChunkLength> lengthAt(std::uint64_t offset) {
        if (offset + chunkPrefixSize > start_ + size_) {
            const bool isNear = offset < start_ + size_ + bytes_.size();
            const ssize_t count =
                readAt(file_, offset, std::span(bytes_).first(isNear ? bytes_.size() : chunkPrefixSize));
            error_ = count < 0 ? errno : 0;
            start_ = offset;
            size_ = static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        if (offset + chunkPrefixSize > start_ + size_) {
            return std::nullopt;
        }
        return profiling::chunkLengthIn(&bytes_[offset - start_]);
    }

    /// @return the system's error that the last call met, else 0
    [[nodiscard]] int error() const { return error_; }

private:
    const FileDescriptor& file_;
    std::uint64_t start_ = 0;  ///< of the bytes that are there, in the file
    std::size_t size_ = 0;
    int error_ = 0;
    std::array<std::uint8_t, 65536> bytes_;
};

// A chunk that gave fewer bytes than it has: the file ends before it does, or the system can't read on.
std::string endOf(const std::string& path, const ChunkReader& chunks) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<std::uint8_t, 1> byte{};
    if (file.isOpen() && readAt(file, chunks.offset() + chunkPrefixSize + chunks.bytesRead(), byte) < 0) {
        return "can't be read beyond its first " + std::to_string(chunks.bytesRead()) +
               " bytes: " + errorText(errno);
    }
    return cutOff(chunks.bytesRead());
}

// A damaged length asks for more memory than the file could ever fill.
std::string tooLarge(const std::string& path, const ChunkReader& chunks, const MemoryLimit& memory) {
    struct stat status {};
    const std::uint64_t start = chunks.offset() + chunkPrefixSize;
    if (::stat(path.c_str(), &status) == 0) {
        const auto fileSize = static_cast<std::uint64_t>(status.st_size);
        if (fileSize >= start && fileSize - start < chunks.length()) {
            return cutOff(fileSize - start);
        }
    }
    return memory.cause();
}

// What is wrong with the current chunk, nothing when it is sound.
std::optional<std::string> troubleWithChunk(const std::string& path, ChunkReader& chunks,
                                            const MemoryLimit& memory) {
    try {
        const auto buffer = chunks.readBody();
        if (!buffer) {
            return endOf(path, chunks);
        }
        const ChunkFault fault = profiling::checkChunk(buffer->bytes());
        return fault == ChunkFault::none ? std::nullopt : std::optional(std::string(wordsFor(fault)));
    } catch (const std::bad_alloc&) {
        return tooLarge(path, chunks, memory);
    } catch (const std::length_error&) {
        return tooLarge(path, chunks, memory);
    }
}

// How compressed files begin, and what reads them. The first bytes of a sound log may be the same.
struct Compression {
    std::string_view firstBytes;
    std::string_view name;
    std::string_view command;
};
constexpr Compression compressions[] = {
    {"\x1F\x8B", "gzip", "zcat"},
    {"\x28\xB5\x2F\xFD", "zstd", "zstdcat"},
    {std::string_view("\xFD\x37zXZ\0", 6), "xz", "xzcat"},
};

std::optional<std::string> compressionOf(const std::string& path, std::string_view unpackedTo) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<std::uint8_t, 6> bytes{};
    if (!file.isOpen() || readAt(file, 0, bytes) < 2) {
        return std::nullopt;
    }
    const std::string_view first(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (const Compression& compression : compressions) {
        if (first.starts_with(compression.firstBytes)) {
            return "the log can't be read: it seems to be compressed by " + std::string(compression.name) +
                   "; try " + std::string(compression.command) + ' ' + path + ' ' + std::string(unpackedTo);
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> troubleWithPath(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? "there is no such file" : unreadable(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return "it is a directory, not a log";
    }
    if (S_ISREG(status.st_mode)) {
        return troubleWithRegularFile(path);
    }
    return ::access(path.c_str(), R_OK) == 0 ? std::nullopt : std::optional(unreadable(errno));
}

std::optional<std::string> whyEndedEarly(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {  // it is gone since it was read
        return std::nullopt;
    }
    LengthReader lengths(file);
    std::uint64_t offset = 0;
    while (const auto length = lengths.lengthAt(offset)) {
        offset += chunkPrefixSize + *length;
    }
    return lengths.error() == 0 ? std::nullopt
                                : std::optional("the log can't be read beyond byte " +
                                                std::to_string(offset) + ": " + errorText(lengths.error()));
}

std::string whyRejected(const std::string& path, const MemoryLimit& memory, std::string_view unpackedTo) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return unreadable(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return "the log can't be read, and, being no regular file, not a second time to find out why";
    }
    if (const auto compression = compressionOf(path, unpackedTo)) {
        return *compression;
    }
    ChunkReader chunks(path);
    if (!chunks.isOpen()) {
        return unreadable(errno);
    }
    while (chunks.nextLength()) {
        if (const auto trouble = troubleWithChunk(path, chunks, memory)) {
            return "the log can't be read: chunk " + std::to_string(chunks.index() + 1) + " at byte " +
                   std::to_string(chunks.offset()) + ", " + std::to_string(chunks.length()) +
                   " bytes long, " + *trouble;
        }
    }
    return whyEndedEarly(path).value_or("the log can't be read, though all of its chunks are sound");
}

}  // namespace zeb::command
