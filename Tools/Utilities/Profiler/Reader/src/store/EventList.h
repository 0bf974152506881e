#pragma once

#include <cstddef>
#include <span>

#include "memory/ForwardIterator.h"

namespace zeb::profiling {

class ProfileEvent;

/// A list of events in log order. The events are never changed once the list is made, so a copy of a list,
/// and of an event with its sub-events, stands for a tree of its own though it shares the memory. The events
/// live as long as the `EventArena` that holds them, which is as long as the store.
///
/// Nearly every event has a list below it, so a list is no more than a pointer to its first event: the last
/// one knows that it is the last. `EventLayout` has the picture.
class EventList {
public:
    struct Cursor {
        const ProfileEvent* event = nullptr;

        [[nodiscard]] const ProfileEvent& at() const { return *event; }
        void advance();
        friend bool operator==(const Cursor& left, const Cursor& right) = default;
    };
    using Iterator = ForwardIterator<ProfileEvent, Cursor>;

    EventList() = default;

    /// Makes a list of a row of events that are in no other list yet.
    explicit EventList(std::span<ProfileEvent> events);
    /// Makes a list of several rows, from the first event of the first to the last of the last.
    EventList(const ProfileEvent& first, ProfileEvent& last);

    [[nodiscard]] bool empty() const { return first_ == nullptr; }
    [[nodiscard]] Iterator begin() const { return Iterator({first_}); }
    [[nodiscard]] Iterator end() const { return {}; }
    [[nodiscard]] const ProfileEvent& front() const { return *first_; }

    /// Both take time for each event that they pass.
    [[nodiscard]] std::size_t countByWalking() const;
    /// @param index below the count
    [[nodiscard]] const ProfileEvent& walkTo(std::size_t index) const;

private:
    const ProfileEvent* first_ = nullptr;
};

}  // namespace zeb::profiling
