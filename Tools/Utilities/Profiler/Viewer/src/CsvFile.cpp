#include "CsvFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>
#include <utility>

#include "Failure.h"

namespace zeb::viewer {

namespace {

constexpr int appendFlags = O_WRONLY | O_APPEND | O_CLOEXEC | O_NOCTTY;
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

bool isSameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

void checkDirectoryOf(const std::string& path) {
    const std::filesystem::path directory = std::filesystem::path(path).parent_path();
    const std::string name = directory.empty() ? "." : directory.string();
    if (::access(name.c_str(), W_OK | X_OK) != 0) {
        throw Failure(ExitCode::badOutput, path,
                      "the CSV file can't be created in " + name + ": " + errorText(errno));
    }
}

struct Target {
    FileDescriptor file;
    bool created;
};

Target openForAppending(const std::string& path) {
    FileDescriptor file(::open(path.c_str(), appendFlags));
    if (!file.isOpen() && errno == ENOENT) {
        FileDescriptor newFile(::open(path.c_str(), appendFlags | O_CREAT | O_EXCL, newFileMode));
        if (newFile.isOpen()) {
            return {std::move(newFile), true};
        }
        if (errno == EEXIST) {  // somebody was faster, or it is a link to a file that isn't there
            file = FileDescriptor(::open(path.c_str(), appendFlags | O_CREAT, newFileMode));
        }
    }
    if (!file.isOpen()) {
        throw csvFailure(path, errno);
    }
    return {std::move(file), false};
}

// Some network file systems have no locks; there the appending has to do.
void lock(const FileDescriptor& file, const std::string& path) {
    while (::flock(file.get(), LOCK_EX) != 0) {
        if (errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS) {
            return;
        }
        if (errno != EINTR) {
            throw csvFailure(path, errno);
        }
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

// Holds back, as long as it lives, the signals that end the process: one in the middle of a write would leave
// a part of the report behind.
class HeldSignals {
public:
    HeldSignals() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
            sigaddset(&ending, signal);
        }
        static_cast<void>(::pthread_sigmask(SIG_BLOCK, &ending, &before_));
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { static_cast<void>(::pthread_sigmask(SIG_SETMASK, &before_, nullptr)); }

private:
    sigset_t before_{};
};

// Gives the error, or 0. Takes what was written off the bytes.
int writeAll(const FileDescriptor& file, std::string_view& bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return 0;
}

// Some file systems tell only on closing that a write has failed. Closing a duplicate tells it while the file
// can still be cut back.
int flush(const FileDescriptor& file) {
    const int duplicate = ::dup(file.get());
    return duplicate >= 0 && ::close(duplicate) == 0 ? 0 : errno;
}

// Takes back what was written, unless somebody without a lock has appended to it meanwhile.
bool cutBack(const Target& target, const std::string& path, ::off_t oldSize, std::size_t written) {
    const struct stat status = statusOf(target.file, path);
    if (!S_ISREG(status.st_mode)) {
        return written == 0;
    }
    if (status.st_size != oldSize + static_cast<::off_t>(written) ||
        ::ftruncate(target.file.get(), oldSize) != 0) {
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
    if (!FileDescriptor(::open(path.c_str(), appendFlags)).isOpen()) {
        throw csvFailure(path, errno);
    }
}

CsvBuffer::CsvBuffer(std::string path)
    : path_(std::move(path)), file_(::memfd_create("csv-report", MFD_CLOEXEC)) {
    if (!file_.isOpen()) {
        throw csvFailure(path_, errno);
    }
}

std::string CsvBuffer::memoryPath() const {
    return "/proc/self/fd/" + std::to_string(file_.get());
}

std::string CsvBuffer::content() const {
    const auto size = static_cast<std::size_t>(statusOf(file_, path_).st_size);
    // A process that may write small files only has the file in memory cut off as well, and the reader
    // doesn't tell.
    rlimit limit{};
    if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && size >= limit.rlim_cur) {
        throw csvFailure(path_, EFBIG);
    }
    std::string bytes(size, '\0');
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count =
            ::pread(file_.get(), bytes.data() + done, size - done, static_cast<::off_t>(done));
        if (count == 0 || (count < 0 && errno != EINTR)) {
            throw csvFailure(path_, count == 0 ? EIO : errno);
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return bytes;
}

void appendToFile(const std::string& path, std::string_view bytes) {
    const Target target = openLocked(path);
    const struct stat status = statusOf(target.file, path);
    const ::off_t oldSize = status.st_size;
    std::optional<HeldSignals> heldSignals;
    if (S_ISREG(status.st_mode)) {  // a pipe may keep the writer waiting, and can't be cut back
        heldSignals.emplace();
    }
    std::string_view rest = bytes;
    int error = writeAll(target.file, rest);
    if (error == 0) {
        error = flush(target.file);
    }
    if (error == 0) {
        return;
    }
    const bool isAsBefore = cutBack(target, path, oldSize, bytes.size() - rest.size());
    const Failure failure = csvFailure(path, error);
    throw isAsBefore
        ? failure
        : Failure(failure.exitCode(), std::string(failure.what()) + "; a part of it was written");
}

}  // namespace zeb::viewer
