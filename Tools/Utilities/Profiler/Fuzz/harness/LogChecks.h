#pragma once

#include <cstdint>
#include <span>

#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::fuzz {

/// Ends the process with a message when a promise is broken.
void require(bool isKept, const char* promise);

/// From now on every input gets the costly checks, and not just some.
void checkEveryInputInFull();

/// Whether an input gets the costly checks, as one of 32 does. That depends on its bytes alone, so that a
/// finding shows again.
bool isCheckedInFull(std::span<const std::uint8_t> input);

/// Loads a log, makes all reports of it in memory, and requires what has to hold for any bytes: a damaged
/// chunk alone decides on the load; a failed load or report writes nothing.
///
/// A log that is checked in full is read in every way that a host can, too: each report is what it was in
/// memory, and is so again; the tables of the console and of the CSV file have the same rows; nothing behind
/// a damaged chunk counts; what was good stays good when the log ends early; saving objects changes neither
/// a report nor a file that exists. A log that is not affordable is passed over.
void checkLog(std::span<const std::uint8_t> log, profiling::VisibilityLevel level);

}  // namespace zeb::fuzz
