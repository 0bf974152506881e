#pragma once

#include <ostream>

#include "ChunkedLog.h"

/// A log with a message of every method, and every kind of value and unit, small enough to check a report on
/// it by hand.
namespace zeb::samplelog {

Header methodsHeader();

/// @return the messages. Among them are some of low visibility, one of an unknown method and an empty chunk.
Chunks methodsChunks();

/// Writes the log; the state of the stream tells whether that succeeded.
void writeMethodsLog(std::ostream& out);

}  // namespace zeb::samplelog
