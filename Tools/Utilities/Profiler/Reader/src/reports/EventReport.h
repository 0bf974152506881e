#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "store/ProfileEvent.h"

/// Events as lines of a console report and as rows of a CSV report.
namespace zeb::profiling {

/// Writes the line of one event that is no object. Leaves the stream in fixed notation with precision 0.
/// @param level depth of its list, 1 for the events of a message
void printEventLine(std::ostream& out, const ProfileEvent& event, std::uint64_t level);

/// Writes a row for each event and each directly below it, in decimal whatever the stream's flags and locale
/// are; object events have none.
/// @param timestamp, message of the message that the events belong to
void writeEventRows(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                    std::string_view message);

}  // namespace zeb::profiling
