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

using profiling::EventUnit;
using profiling::schema::LogEvent;
using profiling::schema::ValueSelector;
using Events = flatbuffers::Vector<flatbuffers::Offset<LogEvent>>;

class EventMembers {
public:
    EventMembers(profiling::MessageParts& parts, JsonObject& object) : parts_(parts), object_(object) {}

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
        path += event.name() == nullptr
                    ? std::string()
                    : profiling::cutInMiddle(parts_.visible(event.name()), longestTraceText);
        return profiling::cutInMiddle(path, longestTraceText);
    }

    void addValue(const std::string& path, const LogEvent& event) {
        switch (event.valueSelector()) {
            case ValueSelector::Int:
                return object_.addNumber(keyOf(path, event), event.intValue());
            case ValueSelector::Uint:
                return object_.addNumber(keyOf(path, event), event.uintValue());
            case ValueSelector::Float:
                return object_.addNumber(keyOf(path, event), event.floatValue());
            case ValueSelector::Double:
                return object_.addNumber(keyOf(path, event), event.doubleValue());
            case ValueSelector::Text:
                return object_.addText(keyOf(path, event), event.stringValue() == nullptr
                                                               ? std::string_view{}
                                                               : parts_.visible(event.stringValue()));
            case ValueSelector::Bytes:
                return object_.addNumber(
                    newKey(path + " [bytes]"),
                    std::uint64_t{event.bytes() == nullptr ? 0 : profiling::lengthOf(event.bytes())});
            default:
                return object_.addText(newKey(path), {});
        }
    }

    const std::string& keyOf(const std::string& path, const LogEvent& event) {
        switch (static_cast<EventUnit>(event.unit())) {
            case EventUnit::bytes:
                return newKey(path + " [bytes]");
            case EventUnit::cycles:
                return newKey(path + " [cycles]");
            case EventUnit::count:
            case EventUnit::object:
            case EventUnit::none:
                return newKey(path);
            default:
                return newKey(path + " [us]");
        }
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
    JsonObject& object_;
    std::vector<std::string> keys_;
};

}  // namespace

void addEvents(JsonObject& arguments, const profiling::schema::LogMessage& message,
               profiling::MessageParts& parts) {
    const Events* const events = message.events();
    if (events == nullptr || profiling::lengthOf(events) == 0) {
        return;
    }
    JsonObject object = arguments.addObject("events");
    const bool isWhole = EventMembers(parts, object).add({}, events);
    object.close();
    if (!isWhole) {
        arguments.addTrue("hasMoreEvents");
    }
}

}  // namespace zeb::forms
