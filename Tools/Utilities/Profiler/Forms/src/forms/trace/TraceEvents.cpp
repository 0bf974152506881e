#include "forms/trace/TraceEvents.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "log/LogAccess.h"
#include "store/ProfileEvent.h"

namespace zeb::forms {

namespace {

using profiling::schema::LogEvent;
using profiling::schema::ValueSelector;
using Events = flatbuffers::Vector<flatbuffers::Offset<LogEvent>>;

class EventMembers {
public:
    EventMembers(profiling::MessageParts& parts, JsonWriter& object) : parts_(parts), object_(object) {}

    /// @return false when there are more events than are shown
    bool add(std::string_view above, const Events* events) {
        for (std::uint32_t position = 0; position < profiling::lengthOf(events); ++position) {
            if (keys_.size() == maxTraceEvents) {
                return false;
            }
            const LogEvent& event = *profiling::tableAt(events, position);
            const std::string path = pathOf(above, event);
            addValue(path, event);
            if (event.subEvents() != nullptr && !add(path, event.subEvents())) {
                return false;
            }
        }
        return true;
    }

private:
    std::string pathOf(std::string_view above, const LogEvent& event) {
        std::string path(above);
        path += above.empty() ? "" : " > ";
        path += event.name() == nullptr ? std::string() : traceText(parts_.visible(event.name()));
        return traceText(path);
    }

    void addValue(const std::string& path, const LogEvent& event) {
        switch (event.valueSelector()) {
            case ValueSelector::Int:
                return object_.member(keyOf(path, event), event.intValue());
            case ValueSelector::Uint:
                return object_.member(keyOf(path, event), event.uintValue());
            case ValueSelector::Float:
                return object_.member(keyOf(path, event), event.floatValue());
            case ValueSelector::Double:
                return object_.member(keyOf(path, event), event.doubleValue());
            case ValueSelector::Text:
                return object_.member(
                    keyOf(path, event),
                    traceText(event.stringValue() == nullptr ? std::string_view{}
                                                             : parts_.visible(event.stringValue())));
            case ValueSelector::Bytes:
                return object_.member(newKey(path + " [bytes]"),
                                      event.bytes() == nullptr ? 0U : profiling::lengthOf(event.bytes()));
            default:
                return object_.member(newKey(path), "");
        }
    }

    const std::string& keyOf(const std::string& path, const LogEvent& event) {
        return newKey(path + std::string(namesOf(profiling::unitOf(event.unit())).timeline));
    }

    // Two members of an object must not have the same key.
    const std::string& newKey(const std::string& wanted) {
        std::string key = wanted;
        for (std::size_t number = 2; std::find(keys_.begin(), keys_.end(), key) != keys_.end(); ++number) {
            key = wanted + " #" + std::to_string(number);
        }
        return keys_.emplace_back(std::move(key));
    }

    profiling::MessageParts& parts_;
    JsonWriter& object_;
    std::vector<std::string> keys_;
};

}  // namespace

void addEvents(JsonWriter& arguments, const profiling::schema::LogMessage& message,
               profiling::MessageParts& parts) {
    const Events* const events = message.events();
    if (events == nullptr || profiling::lengthOf(events) == 0) {
        return;
    }
    arguments.key("events");
    arguments.beginObject();
    const bool isWhole = EventMembers(parts, arguments).add({}, events);
    arguments.endObject();
    if (!isWhole) {
        arguments.member("hasMoreEvents", true);
    }
}

}  // namespace zeb::forms
