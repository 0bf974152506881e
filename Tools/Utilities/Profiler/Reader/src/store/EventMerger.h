#pragma once

#include <memory>

#include "store/EventArena.h"

namespace zeb::profiling {

/// Merges event lists by name, level by level, into one list of mean values. Its work is in proportion to the
/// events that it is given, however wide the lists are. The lists that it is given have to outlive it.
///
/// An event is added to the first event of its name that earlier lists have left; without one it takes its
/// place at the end. Integers, and events without a value, add up as unsigned 64-bit numbers that wrap;
/// floats add up with floats, doubles with doubles; any other pair keeps the later value. An object event
/// does not start an entry of the list, but goes along below an event that does.
class EventMerger {
public:
    EventMerger();
    ~EventMerger();
    EventMerger(const EventMerger&) = delete;
    EventMerger& operator=(const EventMerger&) = delete;

    /// Adds the events of one list.
    void mergeEvents(EventList incoming);

    /// @return the merged events, each value divided by the number of values in it, integers cut; made in
    /// `arena`,
    ///         sharing what stayed as it was with the lists that were merged
    [[nodiscard]] EventList divideEvents(EventArena& arena) const;

private:
    class MergedList;

    EventList first_;                     ///< the one list so far that has events
    std::unique_ptr<MergedList> merged_;  ///< made when a second one comes
};

}  // namespace zeb::profiling
