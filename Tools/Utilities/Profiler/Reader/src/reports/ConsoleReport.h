#pragma once

#include <iosfwd>

#include "reader/ZebProfileLogReader.h"

namespace zeb::profiling {

/// Writes the sections of the generic console report, in their order.
void printConsoleReport(std::ostream& out, ZebProfileLogReader& reader);

/// Writes the one section that the log of an adapter updater has.
void printUpdateBinarySectionStats(std::ostream& out, ZebProfileLogReader& reader);

}  // namespace zeb::profiling
