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
        NamedMethodRecord& entry = namedRecord(finalizeRecords, graphName);
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
    graphOf(executeRecords, graphName, noRecord).graph.records.fill(events, arena_);
}

NamedMethodRecord& EventStore::namedRecord(NamedRecordList& list, std::string_view name) {
    return parts_.entryOf(list, name, wholeText, [&] { return NamedMethodRecord{parts_.part(name)}; });
}

// A new graph comes with its first record, so that none is ever without one.
EventStore::GraphEntry EventStore::graphOf(GraphRecordList& list, std::string_view text,
                                           const MethodRecord& first, NameIn nameIn) {
    bool isNew = false;
    GraphMethodRecords& graph = parts_.entryOf(list, text, nameIn, [&] {
        isNew = true;
        return GraphMethodRecords{parts_.part(nameIn(text)), RecordList(first, arena_)};
    });
    return {graph, isNew};
}

const MethodRecord& EventStore::addRecord(GraphRecordList& list, std::string_view text,
                                          const MethodRecord& record, NameIn nameIn) {
    const auto [graph, isNew] = graphOf(list, text, record, nameIn);
    if (!isNew) {
        graph.records.add(record, arena_);
    }
    return graph.records.back();
}

bool EventStore::decodeExecute(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    const auto [initOnes, others] = splitByType(decodeEvents(message, parts_), EVENT_TYPE_INIT);
    record.events = EventList(others);
    fileInitEvents(EventList(initOnes));
    latestExecution_ = &addRecord(executeRecords, *text, record);
    return true;
}

bool EventStore::decodeFinalize(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    const auto [initOnes, others] = splitByType(decodeEvents(message, parts_), EVENT_TYPE_INIT);
    record.events = EventList(others);
    fileInitEvents(EventList(initOnes));
    hasFinalizeEvents = hasFinalizeEvents || !others.empty();
    namedRecord(finalizeRecords, *text).record = arena_.make(record);
    hasFinalize = true;
    return true;
}

bool EventStore::decodeGraphEvents(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    const std::string_view graphName = *text;
    const auto [initOnes, afterInit] = splitByType(decodeEvents(message, parts_), EVENT_TYPE_INIT);
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
    record.events = EventList(decodeEvents(message, parts_));
    addRecord(applyBinarySectionRecords, *text, record);
    hasApplyBinarySection = true;
    return true;
}

bool EventStore::decodeFinalizeAfterTensorUpdates(const schema::LogMessage& message) {
    const auto text = textOf(message);
    if (!isVisible(message) || !text) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.message = parts_.text(message.text());
    record.events = EventList(decodeEvents(message, parts_));
    addRecord(finalizeAfterTensorUpdatesRecords, *text, record, graphNameIn);
    hasFinalizeAfterTensorUpdates = true;
    return true;
}

bool EventStore::decodeUpdateBinarySection(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.events = EventList(decodeEvents(message, parts_));
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
    if (message.text() != nullptr) {
        record.message = parts_.text(message.text());
    }
    namedRecord(contextRetrieval, isSize ? binarySizeKey : binaryKey).record = arena_.make(record);
    hasContextRetrieval = true;
    return true;
}

bool EventStore::decodeContextGetBinarySectionSize(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    if (message.text() != nullptr) {
        record.message = parts_.text(message.text());
    }
    addRecord(contextSectionRetrieval, binarySectionSizeKey, record);
    hasContextSectionRetrieval = true;
    return true;
}

}  // namespace zeb::profiling
