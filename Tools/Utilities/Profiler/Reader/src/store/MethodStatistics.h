#pragma once

#include <iterator>

#include "memory/BlockList.h"
#include "store/MethodRecord.h"
#include "store/NamedList.h"

namespace zeb::profiling {

using GraphRecordList = NamedList<GraphMethodRecords, &GraphMethodRecords::graphName>;
using NamedRecordList = NamedList<NamedMethodRecord, &NamedMethodRecord::name>;

/// The occurrences of a method graph by graph, and the statistics over them.
struct MethodStatistics {
    bool isSeen = false;      ///< such a message was stored
    GraphRecordList records;  ///< graphs in order of first appearance

    // By aggregation; each list has the entries of the records in the same order
    BlockList<NamedMethodRecord> average;
    BlockList<NamedMethodRecord> max;
    BlockList<NamedMethodRecord> min;
};

/// The methods that have statistics.
struct MeasuredMethods {
    MethodStatistics execute;
    MethodStatistics applyBinarySection;
    MethodStatistics finalizeAfterTensorUpdates;
};

/// One of them, and all of them, in the order in which they are aggregated and reported.
using MeasuredMethod = MethodStatistics MeasuredMethods::*;
inline constexpr MeasuredMethod measuredMethods[] = {
    &MeasuredMethods::execute,
    &MeasuredMethods::applyBinarySection,
    &MeasuredMethods::finalizeAfterTensorUpdates,
};
static_assert(sizeof(MeasuredMethods) == std::size(measuredMethods) * sizeof(MethodStatistics));

}  // namespace zeb::profiling
