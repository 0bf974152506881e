#include "CsvSpool.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkostemp
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Failure.h"

namespace zeb::viewer {

namespace {

namespace fs = std::filesystem;

bool isMemory(const fs::path& directory) {
    struct statfs system {};
    return ::statfs(directory.c_str(), &system) == 0 &&
           (system.f_type == TMPFS_MAGIC || system.f_type == RAMFS_MAGIC);
}

// The directories to try, in this order: those that are memory last, but for the one that the user names.
std::vector<fs::path> directoriesFor(const fs::path& csvPath) {
    std::vector<fs::path> directories;
    std::error_code error;
    if (!fs::is_other(csvPath, error)) {  // a pipe or device, beside which no file belongs
        directories.push_back(csvPath.has_parent_path() ? csvPath.parent_path() : ".");
    }
    const char* const named = ::getenv("TMPDIR");
    directories.insert(directories.end(), {named == nullptr ? "" : named, "/tmp", "/var/tmp"});
    std::stable_partition(directories.begin(), directories.end(), [named](const fs::path& directory) {
        return (named != nullptr && directory == named) || !isMemory(directory);
    });
    return directories;
}

FileDescriptor makeNamelessFile(const fs::path& directory) {
    FileDescriptor file(::open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!file.isOpen() && (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL)) {
        std::string name = (directory / ".zeb-csv-XXXXXX").string();
        file = FileDescriptor(::mkostemp(name.data(), O_CLOEXEC));
        if (file.isOpen()) {
            static_cast<void>(::unlink(name.c_str()));
        }
    }
    return file;
}

// Gives the error that keeps the file from growing further, or 0. What is written for it is cut off again.
int errorOfGrowing(const FileDescriptor& file, std::uint64_t size) {
    static constexpr std::size_t probeSize = 65536;
    rlimit limit{};
    const bool isLimited = ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    if (isLimited && size >= limit.rlim_cur) {
        return EFBIG;
    }
    std::string probe(isLimited ? std::min<std::uint64_t>(probeSize, limit.rlim_cur - size) : probeSize,
                      '\0');
    std::uint64_t end = size;
    int error = 0;
    while (error == 0 && end < size + probe.size()) {
        const ssize_t count = restarted([&] {
            return ::pwrite(file.get(), probe.data(), size + probe.size() - end, static_cast<::off_t>(end));
        });
        error = count < 0 ? errno : 0;
        end += count < 0 ? 0 : static_cast<std::uint64_t>(count);
    }
    return ::ftruncate(file.get(), static_cast<::off_t>(size)) == 0 ? error : errno;
}

}  // namespace

CsvSpool::CsvSpool(std::string csvPath) : csvPath_(std::move(csvPath)), file_(-1) {
    int error = 0;
    for (const fs::path& directory : directoriesFor(csvPath_)) {
        file_ = makeNamelessFile(directory);
        if (file_.isOpen()) {
            directory_ = directory.string();
            return;
        }
        error = error == 0 ? errno : error;
    }
    throw Failure(ExitCode::badOutput, csvPath_,
                  "there is no directory for the CSV report while it is made: " + errorText(error));
}

std::string CsvSpool::path() const {
    return "/proc/self/fd/" + std::to_string(file_.get());
}

std::uint64_t CsvSpool::size() const {
    struct stat status {};
    int error = ::fstat(file_.get(), &status) == 0 ? 0 : errno;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (error == 0) {
        error = errorOfGrowing(file_, size);
    }
    if (error != 0) {
        throw Failure(ExitCode::badOutput, csvPath_,
                      "the CSV report can't be written in " + directory_ +
                          ", where it is made first: " + errorText(error));
    }
    return size;
}

}  // namespace zeb::viewer
