#pragma once

#include <optional>
#include <string>

#include "command/NamelessFile.h"

namespace zeb::command {

/// A log that may come through a pipe, and so only once (`comesOnce`). It is kept in a file without a name
/// first, so that it can be read again: to say what is wrong with it, to check the names of objects, for the
/// forms.
class PipedLog {
public:
    /// Looks at what the path leads to, and takes nothing of it yet.
    /// @param log its path; "-" is standard input
    /// @throws Failure when there is no room for a pipe's log
    explicit PipedLog(const std::string& log);

    /// @return the path that was given, "/dev/stdin" for "-"
    [[nodiscard]] const std::string& given() const { return log_; }

    /// @return the path to read the log from, once it is kept: the one that was given wherever the system
    /// lets the file take the pipe's place, so that reports show it
    [[nodiscard]] const std::string& path() const { return path_; }

    /// Makes the log fit to be read as often as it takes. A pipe's is taken to its end.
    /// @throws Failure when it can't be read or kept, or is too short to hold a chunk
    void prepare();

private:
    void keep();

    std::string log_;
    std::string path_;
    std::optional<int> descriptor_;     ///< of the pipe, where this process has it already
    std::optional<NamelessFile> kept_;  ///< for a pipe
};

}  // namespace zeb::command
