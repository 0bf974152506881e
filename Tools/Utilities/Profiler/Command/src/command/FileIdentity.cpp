#include "command/FileIdentity.h"

#include <sys/stat.h>

#include <system_error>

namespace zeb::command {

std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, {}};
    }
    const std::filesystem::path place = behindLinks(path);
    if (place.has_filename() && ::stat(directoryOf(place).c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, place.filename().string()};
    }
    return std::nullopt;
}

std::filesystem::path behindLinks(std::filesystem::path path) {
    constexpr int maxLinks = 40;
    std::error_code error;
    for (int links = 0; links < maxLinks && std::filesystem::is_symlink(path, error); ++links) {
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
    }
    return path;
}

std::string directoryOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path().string() : ".";
}

}  // namespace zeb::command
