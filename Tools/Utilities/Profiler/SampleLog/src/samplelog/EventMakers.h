#pragma once

#include <string>
#include <utility>
#include <vector>

#include "samplelog/LogWriter.h"

/// Short ways to write an event down.
namespace zeb::samplelog {

inline Event event(std::string name, Value value, std::uint32_t unit, std::vector<Event> subEvents = {}) {
    Event made;
    made.name = std::move(name);
    made.value = std::move(value);
    made.unit = unit;
    made.subEvents = std::move(subEvents);
    return made;
}

/// An event that tells how long something took.
inline Event timeEvent(std::string name, std::uint64_t us, std::vector<Event> subEvents = {}) {
    return event(std::move(name), us, microseconds, std::move(subEvents));
}

/// @param fileName the name under which a reader may save the bytes; empty for none
inline Event objectEvent(std::string name, Bytes content, std::string fileName) {
    Event made = event(std::move(name), std::move(content), object);
    if (!fileName.empty()) {
        made.fileName = std::move(fileName);
    }
    return made;
}

/// The event and all below it become events of the type.
inline Event ofType(std::uint32_t type, Event event) {
    event.type = type;
    for (Event& subEvent : event.subEvents) {
        subEvent = ofType(type, std::move(subEvent));
    }
    return event;
}

}  // namespace zeb::samplelog
