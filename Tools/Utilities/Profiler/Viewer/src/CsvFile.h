#pragma once

#include <string>
#include <string_view>

#include "FileDescriptor.h"

namespace zeb::viewer {

/// Tests cheaply, and without creating it, whether a CSV file could be appended to.
/// @throws Failure when it could not, or when it is the log itself
void checkCsvPath(const std::string& path, const std::string& logPath);

/// A file in memory that a reader writes its CSV report to, so that the report is complete before a byte of
/// it reaches the user's file.
class CsvBuffer {
public:
    /// @param path of the user's file, for messages
    /// @throws Failure when there can be no such file
    explicit CsvBuffer(std::string path);

    /// @return path of the file in memory; valid within this process for as long as this object lives
    [[nodiscard]] std::string memoryPath() const;

    /// @throws Failure when the report can't be read back, or has been cut off by a limit
    [[nodiscard]] std::string content() const;

private:
    std::string path_;
    FileDescriptor file_;
};

/// Appends the bytes to a file, which is created if need be, all of them or none. A regular file is locked
/// meanwhile, so that viewers that run at the same time do not mix their reports. Signals that end the
/// process are held back while it is written.
/// @throws Failure when they can't be written; a regular file is then as it was before
void appendToFile(const std::string& path, std::string_view bytes);

}  // namespace zeb::viewer
