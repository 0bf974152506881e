#pragma once

#include <cstdint>
#include <vector>

/// Logs for a host that knows nothing of the library's sources.
namespace zeb::test {

/// A log with one execution, 1234 us long, of the graph "net", and the generator "tool" of version "1.2".
std::vector<std::uint8_t> smallLog();

/// A log whose profile level is no number.
std::vector<std::uint8_t> logWithoutANumber();

}  // namespace zeb::test
