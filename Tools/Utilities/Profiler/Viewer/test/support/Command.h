#pragma once

#include <cstdint>
#include <string>
#include <vector>

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

/// Runs a program to its end.
/// @param arguments the program's path first
CommandResult runCommand(const std::vector<std::string>& arguments, Output output = Output::captured);

}  // namespace zeb::viewer::test
