#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

#include "log/EventUnit.h"
#include "memory/ForwardIterator.h"
#include "store/EventValue.h"
#include "store/StoredText.h"

namespace zeb::profiling {

/// Event types that steer decoding and queue waits. All other numbers are opaque.
inline constexpr std::uint32_t EVENT_TYPE_INIT = 100;
inline constexpr std::uint32_t EVENT_TYPE_FINALIZE = 300;
inline constexpr std::uint32_t EVENT_TYPE_QUEUE_WAIT = 405;

class ProfileEvent;

/// A list of events in log order. The events are never changed once the list is made, so a copy of a list,
/// and of an event with its sub-events, stands for a tree of its own though it shares the memory. The events
/// live as long as the `EventArena` that holds them, which is as long as the store.
///
/// Nearly every event has a list below it, so a list is no more than a pointer: its last event knows that it
/// is the last. Events stand side by side, or in several rows of which each leads to the next.
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

    /// Counts the events.
    [[nodiscard]] std::size_t size() const;
    /// Walks to the event.
    [[nodiscard]] const ProfileEvent& operator[](std::size_t index) const;

private:
    const ProfileEvent* first_ = nullptr;
};

/// What an event of `unit` object carries, and its value, which has its place here.
struct EventObject {
    std::span<const std::byte> bytes;  ///< `LogEvent.bytes`
    std::string_view fileName;         ///< `LogEvent.fileName`
    EventValue value;
};

/// One event of a message, with its sub-events. Texts, bytes and sub-events belong to the `EventArena` that
/// the event was made with and live as long as it. Most of a store's memory are events, so they are packed.
class ProfileEvent {
public:
    static constexpr std::uint32_t maxOccurrences = (1U << 25U) - 1;

    ProfileEvent() = default;
    ProfileEvent(StoredText eventName, std::uint32_t type, EventUnit unit, EventValue value, EventList below)
        : name(eventName),
          subEvents(below),
          eventType(type),
          unit_(static_cast<std::uint32_t>(unit) & ((1U << unitBits) - 1)) {
        setValue(value);
    }
    /// @param object has the event's value; not null
    ProfileEvent(StoredText eventName, std::uint32_t type, EventUnit unit, const EventObject* object,
                 EventList below)
        : ProfileEvent(eventName, type, unit, EventValue(), below) {
        setObject(object);
    }

    StoredText name;              ///< `LogEvent.name`
    EventList subEvents;          ///< `LogEvent.subEvents`
    std::uint32_t eventType = 0;  ///< `LogEvent.type`

    [[nodiscard]] EventUnit unit() const { return static_cast<EventUnit>(unit_); }
    [[nodiscard]] bool isObject() const { return unit() == EventUnit::object; }

    /// How many events were merged into this one, `maxOccurrences` at most.
    [[nodiscard]] std::uint32_t occurrences() const { return occurrences_; }
    void setOccurrences(std::uint32_t count) {
        occurrences_ = std::min(count, maxOccurrences) & maxOccurrences;  // masked: it is a bit field
    }

    [[nodiscard]] EventValue value() const {
        return content_ == objectContent ? object()->value : EventValue(contentKinds[content_], payload_);
    }
    /// Takes the place of an object. A value of a kind that decoding does not make counts as none.
    void setValue(EventValue value) {
        const auto* const kind = std::find(contentKinds.begin(), contentKinds.end(), value.kind);
        const bool isKept = kind != contentKinds.end();
        content_ = isKept ? static_cast<std::uint32_t>(kind - contentKinds.begin()) & 7U : 0;
        payload_ = isKept ? value.payload : 0;
    }

    /// @return null when the log has neither bytes nor a file name
    [[nodiscard]] const EventObject* object() const {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): `setObject` has put it there
        return content_ == objectContent ? reinterpret_cast<const EventObject*>(payload_) : nullptr;
    }
    /// @param object not null; its value becomes the event's
    void setObject(const EventObject* object) {
        content_ = objectContent;
        payload_ = reinterpret_cast<std::uintptr_t>(object);
    }
    [[nodiscard]] std::span<const std::byte> objectBytes() const {
        return object() == nullptr ? std::span<const std::byte>{} : object()->bytes;
    }
    /// File name for the bytes of an object event, empty when the log has none.
    [[nodiscard]] std::string_view objectFileName() const {
        return object() == nullptr ? std::string_view{} : object()->fileName;
    }

private:
    friend class EventList;
    friend class EventListBuilder;

    /// @return the event behind this one in its list, null for the last
    [[nodiscard]] const ProfileEvent* next() const {
        if (isLast_ != 0) {
            return nullptr;
        }
        const ProfileEvent* const behind = this + 1;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): `leadingTo` has put it there
        return behind->content_ == rowContent ? reinterpret_cast<const ProfileEvent*>(behind->payload_)
                                              : behind;
    }

    /// @return no event, but what stands behind the last event of a row and leads to the next row
    [[nodiscard]] static ProfileEvent leadingTo(const ProfileEvent* nextRow) {
        ProfileEvent leader;
        leader.content_ = rowContent;
        leader.payload_ = reinterpret_cast<std::uintptr_t>(nextRow);
        return leader;
    }

    /// @return a copy to go into another list
    [[nodiscard]] ProfileEvent unlisted() const {
        ProfileEvent copy = *this;
        copy.isLast_ = 0;
        return copy;
    }

    // What the payload is: a value of a kind that decoding makes, or the address of an object or of a row.
    static constexpr auto contentKinds =
        std::to_array({ValueKind::unset, ValueKind::int64, ValueKind::uint64, ValueKind::float32,
                       ValueKind::float64, ValueKind::text});
    static constexpr std::uint32_t objectContent = contentKinds.size();
    static constexpr std::uint32_t rowContent = objectContent + 1;
    static_assert(rowContent < 1U << 3U, "it has three bits");

    std::uint32_t unit_ : unitBits = 0;
    std::uint32_t content_ : 3 = 0;
    std::uint32_t isLast_ : 1 = 0;
    std::uint32_t occurrences_ : 25 = 1;
    std::uint64_t payload_ = 0;
};

static_assert(sizeof(ProfileEvent) == 32);

inline void EventList::Cursor::advance() {
    event = event->next();
}
inline EventList::EventList(const ProfileEvent& first, ProfileEvent& last) : first_(&first) {
    last.isLast_ = 1;
}
inline EventList::EventList(std::span<ProfileEvent> events)
    : EventList(events.empty() ? EventList() : EventList(events.front(), events.back())) {}
inline std::size_t EventList::size() const {
    return static_cast<std::size_t>(std::distance(begin(), end()));
}
inline const ProfileEvent& EventList::operator[](std::size_t index) const {
    return *std::next(begin(), static_cast<std::ptrdiff_t>(index));
}

}  // namespace zeb::profiling
