#pragma once

#include "store/MethodRecord.h"

namespace zeb::profiling {

/// @return inferences per second of a whole run, from the duration event and the count event of an
///         ExecuteOverall record, whichever comes first; 0 for a duration of 0
/// @param record has at least `executionRateEvents` events
float executionRate(const MethodRecord& record);

inline constexpr std::size_t executionRateEvents = 2;

}  // namespace zeb::profiling
