#pragma once

#include <cstdint>
#include <functional>
#include <optional>

/// Faults of the system that no file here has. The program's own `close` and `pread` stand in for the
/// system's.
namespace zeb::command::test {

/// Lets the next duplicate of a descriptor fail to close, for want of quota.
inline bool nextCloseFails = false;

/// Is called before the next duplicate is closed, once.
inline std::function<void()> beforeClose;

/// The byte of a file that can't be read.
inline std::optional<std::int64_t> badByte;

/// Counts the reads.
inline int reads = 0;

}  // namespace zeb::command::test
