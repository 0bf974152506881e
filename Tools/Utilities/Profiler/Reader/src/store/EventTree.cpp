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
                return EventValue::ofText(arena.keepTerminated(storedText(text)).data());
            }
            break;
        default:
            break;
    }
    return {};
}

// Few events have one.
bool hasObject(const schema::LogEvent& event) {
    return event.fileName() != nullptr || event.valueSelector() == schema::ValueSelector::Bytes;
}

const EventObject* decodeEventObject(const schema::LogEvent& event, EventArena& arena) {
    EventObject object{{}, {}, decodeEventValue(event, arena)};
    if (event.valueSelector() == schema::ValueSelector::Bytes && event.bytes() != nullptr) {
        object.bytes = arena.keepBytes(bytesOf(event.bytes()));
    }
    if (event.fileName() != nullptr) {
        object.fileName = arena.keepTerminated(visibleText(event.fileName()));
    }
    return arena.make(object);
}

// The verifier bounds the depth of the tree, and so this recursion.
std::span<ProfileEvent> decodeEventList(const EventVector* vector, EventArena& arena) {
    if (vector == nullptr) {
        return {};
    }
    const std::span<ProfileEvent> events = arena.makeEvents(lengthOf(vector));
    for (std::uint32_t index = 0; index < events.size(); ++index) {
        const schema::LogEvent& source = *tableAt(vector, index);
        const EventList subEvents(decodeEventList(source.subEvents(), arena));
        const StoredText name =
            arena.keepName(source.name() == nullptr ? namelessEvent : visibleText(source.name()));
        const EventUnit unit = unitOf(source.unit());
        events[index] =
            hasObject(source)
                ? ProfileEvent(name, source.type(), unit, decodeEventObject(source, arena), subEvents)
                : ProfileEvent(name, source.type(), unit, decodeEventValue(source, arena), subEvents);
    }
    return events;
}

}  // namespace

std::span<ProfileEvent> decodeEvents(const schema::LogMessage& message, EventArena& arena) {
    return decodeEventList(message.events(), arena);
}

}  // namespace zeb::profiling
