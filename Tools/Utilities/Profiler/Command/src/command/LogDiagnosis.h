#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "command/MemoryLimit.h"

namespace zeb::command {

/// Looks for what keeps a log from being read before anything of it is read: a directory, a missing,
/// unreadable or empty file. A pipe or device is not opened, since it gives what it holds only once.
/// @return the cause in words, nothing when there is none
std::optional<std::string> troubleWithPath(const std::string& path);

/// Looks, by the chunks' lengths alone, for an error of the system that a reader takes for the end of the
/// log.
/// @return the cause in words, nothing when the log can be read to its end or is no regular file
std::optional<std::string> whyEndedEarly(const std::string& path);

/// Walks a log that a reader has rejected a second time, with the walker and the checks that readers use.
/// @param memory what may be used for it; the reader still holds what it had when it gave up
/// @param unpackedTo how a shell gets a compressed log from what unpacks it to the command: "| command -"
/// @return the cause in words: which chunk is damaged, where it stands and what is wrong with it
/// @throws std::bad_alloc when not even that finds memory
std::string whyRejected(const std::string& path, const MemoryLimit& memory, std::string_view unpackedTo);

}  // namespace zeb::command
