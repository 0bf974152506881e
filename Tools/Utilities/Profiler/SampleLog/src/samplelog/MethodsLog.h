#pragma once

#include <ostream>

/// A log with a message of every method, and every kind of value and unit, small enough to check a report on
/// it by hand.
namespace zeb::samplelog {

/// Writes the log; the state of the stream tells whether that succeeded. Among its messages are some of low
/// visibility and one of an unknown method, and a chunk is empty.
void writeMethodsLog(std::ostream& out);

}  // namespace zeb::samplelog
