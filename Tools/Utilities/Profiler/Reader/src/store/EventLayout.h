#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "log/EventUnit.h"
#include "store/EventList.h"
#include "store/EventValue.h"
#include "store/StoredText.h"

namespace zeb::profiling {

/// What an event of `unit` object carries, and its value, which has no room beside it.
struct EventObject {
    std::span<const std::byte> bytes;  ///< `LogEvent.bytes`
    std::string_view fileName;         ///< `LogEvent.fileName`
    EventValue value;
};

/// How an event is packed: most of a store's memory are events. Nobody but `ProfileEvent` and the two that
/// make lists of it has to know.
///
///     byte 0       8           16          20                                       24        32
///          | name  | subEvents | eventType | unit  content  isLast  occurrences     | payload |
///                                            3 bit 3 bit    1 bit   25 bit
///
/// `content` says what `payload` is:
///
///     0 to 5   a value of the kind `valueKinds[content]`
///     6        the address of an `EventObject`, which has the value too
///     7        the address of the next row; this is no event then, but the leader of a row
///
/// The events of a list stand side by side, in one row or in several. A row that is not the list's last one
/// has a leader behind its events:
///
///     | event | event | event | leader |     | event | event, isLast |
///                               `------------->
class EventLayout {
public:
    static constexpr std::uint32_t maxOccurrences = (1U << 25U) - 1;

    StoredText name;              ///< `LogEvent.name`
    EventList subEvents;          ///< `LogEvent.subEvents`
    std::uint32_t eventType = 0;  ///< `LogEvent.type`

protected:
    EventLayout() = default;
    EventLayout(StoredText eventName, EventList below, std::uint32_t type, EventUnit unit)
        : name(eventName),
          subEvents(below),
          eventType(type),
          unit_(static_cast<std::uint32_t>(unit) & ((1U << unitBits) - 1)) {}

    [[nodiscard]] EventUnit packedUnit() const { return static_cast<EventUnit>(unit_); }

    [[nodiscard]] std::uint32_t packedOccurrences() const { return occurrences_; }
    void packOccurrences(std::uint32_t count) {
        occurrences_ = std::min(count, maxOccurrences) & maxOccurrences;  // masked: it is a bit field
    }

    [[nodiscard]] bool hasObject() const { return content_ == objectContent; }

    /// @return an event's value; it has no object
    [[nodiscard]] EventValue packedValue() const { return {valueKinds[content_], payload_}; }
    /// A value of a kind that decoding does not make counts as none.
    void packValue(EventValue value) {
        const auto* const kind = std::find(valueKinds.begin(), valueKinds.end(), value.kind);
        const bool isKept = kind != valueKinds.end();
        content_ = isKept ? static_cast<std::uint32_t>(kind - valueKinds.begin()) & 7U : 0;
        payload_ = isKept ? value.payload : 0;
    }

    /// @return an event's object; it has one
    [[nodiscard]] const EventObject* packedObject() const {
        return static_cast<const EventObject*>(address());
    }
    void packObject(const EventObject* object) { packAddress(objectContent, object); }

    /// @return what stands behind this event in its list, null behind the last
    [[nodiscard]] const EventLayout* behind() const {
        if (isLast_ != 0) {
            return nullptr;
        }
        const EventLayout* const neighbour = this + 1;
        return neighbour->content_ == rowContent ? static_cast<const EventLayout*>(neighbour->address())
                                                 : neighbour;
    }
    void packLeader(const EventLayout* nextRow) { packAddress(rowContent, nextRow); }
    void packIsLast(bool isLast) { isLast_ = isLast ? 1 : 0; }

private:
    static constexpr auto valueKinds =
        std::to_array({ValueKind::unset, ValueKind::int64, ValueKind::uint64, ValueKind::float32,
                       ValueKind::float64, ValueKind::text});
    static constexpr std::uint32_t objectContent = valueKinds.size();
    static constexpr std::uint32_t rowContent = objectContent + 1;
    static_assert(rowContent < 1U << 3U, "it has three bits");

    [[nodiscard]] const void* address() const {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): `packAddress` has put it there
        return reinterpret_cast<const void*>(payload_);
    }
    void packAddress(std::uint32_t content, const void* address) {
        content_ = content & 7U;
        payload_ = reinterpret_cast<std::uintptr_t>(address);
    }

    std::uint32_t unit_ : unitBits = 0;
    std::uint32_t content_ : 3 = 0;
    std::uint32_t isLast_ : 1 = 0;
    std::uint32_t occurrences_ : 25 = 1;
    std::uint64_t payload_ = 0;
};

static_assert(sizeof(EventLayout) == 32);

}  // namespace zeb::profiling
