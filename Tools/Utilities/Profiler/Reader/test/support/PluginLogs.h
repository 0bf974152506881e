#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Logs for a host that knows nothing of the library's sources.
namespace zeb::test {

/// A log with one execution, 1234 us long, of the graph "net", and the generator "tool" of version "1.2".
std::vector<std::uint8_t> smallLog();

/// A log whose profile level is no number.
std::vector<std::uint8_t> logWithoutANumber();

/// The sample logs: of every kind of value, and of a run with layers.
std::vector<std::vector<std::uint8_t>> sampleLogs();

/// A log whose aggregation has notes, and whose report has a line of that many bytes.
std::vector<std::uint8_t> logWithALongLine(std::size_t size);

}  // namespace zeb::test
