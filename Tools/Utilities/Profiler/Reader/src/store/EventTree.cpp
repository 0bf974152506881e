#include "store/EventTree.h"

#include "log/LogAccess.h"

namespace zeb::profiling {

namespace {

using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::LogEvent>>;

constexpr std::string_view namelessEvent = "null";

EventUnit unitOf(std::uint32_t code) {
    const bool isNamed = code >= static_cast<std::uint32_t>(EventUnit::bytes) &&
                         code <= static_cast<std::uint32_t>(EventUnit::none);
    return isNamed ? static_cast<EventUnit>(code) : EventUnit::microseconds;
}

EventValue decodeEventValue(const schema::LogEvent& event, EventArena& arena) {
    switch (event.valueSelector()) {
        case schema::ValueSelector::Int:
            return EventValue::ofInt(event.intValue());
        case schema::ValueSelector::Uint:
            return EventValue::ofUint(event.uintValue());
        case schema::ValueSelector::Float:
            return EventValue::ofFloat(event.floatValue());
        case schema::ValueSelector::Double:
            return EventValue::ofDouble(event.doubleValue());
        case schema::ValueSelector::Text:
            if (const auto* text = event.stringValue()) {
                return EventValue::ofText(arena.keepText(storedText(text)).data());
            }
            break;
        default:
            break;
    }
    return {};
}

const EventObject* decodeEventObject(const schema::LogEvent& event, EventArena& arena) {
    const bool hasBytes = event.valueSelector() == schema::ValueSelector::Bytes && event.bytes() != nullptr;
    const auto bytes = hasBytes ? bytesOf(event.bytes()) : std::span<const std::byte>{};
    const auto fileName = event.fileName() == nullptr ? std::string_view{} : visibleText(event.fileName());
    return bytes.empty() && fileName.empty() ? nullptr : arena.keepObject(bytes, fileName);
}

// The verifier bounds the depth of the tree, and so this recursion.
std::span<ProfileEvent> decodeEventList(const EventVector* vector, EventArena& arena) {
    if (vector == nullptr) {
        return {};
    }
    const std::span<ProfileEvent> events = arena.makeEvents(lengthOf(vector));
    for (std::uint32_t index = 0; index < events.size(); ++index) {
        const schema::LogEvent& source = *tableAt(vector, index);
        ProfileEvent& event = events[index];
        event.name = arena.keepName(source.name() == nullptr ? namelessEvent : visibleText(source.name()));
        event.value = decodeEventValue(source, arena);
        event.object = decodeEventObject(source, arena);
        event.eventType = source.type();
        event.unit = unitOf(source.unit());
        event.subEvents = decodeEventList(source.subEvents(), arena);
    }
    return events;
}

}  // namespace

std::span<ProfileEvent> decodeEvents(const schema::LogMessage& message, EventArena& arena) {
    return decodeEventList(message.events(), arena);
}

}  // namespace zeb::profiling
