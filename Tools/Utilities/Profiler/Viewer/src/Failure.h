#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zeb::viewer {

inline constexpr std::string_view programName = "zeb-profile-viewer";

enum class ExitCode : std::uint8_t {
    good = 0,
    badLog = 1,
    usage = 2,
    badOutput = 3,
    badPlugin = 4,
    badReport = 5,
    closedPipe = 141,  ///< as a shell tells the signal of a pipe that nobody reads any more
};

/// @return what the exit code says, as help and README have it; empty for a number that is none
std::string_view meaningOf(ExitCode exitCode);

/// Ends the command with an exit code and one line on standard error.
class Failure final : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string& line) : std::runtime_error(line), exitCode_(exitCode) {}
    /// @param subject the file, or the argument, that is to blame
    Failure(ExitCode exitCode, const std::string& subject, const std::string& cause)
        : Failure(exitCode, subject + ": " + cause) {}

    [[nodiscard]] ExitCode exitCode() const { return exitCode_; }

private:
    ExitCode exitCode_;
};

/// Writes the text on standard error as one line behind the program's name. Control characters, which a file
/// name may hold, show as question marks (`TerminalText`).
void printErrorLine(std::string_view text) noexcept;

/// @return the system's text for an `errno` value
std::string errorText(int error);

}  // namespace zeb::viewer
