#pragma once

#include <cstdint>

#include "log/ProfileLog_generated.h"

/// What several decoders read of a message.
namespace zeb::profiling {

/// @return how long the method ran, in us: 0 when a time is not stored or the times are reversed
inline std::uint64_t durationOf(const schema::LogMessage& message) {
    const auto start = message.timing()->startTime();
    const auto end = message.timing()->endTime();
    return start && end && *end > *start ? *end - *start : 0;
}

inline std::uint64_t timestampOf(const schema::LogMessage& message) {
    return message.time()->timestamp();
}

}  // namespace zeb::profiling
