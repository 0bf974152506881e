#pragma once

#include <span>

#include "log/ProfileLog_generated.h"
#include "store/EventArena.h"

namespace zeb::profiling {

/// Copies the events of a message of a verified chunk, with their sub-events to any depth, into the arena.
/// They come in the log's order at every level.
/// @return the message's events; the caller may still reorder them
/// @throws std::bad_alloc
std::span<ProfileEvent> decodeEvents(const schema::LogMessage& message, EventArena& arena);

}  // namespace zeb::profiling
