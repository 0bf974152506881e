#pragma once

#include <span>

#include "log/ProfileLog_generated.h"
#include "store/MessageParts.h"

namespace zeb::profiling {

/// Copies the events of a message of a verified chunk, with their sub-events to any depth, into the arena of
/// `parts`. They come in the log's order at every level. An event whose selector names bytes or a text that
/// the log does not have is there without a value, which the reports show as an empty text; one of bytes
/// counts as an object without any.
/// @return the message's events; the caller may still reorder them
/// @throws std::bad_alloc
std::span<ProfileEvent> decodeEvents(const schema::LogMessage& message, MessageParts& parts);

}  // namespace zeb::profiling
