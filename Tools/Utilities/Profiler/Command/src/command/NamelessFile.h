#pragma once

#include <optional>
#include <string>

#include "command/FileDescriptor.h"

namespace zeb::command {

/// An open file without a name, for reading and writing: it goes with the process, however that ends.
struct NamelessFile {
    FileDescriptor file;
    std::string directory;  ///< it takes room there

    /// @return a path that leads to it within this process
    [[nodiscard]] std::string path() const;
};

/// Makes one in a directory that has to do with it, else in TMPDIR, /tmp or /var/tmp; where there is a disk,
/// not in a file system that is memory.
/// @param preferred nothing: any
/// @return a file that is not open when it can be made nowhere; `errno` tells why not in the first place
NamelessFile makeNamelessFile(const std::optional<std::string>& preferred);

}  // namespace zeb::command
