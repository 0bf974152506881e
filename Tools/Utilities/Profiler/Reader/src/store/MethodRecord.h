#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "store/ProfileEvent.h"

namespace zeb::profiling {

/// One occurrence of a method, or a statistic over several. Its texts and events live as long as the store.
struct MethodRecord {
    std::uint64_t durationUs = 0;
    std::uint64_t timestamp = 0;  ///< `MessageTime.timestamp`, in the log's own scale
    std::string_view message;     ///< `LogMessage.text`, where the method keeps it
    EventList events;
};

/// A record under a graph's name, or under the name of a method.
struct NamedMethodRecord {
    std::string_view name;
    MethodRecord record;
};

/// All occurrences of a method under one name, in log order; never empty in the store.
struct GraphMethodRecords {
    std::string_view graphName;
    std::vector<MethodRecord> records;
    std::size_t firstUnfilled = 0;  ///< all records before this one have events
};

/// The queue wait of each execution of a graph, in us.
struct GraphQueueWaits {
    std::string_view graphName;
    std::vector<std::uint64_t> queueWaits;
};

/// The queue wait of one execution of a graph.
struct GraphQueueWait {
    std::string_view graphName;
    std::uint64_t queueWaitUs = 0;
};

}  // namespace zeb::profiling
