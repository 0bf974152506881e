#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "store/EventArena.h"

namespace zeb::profiling {

/// A list of events that is being made, whose size is not known. An event that was added may be changed until
/// the list is finished, and stays where it is.
class EventListBuilder {
public:
    /// @param arena has to outlive the builder
    /// @param expectedSize how many events the first row has room for
    EventListBuilder(EventArena& arena, std::size_t expectedSize)
        : arena_(arena), nextRow_(std::max<std::size_t>(expectedSize, 1)) {}
    EventListBuilder(const EventListBuilder&) = delete;  // both would write to the same row
    EventListBuilder& operator=(const EventListBuilder&) = delete;

    /// Adds a copy of an event.
    /// @throws std::bad_alloc
    ProfileEvent& add(const ProfileEvent& event);

    /// @return the first event, null when there is none yet
    [[nodiscard]] ProfileEvent* first() const { return first_; }
    /// @return the event that was added last, null when there is none yet
    [[nodiscard]] ProfileEvent* last() const { return last_; }
    /// @return the event behind one that is not the last
    [[nodiscard]] static ProfileEvent* next(const ProfileEvent& event);

    /// @return the list, to which nothing is added any more
    [[nodiscard]] EventList finish() const {
        return last_ == nullptr ? EventList() : EventList(*first_, *last_);
    }

private:
    void addRow();

    EventArena& arena_;
    std::size_t nextRow_;           ///< events of the next row
    std::size_t room_ = 0;          ///< events of all rows so far
    std::span<ProfileEvent> free_;  ///< of the row that is being filled; the last of them is to lead on
    ProfileEvent* first_ = nullptr;
    ProfileEvent* last_ = nullptr;
};

}  // namespace zeb::profiling
