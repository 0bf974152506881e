#pragma once

#include <cstddef>

#include "forms/trace/TraceFile.h"
#include "log/ProfileLog_generated.h"
#include "store/MessageParts.h"

namespace zeb::forms {

/// A slice shows that many of its events at most.
inline constexpr std::size_t maxTraceEvents = 32;

/// Adds the events of a message to the arguments of its slice: a member "events" with a value for each event,
/// under the names on the way down to it and the unit. Further ones are not looked at, since any number of
/// messages may share them; a member "hasMoreEvents" tells of them.
/// @param parts has entered the message's chunk
void addEvents(JsonWriter& arguments, const profiling::schema::LogMessage& message,
               profiling::MessageParts& parts);

}  // namespace zeb::forms
