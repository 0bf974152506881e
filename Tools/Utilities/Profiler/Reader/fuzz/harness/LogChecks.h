#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::fuzz {

/// Ends the process with a message when a promise is broken.
void require(bool isKept, const char* promise);

/// From now on every input gets the costly checks, and not just some.
void checkEveryInputInFull();

/// Whether an input gets the costly checks, as one of `oneOf` does. It depends on its bytes alone.
bool isCheckedInFull(std::span<const std::uint8_t> input, std::size_t oneOf);

/// Reads a log in memory, makes all reports of it, and requires what has to hold for any bytes: a damaged
/// chunk alone decides on the load; a failed load or report writes nothing; the tables of the console and of
/// the CSV file have the same rows.
///
/// Some logs are read in every way that a host can, too: each report gives what it gave in memory, and gives
/// it again; nothing behind a damaged chunk counts; what was good stays good when the log ends early; saving
/// objects changes neither a report nor a file that exists. A log that is not affordable is passed over.
void checkLog(std::span<const std::uint8_t> log, profiling::VisibilityLevel level);

}  // namespace zeb::fuzz
