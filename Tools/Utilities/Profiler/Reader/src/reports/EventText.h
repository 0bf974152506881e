#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "store/ProfileEvent.h"

/// Values, units and names of events as the reports show them.
namespace zeb::profiling {

/// @return the value as text: integers in decimal, floats with six digits behind the point, strings as they
/// are;
///         empty for a value that is not set
std::string formatEventValue(const EventValue& value);

/// @return what the console shows directly behind a value, with its leading blank
std::string_view unitSuffix(EventUnit unit);

/// @return the unit's text in a CSV file; object events have no row there
std::string_view unitCsvText(EventUnit unit);

/// Looks for the first event of a name, depth first, parents before children. Object events never match, but
/// are searched below.
/// @return the text of its value, nothing when there is no such event
std::optional<std::string> findEventValue(std::string_view name, const EventList& events);

}  // namespace zeb::profiling
