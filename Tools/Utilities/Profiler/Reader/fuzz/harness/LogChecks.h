#pragma once

#include <cstdint>
#include <span>

#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::fuzz {

/// Ends the process with a message when a promise is broken.
void require(bool isKept, const char* promise);

/// Reads a log in every way that a host can, and requires what has to hold for any bytes:
/// the same log gives the same texts; a damaged chunk decides the load, whatever follows it; what was good
/// stays good when the log ends early; a failed report writes nothing; the tables of the console and of the
/// CSV file have the same rows; saving objects changes neither a report nor a file that exists. A log that is
/// not affordable is passed over.
void checkLog(std::span<const std::uint8_t> log, profiling::VisibilityLevel level);

}  // namespace zeb::fuzz
