#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace zeb::command {

/// Which file a path leads to, however it is spelt and whatever links it goes through. Two paths are of one
/// file when their identities are equal, also while it is not there yet.
struct FileIdentity {
    ::dev_t device;  ///< of the file, or of its directory while it is not there; so is the next one
    ::ino_t inode;
    std::string name;  ///< of a file that is not there in its directory, else empty

    bool operator==(const FileIdentity&) const = default;
};

/// @return nothing when neither the file nor its directory is there, nor for a path that can be no file's
std::optional<FileIdentity> identityOf(const std::string& path);

/// @return the path behind symbolic links at its end, also of a file that is not there
std::string behindLinks(const std::string& path);

/// @return the directory of a path, "." for a name alone
std::string directoryOf(const std::string& path);

}  // namespace zeb::command
