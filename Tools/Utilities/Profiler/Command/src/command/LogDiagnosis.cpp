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

// A log without one chunk is the mark of a producer that failed.
std::optional<std::string> troubleWithStart(const std::string& path, const std::string& whenEmpty,
                                            const std::string& whenShort) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    std::array<char, chunkPrefixSize> bytes{};
    const ssize_t count =
        file.isOpen() ? restarted([&] { return ::read(file.get(), bytes.data(), bytes.size()); }) : -1;
    if (count < 0) {
        return unreadable(errno);
    }
    if (count == 0) {
        return whenEmpty;
    }
    const bool isShort = static_cast<std::size_t>(count) < bytes.size();
    return isShort ? std::optional(whenShort + std::to_string(count) + " bytes, and no log is that short")
                   : std::nullopt;
}

std::string cutOff(std::uint64_t bytesThere) {
    return "is cut off at the end of the file: only " + std::to_string(bytesThere) + " bytes of it are there";
}

// Returns how many of the bytes there are, negative for an error of the system.
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

std::string firstBytesOf(const std::string& path) {
    constexpr std::size_t enoughToTell = 64;
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<std::uint8_t, enoughToTell> bytes{};
    const ssize_t count = file.isOpen() ? readAt(file, 0, bytes) : 0;
    return {bytes.begin(), bytes.begin() + std::max<ssize_t>(count, 0)};
}

bool isBlank(char character) {
    return std::string_view(" \t\r\n").find(character) != std::string_view::npos;
}

bool isOfText(char character) {
    return isBlank(character) || static_cast<unsigned char>(character) >= ' ';
}

// Which file that is no log it seems to be, for one that was rejected.
std::optional<std::string> otherKindOf(const std::string& path, std::string_view unpackedTo) {
    const std::string first = firstBytesOf(path);
    for (const Compression& compression : compressions) {
        if (first.starts_with(compression.firstBytes)) {
            return "the log can't be read: it seems to be compressed by " + std::string(compression.name) +
                   "; try " + std::string(compression.command) + ' ' + path + ' ' + std::string(unpackedTo);
        }
    }
    const Beginning beginning = beginningOf(path);
    return beginning == Beginning::other
               ? std::nullopt
               : std::optional("the log can't be read: it is no log, and begins like " +
                               std::string(beginning == Beginning::json ? "JSON" : "text"));
}

}  // namespace

bool comesOnce(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISCHR(status.st_mode)) {
        return S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode);
    }
    const FileDescriptor device(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    return device.isOpen() && ::lseek(device.get(), 0, SEEK_CUR) < 0 && errno == ESPIPE;
}

std::optional<std::string> troubleWithPath(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? "there is no such file" : unreadable(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        return "it is a directory, not a log";
    }
    if (!comesOnce(path)) {
        return troubleWithStart(path, "the file is empty", "the file has only ");
    }
    return ::access(path.c_str(), R_OK) == 0 ? std::nullopt : std::optional(unreadable(errno));
}

std::optional<std::string> troubleWithKept(const std::string& path) {
    return troubleWithStart(path, "nothing came through the pipe; has the command that writes to it failed?",
                            "through the pipe came only ");
}

Beginning beginningOf(const std::string& path) {
    const std::string bytes = firstBytesOf(path);
    if (bytes.size() < chunkPrefixSize || !std::all_of(bytes.begin(), bytes.end(), isOfText)) {
        return Beginning::other;
    }
    const auto first = std::find_if_not(bytes.begin(), bytes.end(), isBlank);
    return first == bytes.end() || *first == '{' || *first == '[' ? Beginning::json : Beginning::text;
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
    if (const auto otherKind = otherKindOf(path, unpackedTo)) {
        return *otherKind;
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
