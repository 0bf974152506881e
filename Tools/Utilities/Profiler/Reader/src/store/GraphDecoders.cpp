// The decoders that fill the collections of the store, by graph name or by context key.

#include <algorithm>
#include <span>

#include "store/EventStore.h"
#include "store/EventTree.h"
#include "store/MessageFields.h"

namespace zeb::profiling {

namespace {

constexpr std::string_view binarySizeKey = "CONTEXT GET BINARY SIZE";
constexpr std::string_view binaryKey = "CONTEXT GET BINARY";
constexpr std::string_view binarySectionSizeKey = "CONTEXT GET BINARY SECTION SIZE";

MethodRecord timedRecord(const schema::LogMessage& message) {
    MethodRecord record;
    record.durationUs = durationOf(message);
    record.timestamp = timestampOf(message);
    return record;
}

struct SplitEvents {
    std::span<ProfileEvent> ofType;
    std::span<ProfileEvent> others;
};

// Takes the events of one type out of a list; both lists stay in log order.
SplitEvents splitByType(std::span<ProfileEvent> events, std::uint32_t eventType) {
    const auto isOther = [eventType](const ProfileEvent& event) { return event.eventType != eventType; };
    if (std::all_of(events.begin(), events.end(), isOther)) {
        return {{}, events};
    }
    const auto others = static_cast<std::size_t>(
        std::stable_partition(events.begin(), events.end(), isOther) - events.begin());
    return {events.subspan(others), events.first(others)};
}

// A text such as "graph [3]" names the graph in front of the bracket.
std::string_view graphNameIn(std::string_view text) {
    return text.substr(0, text.find(" ["));
}

}  // namespace

void EventStore::fileInitEvents(EventList events) {
    hasInitEvents = hasInitEvents || !events.empty();
    if (hasInitEvents) {
        initEvents = events;
    }
}

void EventStore::fileFinalizeEvents(std::string_view graphName, EventList events) {
    hasFinalizeEvents = hasFinalizeEvents || !events.empty();
    if (hasFinalizeEvents) {
        NamedMethodRecord& entry = finalizeRecords.findOrAdd(graphName, arena_);
        MethodRecord record = *entry.record;
        record.events = events;
        entry.record = arena_.make(record);
    }
}

// Events that come apart from their execution belong to the first execution of the graph that has none.
void EventStore::fileExecuteEvents(std::string_view graphName, EventList events) {
    if (events.empty()) {
        return;
    }
    executeRecords.findOrAdd(graphName, arena_).records.fill(events, arena_);
}

bool EventStore::decodeExecute(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    const auto [initOnes, others] = splitByType(decodeEvents(message, arena_), EVENT_TYPE_INIT);
    record.events = EventList(others);
    fileInitEvents(EventList(initOnes));
    executeRecords.findOrAdd(*text, arena_).records.add(record, arena_);
    return true;
}

bool EventStore::decodeFinalize(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    const auto [initOnes, others] = splitByType(decodeEvents(message, arena_), EVENT_TYPE_INIT);
    record.events = EventList(others);
    fileInitEvents(EventList(initOnes));
    hasFinalizeEvents = hasFinalizeEvents || !others.empty();
    finalizeRecords.findOrAdd(*text, arena_).record = arena_.make(record);
    hasFinalize = true;
    return true;
}

bool EventStore::decodeGraphEvents(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    const std::string_view graphName = *text;
    const auto [initOnes, afterInit] = splitByType(decodeEvents(message, arena_), EVENT_TYPE_INIT);
    const auto [finalizeOnes, executeOnes] = splitByType(afterInit, EVENT_TYPE_FINALIZE);
    fileInitEvents(EventList(initOnes));
    fileFinalizeEvents(graphName, EventList(finalizeOnes));
    fileExecuteEvents(graphName, EventList(executeOnes));
    return true;
}

bool EventStore::decodeApplyBinarySection(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.events = EventList(decodeEvents(message, arena_));
    applyBinarySectionRecords.findOrAdd(*text, arena_).records.add(record, arena_);
    hasApplyBinarySection = true;
    return true;
}

bool EventStore::decodeFinalizeAfterTensorUpdates(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.message = arena_.keepText(*text);
    record.events = EventList(decodeEvents(message, arena_));
    finalizeAfterTensorUpdatesRecords.findOrAdd(graphNameIn(*text), arena_).records.add(record, arena_);
    hasFinalizeAfterTensorUpdates = true;
    return true;
}

bool EventStore::decodeUpdateBinarySection(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.events = EventList(decodeEvents(message, arena_));
    updateBinarySectionRecords.assign(1, {{}, arena_.make(record)});
    hasUpdateBinarySection = true;
    return true;
}

bool EventStore::decodeContextGetBinary(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    const bool isSize = message.methodType() == schema::MethodType::ContextGetBinarySize;
    MethodRecord record = timedRecord(message);
    record.message = arena_.keepText(textOf(message).value_or(""));
    contextRetrieval.findOrAdd(isSize ? binarySizeKey : binaryKey, arena_).record = arena_.make(record);
    hasContextRetrieval = true;
    return true;
}

bool EventStore::decodeContextGetBinarySectionSize(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.message = arena_.keepText(textOf(message).value_or(""));
    contextSectionRetrieval.findOrAdd(binarySectionSizeKey, arena_).records.add(record, arena_);
    hasContextSectionRetrieval = true;
    return true;
}

}  // namespace zeb::profiling
