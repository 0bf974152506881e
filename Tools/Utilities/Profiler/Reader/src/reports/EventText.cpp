#include "reports/EventText.h"

#include <cstdint>

#include "text/NumberText.h"

namespace zeb::profiling {

namespace {

template <typename Integer>
std::string decimal(std::uint64_t payload) {
    return std::to_string(static_cast<Integer>(payload));
}

constexpr int floatDigits = 6;

}  // namespace

std::string formatEventValue(const EventValue& value) {
    switch (value.kind) {
        case ValueKind::int8:
            return decimal<std::int8_t>(value.payload);
        case ValueKind::int16:
        case ValueKind::int16Alternate:
            return decimal<std::int16_t>(value.payload);
        case ValueKind::int32:
            return decimal<std::int32_t>(value.payload);
        case ValueKind::int64:
            return decimal<std::int64_t>(value.payload);
        case ValueKind::uint8:
        case ValueKind::uint8Alternate:
            return decimal<std::uint8_t>(value.payload);
        case ValueKind::uint16:
            return decimal<std::uint16_t>(value.payload);
        case ValueKind::uint32:
            return decimal<std::uint32_t>(value.payload);
        case ValueKind::uint64:
            return decimal<std::uint64_t>(value.payload);
        case ValueKind::float32:
            return fixedPoint(static_cast<double>(value.asFloat()), floatDigits);
        case ValueKind::float64:
            return fixedPoint(value.asDouble(), floatDigits);
        case ValueKind::text:
            return value.asText();
        case ValueKind::unset:
            break;
    }
    return {};
}

std::string_view unitSuffix(EventUnit unit) {
    return namesOf(unit).suffix;
}

std::string_view unitCsvText(EventUnit unit) {
    return namesOf(unit).csv;
}

std::optional<std::string> findEventValue(std::string_view name, const EventList& events) {
    for (const ProfileEvent& event : events) {
        if (!event.isObject() && event.name == name) {
            return formatEventValue(event.value());
        }
        if (auto below = findEventValue(name, event.subEvents)) {
            return below;
        }
    }
    return std::nullopt;
}

}  // namespace zeb::profiling
