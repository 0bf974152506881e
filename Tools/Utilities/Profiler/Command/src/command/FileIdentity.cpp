#include "command/FileIdentity.h"

#include <sys/stat.h>

#include <filesystem>
#include <system_error>

namespace zeb::command {

namespace fs = std::filesystem;

std::optional<FileIdentity> identityOf(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, {}};
    }
    const fs::path place = behindLinks(path);
    if (place.has_filename() && ::stat(directoryOf(place.string()).c_str(), &status) == 0) {
        return FileIdentity{status.st_dev, status.st_ino, place.filename().string()};
    }
    return std::nullopt;
}

std::string behindLinks(const std::string& path) {
    constexpr int maxLinks = 40;
    std::error_code error;
    fs::path place(path);
    for (int links = 0; links < maxLinks && fs::is_symlink(place, error); ++links) {
        place = place.parent_path() / fs::read_symlink(place, error);
    }
    return place.string();
}

std::string directoryOf(const std::string& path) {
    const fs::path place(path);
    return place.has_parent_path() ? place.parent_path().string() : ".";
}

}  // namespace zeb::command
