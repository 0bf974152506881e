#include "store/EventTree.h"

#include "log/LogAccess.h"

namespace zeb::profiling {

namespace {

using EventVector = flatbuffers::Vector<flatbuffers::Offset<schema::LogEvent>>;

constexpr std::string_view namelessEvent = "null";

EventValue decodeEventValue(const schema::LogEvent& event, MessageParts& parts) {
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
                return EventValue::ofText(parts.terminated(text).data());
            }
            break;
        case schema::ValueSelector::None:
        case schema::ValueSelector::Bytes:
            break;
    }
    return {};
}

// Few events have one.
bool hasObject(const schema::LogEvent& event) {
    return event.fileName() != nullptr || event.valueSelector() == schema::ValueSelector::Bytes;
}

const EventObject* decodeEventObject(const schema::LogEvent& event, MessageParts& parts) {
    EventObject object{{}, {}, decodeEventValue(event, parts)};
    if (event.valueSelector() == schema::ValueSelector::Bytes && event.bytes() != nullptr) {
        object.bytes = parts.bytes(event.bytes());
    }
    if (event.fileName() != nullptr) {
        object.fileName = parts.terminated(event.fileName());
    }
    return parts.arena().make(object);
}

// The verifier bounds the depth of the tree, and so this recursion.
std::span<ProfileEvent> decodeEventList(const EventVector* vector, MessageParts& parts) {
    if (vector == nullptr) {
        return {};
    }
    const std::span<ProfileEvent> events = parts.arena().makeEvents(lengthOf(vector));
    for (std::uint32_t index = 0; index < events.size(); ++index) {
        const schema::LogEvent& source = *tableAt(vector, index);
        const EventList subEvents(decodeEventList(source.subEvents(), parts));
        const StoredText name =
            source.name() == nullptr ? parts.arena().keepName(namelessEvent) : parts.name(source.name());
        const EventUnit unit = unitOf(source.unit());
        events[index] =
            hasObject(source)
                ? ProfileEvent(name, source.type(), unit, decodeEventObject(source, parts), subEvents)
                : ProfileEvent(name, source.type(), unit, decodeEventValue(source, parts), subEvents);
    }
    return events;
}

}  // namespace

std::span<ProfileEvent> decodeEvents(const schema::LogMessage& message, MessageParts& parts) {
    return decodeEventList(message.events(), parts);
}

}  // namespace zeb::profiling
