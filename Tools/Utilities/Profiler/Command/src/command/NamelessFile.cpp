#include "command/NamelessFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkostemp
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <vector>

namespace zeb::command {

namespace {

namespace fs = std::filesystem;

bool isMemory(const fs::path& directory) {
    struct statfs system {};
    return ::statfs(directory.c_str(), &system) == 0 &&
           (system.f_type == TMPFS_MAGIC || system.f_type == RAMFS_MAGIC);
}

// The directories to try, in this order: those that are memory last, but for the one that the user names.
std::vector<fs::path> directoriesToTry(const std::optional<std::string>& preferred) {
    std::vector<fs::path> directories;
    if (preferred) {
        directories.emplace_back(*preferred);
    }
    const char* const named = ::getenv("TMPDIR");
    directories.insert(directories.end(), {named == nullptr ? "" : named, "/tmp", "/var/tmp"});
    std::stable_partition(directories.begin(), directories.end(), [named](const fs::path& directory) {
        return (named != nullptr && directory == named) || !isMemory(directory);
    });
    return directories;
}

FileDescriptor makeIn(const fs::path& directory) {
    FileDescriptor file(::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!file.isOpen() && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        std::string name = (directory / ".zeb-XXXXXX").string();
        file = FileDescriptor(::mkostemp(name.data(), O_CLOEXEC));
        if (file.isOpen()) {
            static_cast<void>(::unlink(name.c_str()));
        }
    }
    return file;
}

}  // namespace

std::string NamelessFile::path() const {
    return "/proc/self/fd/" + std::to_string(file.get());
}

NamelessFile makeNamelessFile(const std::optional<std::string>& preferred) {
    int error = 0;
    for (const fs::path& directory : directoriesToTry(preferred)) {
        FileDescriptor file = makeIn(directory);
        if (file.isOpen()) {
            return {std::move(file), directory.string()};
        }
        error = error == 0 ? errno : error;
    }
    errno = error;
    return {FileDescriptor(-1), {}};
}

}  // namespace zeb::command
