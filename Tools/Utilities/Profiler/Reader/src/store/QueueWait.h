#pragma once

#include <cstddef>
#include <cstdint>

#include "store/ProfileEvent.h"

namespace zeb::profiling {

/// The queue waits among the events of an execution.
struct QueueWait {
    std::size_t count = 0;
    std::uint64_t lastUs = 0;
};

/// Looks for them among the events of an execution and directly below these.
QueueWait queueWaitOf(const EventList& events);

}  // namespace zeb::profiling
