#pragma once

#include <span>

#include "log/ProfileLog_generated.h"
#include "store/MessageParts.h"

namespace zeb::profiling {

/// Copies the events of a message of a verified chunk, with their sub-events to any depth, into the arena of
/// `parts`. They come in the log's order at every level.
/// @return the message's events; the caller may still reorder them
/// @throws std::bad_alloc
std::span<ProfileEvent> decodeEvents(const schema::LogMessage& message, MessageParts& parts);

}  // namespace zeb::profiling
