#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "store/EventName.h"
#include "store/EventValue.h"

namespace zeb::profiling {

/// Unit of an event's value, from `LogEvent.unit`, where every number that is not named here means
/// microseconds.
enum class EventUnit : std::uint8_t {
    microseconds = 0,
    bytes = 2,
    cycles = 3,
    count = 4,
    object = 5,
    none = 6
};

/// Event types that steer decoding and queue waits. All other numbers are opaque.
inline constexpr std::uint32_t EVENT_TYPE_INIT = 100;
inline constexpr std::uint32_t EVENT_TYPE_FINALIZE = 300;
inline constexpr std::uint32_t EVENT_TYPE_QUEUE_WAIT = 405;

struct ProfileEvent;

/// A list of events in log order. The events are never changed once the list is made, so a copy of a list,
/// and of an event with its sub-events, stands for a tree of its own though it shares the memory. The events
/// live as long as the `EventArena` that holds them, which is as long as the store.
class EventList {
public:
    EventList() = default;
    EventList(std::span<ProfileEvent> events);  // NOLINT(google-explicit-constructor): the same, finished

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] const ProfileEvent* begin() const { return first_; }
    [[nodiscard]] const ProfileEvent* end() const;
    [[nodiscard]] const ProfileEvent& operator[](std::size_t index) const;

private:
    const ProfileEvent* first_ = nullptr;
    std::uint32_t size_ = 0;  // a chunk is too small for more events
};

/// What an event of `unit` object carries.
struct EventObject {
    std::span<const std::byte> bytes;  ///< `LogEvent.bytes`
    std::string_view fileName;         ///< `LogEvent.fileName`
};

/// One event of a message, with its sub-events. Texts, bytes and sub-events belong to the `EventArena` that
/// the event was made with and live as long as it.
///
/// Most of a store's memory are events, so they are packed: the list and the value end in four free bytes,
/// which the member behind each fills.
struct ProfileEvent {
    static constexpr std::uint32_t maxOccurrences = (1U << 24U) - 1;

    EventName name;                       ///< `LogEvent.name`
    const EventObject* object = nullptr;  ///< null when the log has neither bytes nor a file name
    [[no_unique_address]] EventList subEvents;
    EventUnit unit = EventUnit::microseconds;
    std::uint32_t occurrences : 24 = 1;  ///< how many events were merged into this one; so many at most
    [[no_unique_address]] EventValue value;
    std::uint32_t eventType = 0;  ///< `LogEvent.type`

    [[nodiscard]] bool isObject() const { return unit == EventUnit::object; }
    [[nodiscard]] std::span<const std::byte> objectBytes() const {
        return object == nullptr ? std::span<const std::byte>{} : object->bytes;
    }
    /// File name for the bytes of an object event, empty when the log has none.
    [[nodiscard]] std::string_view objectFileName() const {
        return object == nullptr ? std::string_view{} : object->fileName;
    }
};

static_assert(sizeof(ProfileEvent) == 48);

inline EventList::EventList(std::span<ProfileEvent> events)
    : first_(events.data()), size_(static_cast<std::uint32_t>(events.size())) {}
inline const ProfileEvent* EventList::end() const {
    return first_ + size_;
}
inline const ProfileEvent& EventList::operator[](std::size_t index) const {
    return first_[index];
}

}  // namespace zeb::profiling
