#include "viewer/CsvSpool.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "command/Failure.h"
#include "command/FileIdentity.h"

namespace zeb::viewer {

using command::errorText;
using command::ExitCode;
using command::Failure;
using command::FileDescriptor;
using command::restarted;

namespace {

// A pipe or device is no place beside which a file belongs.
std::optional<std::string> directoryBeside(const std::string& csvPath) {
    std::error_code error;
    if (std::filesystem::is_other(csvPath, error)) {
        return std::nullopt;
    }
    return command::directoryOf(csvPath);
}

// Returns the error that keeps the file from growing further, or 0. What is written for it is cut off again.
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

CsvSpool::CsvSpool(std::string csvPath)
    : csvPath_(std::move(csvPath)), spool_(command::makeNamelessFile(directoryBeside(csvPath_))) {
    if (!spool_.file.isOpen()) {
        throw Failure(ExitCode::badOutput, csvPath_,
                      "there is no directory for the CSV report while it is made: " + errorText(errno));
    }
}

std::uint64_t CsvSpool::size() const {
    struct stat status {};
    int error = ::fstat(spool_.file.get(), &status) == 0 ? 0 : errno;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (error == 0) {
        error = errorOfGrowing(spool_.file, size);
    }
    if (error != 0) {
        throw Failure(ExitCode::badOutput, csvPath_,
                      "the CSV report can't be written in " + spool_.directory +
                          ", where it is made first: " + errorText(error));
    }
    return size;
}

}  // namespace zeb::viewer
