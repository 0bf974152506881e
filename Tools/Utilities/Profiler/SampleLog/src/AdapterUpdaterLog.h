#pragma once

#include <ostream>

#include "ChunkedLog.h"

/// A log of the adapter updater, the tool that exchanges the sections of a binary. Readers know it by the
/// generator's name in the header.
namespace zeb::samplelog {

Header adapterUpdaterHeader();

/// @return the messages; the last update is the one that a report shows
Chunks adapterUpdaterChunks();

/// Writes the log; the state of the stream tells whether that succeeded.
void writeAdapterUpdaterLog(std::ostream& out);

}  // namespace zeb::samplelog
