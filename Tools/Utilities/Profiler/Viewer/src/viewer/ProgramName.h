#pragma once

#include <string_view>

#include "command/Failure.h"

namespace zeb::viewer {

inline constexpr std::string_view programName = "zeb-profile-viewer";

/// What stands behind a command that unpacks a log.
inline constexpr std::string_view pipedIntoViewer = "| zeb-profile-viewer -";

/// Writes a line on standard error, see `command::printErrorLine`.
inline void printErrorLine(std::string_view text) noexcept {
    command::printErrorLine(programName, text);
}

}  // namespace zeb::viewer
