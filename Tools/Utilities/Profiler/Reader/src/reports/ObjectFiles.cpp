#include "reports/ObjectFiles.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "logging/Logger.h"
#include "text/NumberedName.h"

namespace zeb::profiling {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

bool writeAll(File file, std::span<const std::byte> bytes) {
    const bool isWritten =
        bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    return std::fclose(file.release()) == 0 && isWritten;
}

// A directory's name with a "/" behind it is no name of a file, and gives an error of its own.
bool isTaken(const std::string& name, int error) {
    return error == EEXIST || (error == EISDIR && ::access(name.c_str(), F_OK) == 0);
}

void logFailure(const std::string& fileName) {
    if (const auto logger = loggerFor(ZEB_LOG_LEVEL_ERROR)) {
        logMessage(*logger, ZEB_LOG_LEVEL_ERROR, "Invalid output fileName: [%s]", fileName.c_str());
    }
}

}  // namespace

void ObjectFiles::writeObjectFile(const ProfileEvent& event) {
    if (event.objectFileName().empty()) {
        return;
    }
    const std::string fileName(event.objectFileName());
    std::uint64_t& number = nextNumbers_[fileName];
    for (;;) {
        const std::string candidate = numberedName(fileName, number);
        if (File file{std::fopen(candidate.c_str(), "wx")}) {
            ++number;
            if (!writeAll(std::move(file), event.objectBytes())) {
                logFailure(candidate);
            }
            return;
        }
        if (!isTaken(candidate, errno)) {
            logFailure(candidate);
            return;
        }
        ++number;
    }
}

}  // namespace zeb::profiling
