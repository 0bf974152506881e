#pragma once

#include <optional>
#include <string>

namespace zeb::viewer {

/// Looks for what keeps a log from being read before anything of it is read: a directory, a missing,
/// unreadable or empty file. A pipe or device is not opened, since it gives what it holds only once.
/// @return the cause in words, nothing when there is none
std::optional<std::string> troubleWithPath(const std::string& path);

/// Walks a log that a reader has rejected a second time, with the walker and the checks that readers use.
/// @return the cause in words: which chunk is damaged, where it stands and what is wrong with it
std::string whyRejected(const std::string& path);

}  // namespace zeb::viewer
