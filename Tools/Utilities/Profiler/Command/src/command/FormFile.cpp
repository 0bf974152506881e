#include "command/FormFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>
#include <utility>

#include "command/Failure.h"
#include "command/FileIdentity.h"
#include "command/HeldSignals.h"
#include "command/MemoryLimit.h"
#include "command/StandardOutput.h"

namespace zeb::command {

namespace {

constexpr ::mode_t newFileMode = 0666;
constexpr int maxNames = 100;

Failure fileFailure(const std::string& path, int error) {
    return {ExitCode::badOutput, path, "the file can't be written: " + errorText(error)};
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

std::string besideName(const std::string& place, int number) {
    return place + ".part" + std::to_string(::getpid()) + '.' + std::to_string(number);
}

// Calls with one free name after the other beside the place until it succeeds or fails for another reason.
template <typename Make>
std::string makeBeside(const std::string& place, Make make) {
    for (int number = 0; number < maxNames; ++number) {
        std::string name = besideName(place, number);
        if (make(name)) {
            return name;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return {};
}

// Returns the number of bytes.
std::uint64_t printTo(int descriptor, const std::string& path,
                      const std::function<void(std::ostream&)>& print) {
    DescriptorBuffer buffer(descriptor);
    std::ostream out(&buffer);
    out.imbue(std::locale::classic());
    print(out);
    if (MemoryLimit::wasHit()) {
        throw std::bad_alloc();
    }
    buffer.finish();
    const bool isClosedPipe = buffer.error() == EPIPE && descriptor == STDOUT_FILENO;
    if (buffer.error() != 0 && !isClosedPipe) {
        throw fileFailure(path, buffer.error());
    }
    return buffer.size();
}

}  // namespace

FormFile::FormFile(const std::string& path, std::span<const std::string> logs) : path_(path) {
    if (path == standardOutput) {
        return;
    }
    const auto status = statusOf(path);
    if (status && S_ISDIR(status->st_mode)) {
        throw fileFailure(path, EISDIR);
    }
    if (status && !S_ISREG(status->st_mode)) {  // opening a pipe could wait
        if (::access(path.c_str(), W_OK) != 0) {
            throw fileFailure(path, errno);
        }
        return;
    }
    if (status && std::any_of(logs.begin(), logs.end(), [&status](const std::string& log) {
            const auto read = statusOf(log);
            return read && isSameFile(*status, *read);
        })) {
        throw Failure(ExitCode::usage, path, "the file is the log itself");
    }
    struct stat output {};
    if (status && ::fstat(STDOUT_FILENO, &output) == 0 && isSameFile(*status, output)) {
        throw Failure(ExitCode::usage, path, "standard output goes there; \"-\" is its name as a file");
    }
    place_ = behindLinks(path);
    if (status && ::access(place_.c_str(), W_OK) != 0) {
        throw fileFailure(path, errno);
    }
    if (!openBeside()) {
        throw Failure(ExitCode::badOutput, path,
                      "the file can't be created in " + directoryOf(place_) + ": " + errorText(errno));
    }
    if (status && ::fchmod(beside_->file.get(), status->st_mode & 07777U) != 0) {
        throw fileFailure(path, errno);
    }
}

FormFile::FormFile(FormFile&& other) noexcept
    : path_(std::move(other.path_)),
      place_(std::move(other.place_)),
      beside_(std::exchange(other.beside_, std::nullopt)) {}

FormFile::~FormFile() {
    if (beside_ && !beside_->name.empty()) {
        static_cast<void>(::unlink(beside_->name.c_str()));
    }
}

// A file without a name goes with the process, however that ends.
bool FormFile::openBeside() {
    FileDescriptor nameless(
        ::open(directoryOf(place_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, newFileMode));
    if (nameless.isOpen()) {
        beside_ = Beside{std::move(nameless), {}};
        return true;
    }
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) {
        return false;
    }
    int descriptor = -1;
    const std::string name = makeBeside(place_, [&descriptor](const std::string& each) {
        descriptor = ::open(each.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, newFileMode);
        return descriptor >= 0;
    });
    beside_ = Beside{FileDescriptor(descriptor), name};
    return beside_->file.isOpen();
}

std::uint64_t FormFile::write(const std::function<void(std::ostream&)>& print) {
    if (path_ == standardOutput) {
        return printTo(STDOUT_FILENO, "standard output", print);
    }
    if (beside_) {
        const std::uint64_t size = printTo(beside_->file.get(), path_, print);
        putInPlace();
        return size;
    }
    const FileDescriptor file(
        restarted([this] { return ::open(path_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY); }));
    if (!file.isOpen()) {
        throw fileFailure(path_, errno);
    }
    return printTo(file.get(), path_, print);
}

void FormFile::putInPlace() {
    const HeldSignals held;
    if (beside_->name.empty()) {
        const std::string self = "/proc/self/fd/" + std::to_string(beside_->file.get());
        beside_->name = makeBeside(place_, [&self](const std::string& each) {
            return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, each.c_str(), AT_SYMLINK_FOLLOW) == 0;
        });
    }
    if (beside_->name.empty() || std::rename(beside_->name.c_str(), place_.c_str()) != 0) {
        throw fileFailure(path_, errno);
    }
    beside_.reset();
}

}  // namespace zeb::command
