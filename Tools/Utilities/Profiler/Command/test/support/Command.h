#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "support/TestChunks.h"

namespace zeb::command::test {

using Strings = std::vector<std::string>;

/// Where a command's standard output goes, as a shell's redirection.
namespace output {
inline const std::string captured = ">out";
inline const std::string full = ">/dev/full";
inline const std::string closed = ">&-";
/// A pipe that nobody reads any more.
inline const std::string brokenPipe = "3<>pipe >pipe 3<&-";
}  // namespace output

struct CommandResult {
    int exitCode = -1;  ///< above 128: ended by that signal
    std::string out;
    std::string err;
};

/// Runs a program to its end.
/// @param arguments the program's path first
/// @param meanwhile is called once the program runs
CommandResult runCommand(const Strings& arguments, const std::string& output = output::captured,
                         const std::function<void(pid_t)>& meanwhile = {});

/// Expects the exit code, and the line of the program alone on standard error.
void expectFailure(const CommandResult& result, int exitCode, const std::string& line,
                   const std::string& program = "zeb-profile-viewer");

}  // namespace zeb::command::test
