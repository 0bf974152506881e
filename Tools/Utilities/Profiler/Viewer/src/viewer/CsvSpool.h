#pragma once

#include <cstdint>
#include <string>

#include "command/NamelessFile.h"

namespace zeb::viewer {

/// A file without a name that a reader writes its CSV report to, so that the report is complete before a byte
/// of it reaches the user's file. It lies beside the user's file, else in TMPDIR, on a disk where there is
/// one: a report may be larger than the memory that it may have.
class CsvSpool {
public:
    /// @param csvPath the user's file
    /// @throws Failure when no such file can be made anywhere
    explicit CsvSpool(std::string csvPath);

    /// @return a path that a reader can open for appending; valid within this process as long as this lives
    [[nodiscard]] std::string path() const { return spool_.path(); }

    /// @return bytes of the report
    /// @throws Failure when it has been cut off, which a reader doesn't tell: the disk is full, or a file may
    ///         not be that large
    [[nodiscard]] std::uint64_t size() const;

    /// @return the open file, for reading
    [[nodiscard]] const command::FileDescriptor& file() const { return spool_.file; }

private:
    std::string csvPath_;
    command::NamelessFile spool_;
};

}  // namespace zeb::viewer
