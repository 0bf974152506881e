#pragma once

#include <string>
#include <string_view>

#include "command/CommandLine.h"
#include "console/CommandManual.h"
#include "samplelog/command/SampleKinds.h"

namespace zeb::samplelog {

inline constexpr std::string_view programName = "write-sample-log";

/// @return what the exit code says; empty for a number that is none of this command
std::string_view meaningOf(command::ExitCode exitCode);

/// The command line of write-sample-log.
struct CommandOptions {
    command::Action action = command::Action::work;
    const SampleKind* kind = &sampleKinds[0];  ///< never null
    NetworkOptions network;                    ///< as they are by default unless the kind takes them
    std::string file;
};

/// Help and version win over everything but words that no option takes.
/// @throws Failure for wrong usage
CommandOptions parseCommandLine(int argc, const char* const* argv);

/// @return what the command says about itself
console::CommandManual commandManual();

}  // namespace zeb::samplelog
