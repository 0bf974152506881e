#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zeb::command {

/// The exit codes of all commands. Each ends with some of them, and has its own words for them in its help.
enum class ExitCode : std::uint8_t {
    good = 0,
    badLog = 1,
    usage = 2,
    badOutput = 3,
    badPlugin = 4,
    badReport = 5,
    slower = 6,
    incomparable = 7,
    closedPipe = 141,  ///< as a shell tells the signal of a pipe that nobody reads any more
};

/// Ends the command with an exit code and one line on standard error.
class Failure final : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string& line) : std::runtime_error(line), exitCode_(exitCode) {}
    /// @param subject the file, or the argument, that is to blame
    Failure(ExitCode exitCode, const std::string& subject, const std::string& cause)
        : Failure(exitCode, subject + ": " + cause) {}

    [[nodiscard]] ExitCode exitCode() const { return exitCode_; }

    /// Lets the line end in a word that the command's help says more.
    [[nodiscard]] Failure withHelp() const {
        Failure failure = *this;
        failure.pointsToHelp_ = true;
        return failure;
    }
    [[nodiscard]] bool pointsToHelp() const { return pointsToHelp_; }

private:
    ExitCode exitCode_;
    bool pointsToHelp_ = false;
};

/// Writes the text on standard error as one line behind the program's name. Control characters, which a file
/// name may hold, show as question marks (`TerminalText`).
void printErrorLine(std::string_view programName, std::string_view text) noexcept;

/// @return the system's text for an `errno` value
std::string errorText(int error);

}  // namespace zeb::command
