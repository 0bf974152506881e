#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "reports/ObjectFiles.h"
#include "store/ProfileEvent.h"

/// The two walks over an event list that reports share.
namespace zeb::profiling {

/// Writes an event's console line; an object event has none, and goes to its file.
/// @param level, objectFiles as below
void printOneEvent(std::ostream& out, const ProfileEvent& event, std::uint64_t level,
                   ObjectFiles* objectFiles);

/// Writes the lines of all events of a list and of all below them.
/// @param level depth of the list, 1 for the events of a message
/// @param objectFiles takes the object events; null when they are not saved
void printEvents(std::ostream& out, const EventList& events, std::uint64_t level, ObjectFiles* objectFiles);

/// Writes a CSV row for each event and each directly below it; object events have none.
/// @param timestamp, message of the message that the events belong to
void writeEventRows(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                    std::string_view message);

}  // namespace zeb::profiling
