#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

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

/// A unit's names, wherever it has one.
struct UnitNames {
    EventUnit unit;
    std::string_view suffix;    ///< behind a value on the console, with its leading blank
    std::string_view csv;       ///< in a CSV report, where object events have no row
    std::string_view json;      ///< in the JSON of a run
    std::string_view timeline;  ///< behind an event's name in a timeline, empty where the name tells enough
};

inline constexpr auto units = std::to_array<UnitNames>({
    {EventUnit::microseconds, " us", "US", "us", " [us]"},
    {EventUnit::bytes, " bytes", "BYTES", "bytes", " [bytes]"},
    {EventUnit::cycles, " cycles", "CYCLES", "cycles", " [cycles]"},
    {EventUnit::count, " count", "COUNT", "count", ""},
    {EventUnit::object, " object", "", "object", ""},
    {EventUnit::none, " ", "NONE", "none", ""},
});

constexpr const UnitNames& namesOf(EventUnit unit) {
    std::size_t row = 0;
    while (units[row].unit != unit) {
        ++row;
    }
    return units[row];
}

static_assert(
    [] {
        for (std::uint32_t number = 0; number <= std::numeric_limits<std::uint8_t>::max(); ++number) {
            const auto unit = static_cast<EventUnit>(number);
            std::size_t rows = 0;
            for (const UnitNames& names : units) {
                rows += names.unit == unit ? 1 : 0;
            }
            const bool isUnit = unitOf(number) == unit;
            if (rows != (isUnit ? 1 : 0) ||
                (isUnit && (number >= 1U << unitBits || namesOf(unit).json.empty()))) {
                return false;
            }
        }
        return true;
    }(),
    "each unit has its names and fits in its bits");

}  // namespace zeb::profiling
