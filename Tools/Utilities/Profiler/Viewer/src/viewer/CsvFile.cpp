#include "viewer/CsvFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <utility>

#include "command/Failure.h"
#include "command/FileIdentity.h"
#include "command/HeldSignals.h"

namespace zeb::viewer {

using command::errorText;
using command::ExitCode;
using command::Failure;
using command::FileDescriptor;
using command::HeldSignals;
using command::isSameFile;
using command::restarted;

namespace {

// Without O_APPEND, with which the kernel copies nothing into a file.
constexpr int openFlags = O_WRONLY | O_CLOEXEC | O_NOCTTY;
constexpr ::mode_t newFileMode = 0666;

Failure csvFailure(const std::string& path, int error) {
    return {ExitCode::badOutput, path, "the CSV file can't be written: " + errorText(error)};
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

struct stat statusOf(const FileDescriptor& file, const std::string& path) {
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) {
        throw csvFailure(path, errno);
    }
    return status;
}

void checkDirectoryOf(const std::string& path) {
    const std::string directory = command::directoryOf(command::behindLinks(path));
    if (::access(directory.c_str(), W_OK | X_OK) != 0) {
        throw Failure(ExitCode::badOutput, path,
                      "the CSV file can't be created in " + directory + ": " + errorText(errno));
    }
}

// A file may be marked to be appended to and nothing else.
FileDescriptor openExisting(const std::string& path) {
    FileDescriptor file(::open(path.c_str(), openFlags));
    return !file.isOpen() && errno == EPERM ? FileDescriptor(::open(path.c_str(), openFlags | O_APPEND))
                                            : std::move(file);
}

struct Target {
    FileDescriptor file;
    bool created;
};

Target openForAppending(const std::string& path) {
    FileDescriptor file = openExisting(path);
    if (!file.isOpen() && errno == ENOENT) {
        FileDescriptor newFile(::open(path.c_str(), openFlags | O_CREAT | O_EXCL, newFileMode));
        if (newFile.isOpen()) {
            return {std::move(newFile), true};
        }
        if (errno == EEXIST) {  // somebody was faster, or it is a link to a file that isn't there
            file = FileDescriptor(::open(path.c_str(), openFlags | O_CREAT, newFileMode));
        }
    }
    if (!file.isOpen()) {
        throw csvFailure(path, errno);
    }
    return {std::move(file), false};
}

// Some network file systems have no locks; there the appending has to do.
void lock(const FileDescriptor& file, const std::string& path) {
    const bool isLocked = restarted([&file] { return ::flock(file.get(), LOCK_EX); }) == 0;
    if (!isLocked && errno != ENOLCK && errno != EOPNOTSUPP && errno != ENOSYS) {
        throw csvFailure(path, errno);
    }
}

// A viewer that fails removes the file that it has created. One that has waited for its lock starts anew
// then.
Target openLocked(const std::string& path) {
    for (;;) {
        Target target = openForAppending(path);
        const struct stat opened = statusOf(target.file, path);
        if (!S_ISREG(opened.st_mode)) {
            return target;
        }
        lock(target.file, path);
        const auto named = statusOf(path);
        if (named && isSameFile(opened, *named)) {
            return target;
        }
    }
}

// Copies bytes from where `offset` stands in one file to where the other stands; gives how many, and moves
// `offset` on by them. Negative for an error.
using Copy = ssize_t (*)(int from, ::off_t& offset, int destination, std::size_t size);

ssize_t copyWithinKernel(int from, ::off_t& offset, int destination, std::size_t size) {
    return ::copy_file_range(from, &offset, destination, nullptr, size, 0);
}

ssize_t copyPages(int from, ::off_t& offset, int destination, std::size_t size) {
    return ::sendfile(destination, from, &offset, size);
}

ssize_t copyThroughBuffer(int from, ::off_t& offset, int destination, std::size_t size) {
    std::array<char, 65536> buffer{};
    ssize_t count = ::pread(from, buffer.data(), std::min(size, buffer.size()), offset);
    if (count > 0) {
        count = ::write(destination, buffer.data(), static_cast<std::size_t>(count));
        offset += std::max<ssize_t>(count, 0);
    }
    return count;
}

// Returns the error, or 0, and in `offset` how much was written. The cheapest way that the two files allow is
// taken; what a way can't do, the next one has to.
int copyAll(const CsvSpool& report, std::uint64_t size, const FileDescriptor& destination, ::off_t& offset) {
    int error = 0;
    for (const Copy copy : {copyWithinKernel, copyPages, copyThroughBuffer}) {
        ssize_t count = 1;
        while (count > 0 && static_cast<std::uint64_t>(offset) < size) {
            const std::size_t rest = size - static_cast<std::uint64_t>(offset);
            count = restarted([&] { return copy(report.file().get(), offset, destination.get(), rest); });
        }
        if (count > 0) {
            return 0;
        }
        error = count == 0 ? EIO : errno;
        if (error == ENOSPC || error == EFBIG || error == EDQUOT || error == EPIPE) {
            return error;
        }
    }
    return error;
}

// Some file systems tell only on closing that a write has failed. Closing a duplicate tells it while the file
// can still be cut back.
int flush(const FileDescriptor& file) {
    const int duplicate = ::dup(file.get());
    return duplicate >= 0 && ::close(duplicate) == 0 ? 0 : errno;
}

// Makes room for the report at the end of a regular file. What somebody without a lock appends meanwhile
// comes behind it, and nobody writes over the other. Gives the error, or 0.
int makeRoom(const Target& target, ::off_t oldSize, std::uint64_t size) {
    const bool isMade =
        ::ftruncate(target.file.get(), oldSize + static_cast<::off_t>(size)) == 0 || errno == EPERM;
    return isMade && ::lseek(target.file.get(), oldSize, SEEK_SET) == oldSize ? 0 : errno;
}

// Takes back what was written, unless somebody has appended to it.
bool cutBack(const Target& target, const std::string& path, ::off_t oldSize, ::off_t newSize) {
    const struct stat status = statusOf(target.file, path);
    if (status.st_size != oldSize &&
        (status.st_size != newSize || ::ftruncate(target.file.get(), oldSize) != 0)) {
        return false;
    }
    return !target.created || oldSize != 0 || ::unlink(path.c_str()) == 0;
}

}  // namespace

void checkCsvPath(const std::string& path, const std::string& logPath) {
    const auto status = statusOf(path);
    if (!status) {
        if (errno != ENOENT) {
            throw csvFailure(path, errno);
        }
        checkDirectoryOf(path);
        return;
    }
    if (S_ISDIR(status->st_mode)) {
        throw csvFailure(path, EISDIR);
    }
    if (!S_ISREG(status->st_mode)) {  // opening a pipe could wait, or end what its reader gets
        if (::access(path.c_str(), W_OK) != 0) {
            throw csvFailure(path, errno);
        }
        return;
    }
    const auto log = statusOf(logPath);
    if (log && isSameFile(*status, *log)) {
        throw Failure(ExitCode::usage, path, "the CSV file is the log itself");
    }
    if (!FileDescriptor(::open(path.c_str(), openFlags)).isOpen()) {
        throw csvFailure(path, errno);
    }
}

void appendToFile(const std::string& path, const CsvSpool& report) {
    const std::uint64_t size = report.size();
    const Target target = openLocked(path);
    const struct stat status = statusOf(target.file, path);
    const bool isRegular = S_ISREG(status.st_mode);
    std::optional<HeldSignals> heldSignals;
    if (isRegular) {  // a pipe may keep the writer waiting, and can't be cut back
        heldSignals.emplace();
    }
    ::off_t written = 0;
    int error = isRegular ? makeRoom(target, status.st_size, size) : 0;
    if (error == 0) {
        error = copyAll(report, size, target.file, written);
    }
    if (error == 0) {
        error = flush(target.file);
    }
    if (error == 0) {
        return;
    }
    const ::off_t newSize = status.st_size + static_cast<::off_t>(size);
    const bool isAsBefore = isRegular ? cutBack(target, path, status.st_size, newSize) : written == 0;
    const Failure failure = csvFailure(path, error);
    throw isAsBefore
        ? failure
        : Failure(failure.exitCode(), std::string(failure.what()) + "; a part of it was written");
}

}  // namespace zeb::viewer
