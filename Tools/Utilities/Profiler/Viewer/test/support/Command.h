#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/TestChunks.h"

namespace zeb::viewer::test {

/// Where a command's standard output goes.
enum class Output : std::uint8_t {
    captured,
    full,        ///< a device without room
    brokenPipe,  ///< a pipe that nobody reads any more
    closed,      ///< no file at all
};

struct CommandResult {
    int exitCode = -1;  ///< above 128: ended by that signal
    std::string out;
    std::string err;
};

/// A program that runs.
class RunningCommand {
public:
    /// @param arguments the program's path first
    explicit RunningCommand(const std::vector<std::string>& arguments, Output output = Output::captured);

    void sendSignal(int signal) const;
    /// Waits for the end. To be called once.
    CommandResult wait();

private:
    TempDir captures_;
    pid_t process_ = -1;
};

/// Runs a program to its end.
/// @param arguments the program's path first
CommandResult runCommand(const std::vector<std::string>& arguments, Output output = Output::captured);

}  // namespace zeb::viewer::test
