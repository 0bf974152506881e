#pragma once

#include <cstdint>
#include <limits>

namespace zeb::profiling {

/// Unit of an event's value, by its number in `LogEvent.unit`.
enum class EventUnit : std::uint8_t {
    microseconds = 0,
    bytes = 2,
    cycles = 3,
    count = 4,
    object = 5,
    none = 6,
};

/// @return the unit of a number in a log; all that have no name here mean microseconds
constexpr EventUnit unitOf(std::uint32_t number) {
    if (number <= std::numeric_limits<std::uint8_t>::max()) {
        switch (const auto unit = static_cast<EventUnit>(number)) {
            case EventUnit::microseconds:
            case EventUnit::bytes:
            case EventUnit::cycles:
            case EventUnit::count:
            case EventUnit::object:
            case EventUnit::none:
                return unit;
        }
    }
    return EventUnit::microseconds;
}

/// Bits that the number of each unit fits in.
inline constexpr unsigned unitBits = 3;

static_assert([] {
    for (std::uint32_t number = 1U << unitBits; number <= std::numeric_limits<std::uint8_t>::max();
         ++number) {
        if (unitOf(number) != EventUnit::microseconds) {
            return false;
        }
    }
    return true;
}());

}  // namespace zeb::profiling
