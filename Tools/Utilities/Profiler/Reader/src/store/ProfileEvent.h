#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

#include "store/EventLayout.h"

namespace zeb::profiling {

/// Event types that steer decoding and queue waits. All other numbers are opaque.
inline constexpr std::uint32_t EVENT_TYPE_INIT = 100;
inline constexpr std::uint32_t EVENT_TYPE_FINALIZE = 300;
inline constexpr std::uint32_t EVENT_TYPE_QUEUE_WAIT = 405;

/// One event of a message, with its sub-events. Texts, bytes and sub-events belong to the `EventArena` that
/// the event was made with and live as long as it.
class ProfileEvent : private EventLayout {
public:
    using EventLayout::eventType;
    using EventLayout::maxOccurrences;
    using EventLayout::name;
    using EventLayout::subEvents;

    ProfileEvent() = default;
    ProfileEvent(StoredText eventName, std::uint32_t type, EventUnit unit, EventValue value, EventList below)
        : EventLayout(eventName, below, type, unit) {
        packValue(value);
    }
    /// @param object has the event's value; not null
    ProfileEvent(StoredText eventName, std::uint32_t type, EventUnit unit, const EventObject* object,
                 EventList below)
        : EventLayout(eventName, below, type, unit) {
        packObject(object);
    }

    [[nodiscard]] EventUnit unit() const { return packedUnit(); }
    [[nodiscard]] bool isObject() const { return unit() == EventUnit::object; }

    /// How many events were merged into this one, `maxOccurrences` at most.
    [[nodiscard]] std::uint32_t occurrences() const { return packedOccurrences(); }
    void setOccurrences(std::uint32_t count) { packOccurrences(count); }

    [[nodiscard]] EventValue value() const { return hasObject() ? packedObject()->value : packedValue(); }
    /// Takes the place of an object. A value of a kind that decoding does not make counts as none.
    void setValue(EventValue value) { packValue(value); }

    /// @return null when the log has neither bytes nor a file name
    [[nodiscard]] const EventObject* object() const { return hasObject() ? packedObject() : nullptr; }
    /// @param object not null; its value becomes the event's
    void setObject(const EventObject* object) { packObject(object); }
    [[nodiscard]] std::span<const std::byte> objectBytes() const {
        return hasObject() ? packedObject()->bytes : std::span<const std::byte>{};
    }
    /// File name for the bytes of an object event, empty when the log has none.
    [[nodiscard]] std::string_view objectFileName() const {
        return hasObject() ? packedObject()->fileName : std::string_view{};
    }

private:
    friend class EventList;
    friend class EventListBuilder;

    /// @return the event behind this one in its list, null for the last
    [[nodiscard]] const ProfileEvent* next() const { return static_cast<const ProfileEvent*>(behind()); }

    /// @return what stands behind the last event of a row and leads to the next row
    [[nodiscard]] static ProfileEvent leadingTo(const ProfileEvent* nextRow) {
        ProfileEvent leader;
        leader.packLeader(nextRow);
        return leader;
    }

    /// @return a copy that is the last of no list
    [[nodiscard]] ProfileEvent copyForAnotherList() const {
        ProfileEvent copy = *this;
        copy.packIsLast(false);
        return copy;
    }
};

static_assert(sizeof(ProfileEvent) == sizeof(EventLayout), "its neighbour is the next event");

inline void EventList::Cursor::advance() {
    event = event->next();
}
inline EventList::EventList(const ProfileEvent& first, ProfileEvent& last) : first_(&first) {
    last.packIsLast(true);
}
inline EventList::EventList(std::span<ProfileEvent> events)
    : EventList(events.empty() ? EventList() : EventList(events.front(), events.back())) {}
inline std::size_t EventList::countByWalking() const {
    return static_cast<std::size_t>(std::distance(begin(), end()));
}
inline const ProfileEvent& EventList::walkTo(std::size_t index) const {
    return *std::next(begin(), static_cast<std::ptrdiff_t>(index));
}

}  // namespace zeb::profiling
