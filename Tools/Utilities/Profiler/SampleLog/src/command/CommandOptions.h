#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "NetworkLog.h"

namespace zeb::samplelog {

inline constexpr std::string_view programName = "write-sample-log";

enum class LogKind : std::uint8_t { network, methods, adapterUpdater, sharedEvents };

enum class Action : std::uint8_t { writeLog, showHelp, showVersion };

/// The command line of write-sample-log.
struct CommandOptions {
    Action action = Action::writeLog;
    LogKind kind = LogKind::network;
    NetworkOptions network;  ///< for the kind network alone
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

std::string helpText();

}  // namespace zeb::samplelog
