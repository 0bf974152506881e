#pragma once

#include <ostream>

/// A log of the adapter updater, the tool that exchanges the sections of a binary. Readers know it by the
/// generator's name in the header.
namespace zeb::samplelog {

/// Writes the log, of two updates; the state of the stream tells whether that succeeded.
void writeAdapterUpdaterLog(std::ostream& out);

}  // namespace zeb::samplelog
