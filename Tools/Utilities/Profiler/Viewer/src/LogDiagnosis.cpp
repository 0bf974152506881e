#include "LogDiagnosis.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <new>
#include <span>
#include <stdexcept>

#include "Failure.h"
#include "FileDescriptor.h"
#include "log/ChunkCheck.h"
#include "log/ChunkReader.h"

namespace zeb::viewer {

namespace {

using profiling::ChunkFault;
using profiling::ChunkReader;

constexpr std::uint64_t prefixSize = 4;

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

const char* wordsFor(ChunkFault fault) {
    switch (fault) {
        case ChunkFault::none:
            break;
        case ChunkFault::tooShort:
            return "is too short to be a chunk";
        case ChunkFault::tooLong:
            return "is too long for a FlatBuffer";
        case ChunkFault::rootOffset:
            return "has a root offset that leads out of it";
        case ChunkFault::verification:
            return "fails verification: a table, vector or string in it is malformed";
    }
    return "is sound";
}

std::string cutOff(std::uint64_t bytesThere) {
    return "is cut off at the end of the file: only " + std::to_string(bytesThere) + " bytes of it are there";
}

// Gives how many of the bytes there are, negative for an error of the system.
ssize_t readAt(const FileDescriptor& file, std::uint64_t offset, std::span<unsigned char> bytes) {
    ssize_t count = -1;
    do {
        count = ::pread(file.get(), bytes.data(), bytes.size(), static_cast<::off_t>(offset));
    } while (count < 0 && errno == EINTR);
    return count;
}

// A chunk that gave fewer bytes than it has: the file ends before it does, or the system can't read on.
std::string endOf(const std::string& path, const ChunkReader& chunks) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<unsigned char, 1> byte{};
    if (file.isOpen() && readAt(file, chunks.offset() + prefixSize + chunks.bytesRead(), byte) < 0) {
        return "can't be read beyond its first " + std::to_string(chunks.bytesRead()) +
               " bytes: " + errorText(errno);
    }
    return cutOff(chunks.bytesRead());
}

// A damaged length asks for more memory than the file could ever fill.
std::string tooLarge(const std::string& path, const ChunkReader& chunks, MemoryLimit& memory) {
    memory.releaseReserve();
    struct stat status {};
    const std::uint64_t start = chunks.offset() + prefixSize;
    if (::stat(path.c_str(), &status) == 0) {
        const auto fileSize = static_cast<std::uint64_t>(status.st_size);
        if (fileSize >= start && fileSize - start < chunks.length()) {
            return cutOff(fileSize - start);
        }
    }
    return memory.words();
}

// What is wrong with the current chunk, nothing when it is sound.
std::optional<std::string> troubleWithChunk(const std::string& path, ChunkReader& chunks,
                                            MemoryLimit& memory) {
    try {
        const auto buffer = chunks.readBody();
        if (!buffer) {
            return endOf(path, chunks);
        }
        const ChunkFault fault = profiling::checkChunk(buffer->bytes());
        return fault == ChunkFault::none ? std::nullopt : std::optional<std::string>(wordsFor(fault));
    } catch (const std::bad_alloc&) {
        return tooLarge(path, chunks, memory);
    } catch (const std::length_error&) {
        return tooLarge(path, chunks, memory);
    }
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
    std::array<unsigned char, prefixSize> prefix{};
    std::uint64_t offset = 0;
    ssize_t count = readAt(file, offset, prefix);
    while (count == static_cast<ssize_t>(prefix.size())) {
        std::uint64_t length = 0;
        for (std::size_t index = prefix.size(); index > 0; --index) {
            length = length << 8U | prefix.at(index - 1);
        }
        offset += prefixSize + length;
        count = readAt(file, offset, prefix);
    }
    return count < 0 ? std::optional("the log can't be read beyond byte " + std::to_string(offset) + ": " +
                                     errorText(errno))
                     : std::nullopt;
}

std::string whyRejected(const std::string& path, MemoryLimit& memory) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        return unreadable(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return "the log can't be read, and, being no regular file, not a second time to find out why";
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

}  // namespace zeb::viewer
