#pragma once

#include <string>

#include "command/FileDescriptor.h"

namespace zeb::viewer {

/// The directory that a reader saves objects to.
class ObjectDirectory {
public:
    /// @throws Failure when there is no such directory, or no file can be made in it
    explicit ObjectDirectory(const std::string& path);

    /// @return its path from the root, without links
    [[nodiscard]] const std::string& path() const { return path_; }

private:
    friend class DirectoryVisit;

    std::string path_;
    command::FileDescriptor directory_;
};

/// Makes a directory the working directory of the process, for as long as it lives.
class DirectoryVisit {
public:
    /// @throws Failure when the directory can't be entered
    explicit DirectoryVisit(const ObjectDirectory& directory);
    DirectoryVisit(const DirectoryVisit&) = delete;
    DirectoryVisit& operator=(const DirectoryVisit&) = delete;
    ~DirectoryVisit();

    /// Goes back before the end.
    /// @throws Failure when there is no way back
    void leave();

private:
    command::FileDescriptor before_;
};

}  // namespace zeb::viewer
