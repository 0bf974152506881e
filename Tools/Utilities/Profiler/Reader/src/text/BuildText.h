#pragma once

#include <string>
#include <string_view>

namespace zeb::profiling {

/// @return the lines of `--version`: the command with its version, and "Built by GNU 12.2.0 for Linux
///         x86_64, Release, from commit 0123456789ab", without the commit where it is not known. The
///         same sources give the same.
std::string versionLines(std::string_view command, std::string_view version);

}  // namespace zeb::profiling
