#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "SampleKinds.h"
#include "text/CommandManual.h"

namespace zeb::samplelog {

inline constexpr std::string_view programName = "write-sample-log";

enum class ExitCode : std::uint8_t { good = 0, usage = 2, badOutput = 3 };

/// @return what the exit code says; empty for a number that is none
std::string_view meaningOf(ExitCode exitCode);

enum class Action : std::uint8_t { writeLog, showHelp, showVersion };

/// The command line of write-sample-log.
struct CommandOptions {
    Action action = Action::writeLog;
    const SampleKind* kind = &sampleKinds[0];  ///< never null
    NetworkOptions network;                    ///< as they are by default unless the kind takes them
    std::string file;
};

/// The command line is wrong; the text names the argument.
class UsageError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Help and version win over everything but words that no option takes.
/// @throws UsageError
CommandOptions parseCommandLine(int argc, const char* const* argv);

/// @return what the command says about itself
profiling::CommandManual commandManual();

}  // namespace zeb::samplelog
