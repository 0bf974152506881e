#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "command/MemoryLimit.h"

namespace zeb::command {

/// @return whether a path leads to what gives its bytes only once: a pipe, a socket or a terminal
bool comesOnce(const std::string& path);

/// Looks for what keeps a log from being read before anything of it is read: a directory, a missing or
/// unreadable file, one too short to hold a chunk. What comes once is not opened.
/// @return the cause in words, nothing when there is none
std::optional<std::string> troubleWithPath(const std::string& path);

/// Looks whether enough came through a pipe, whose log has been kept.
/// @return the cause in words, nothing when it may be a log
std::optional<std::string> troubleWithKept(const std::string& path);

/// Looks, by the chunks' lengths alone, for an error of the system that a reader takes for the end of the
/// log.
/// @return the cause in words, nothing when the log can be read to its end or is no regular file
std::optional<std::string> whyEndedEarly(const std::string& path);

/// What a file seems to be by its first bytes. A log begins with the length of its first chunk, and one of
/// four bytes of text would have half a gigabyte.
enum class Beginning : std::uint8_t { other, text, json };
Beginning beginningOf(const std::string& path);

/// Walks a log that a reader has rejected a second time, with the walker and the checks that readers use.
/// @param memory what may be used for it; the reader still holds what it had when it gave up
/// @param unpackedTo how a shell gets a compressed log from what unpacks it to the command: "| command -"
/// @return the cause in words: which chunk is damaged, where it stands and what is wrong with it
/// @throws std::bad_alloc when not even that finds memory
std::string whyRejected(const std::string& path, const MemoryLimit& memory, std::string_view unpackedTo);

}  // namespace zeb::command
