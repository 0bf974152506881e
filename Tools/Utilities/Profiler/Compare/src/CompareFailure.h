#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zeb::compare {

inline constexpr std::string_view programName = "zeb-profile-compare";

/// Where several hold, usage comes before badLog, that before badOutput, that before incomparable, and slower
/// is last.
enum class ExitCode : std::uint8_t {
    good = 0,
    badLog = 1,
    usage = 2,
    badOutput = 3,
    slower = 6,
    incomparable = 7,
};

/// @return what the exit code says, as the help has it; empty for a number that is none
std::string_view meaningOf(ExitCode exitCode);

/// Ends the command with an exit code and one line on standard error.
class CompareFailure final : public std::runtime_error {
public:
    CompareFailure(ExitCode exitCode, const std::string& line)
        : std::runtime_error(line), exitCode_(exitCode) {}

    [[nodiscard]] ExitCode exitCode() const { return exitCode_; }

private:
    ExitCode exitCode_;
};

}  // namespace zeb::compare
