#include "store/EventStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "log/ProfileLog_generated.h"
#include "logging/Logger.h"
#include "store/Aggregation.h"
#include "store/ContextMethods.h"
#include "store/EventTree.h"
#include "store/MessageFields.h"
#include "store/MessageParts.h"

namespace zeb::profiling {

namespace {

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

EventStore::EventStore(std::int8_t visibilityLevel)
    : visibilityLevel_(visibilityLevel), parts_(std::make_unique<MessageParts>(arena_)) {}

EventStore::~EventStore() = default;

bool EventStore::dispatchMethod(const schema::LogMessage& message, const OpenChunk& chunk) {
    using schema::MethodType;
    struct MethodDecoder {
        MethodType type;
        bool (EventStore::*decode)(const schema::LogMessage&);
    };
    static constexpr auto decoders = std::to_array<MethodDecoder>({
        {MethodType::Execute, &EventStore::decodeExecute},
        {MethodType::Finalize, &EventStore::decodeFinalize},
        {MethodType::ExecuteAsync, &EventStore::decodeExecute},
        {MethodType::Init, &EventStore::decodeInit},
        {MethodType::DeInit, &EventStore::decodeDeInit},
        {MethodType::InitStep, &EventStore::decodeInitStep},
        {MethodType::ComposeGraphs, &EventStore::decodeComposeGraphs},
        {MethodType::ExecuteOverall, &EventStore::decodeExecuteOverall},
        {MethodType::GraphEvents, &EventStore::decodeGraphEvents},
        {MethodType::DynamicLibLoad, &EventStore::decodeDynamicLibLoad},
        {MethodType::ApplyBinarySection, &EventStore::decodeApplyBinarySection},
        {MethodType::ApplyBinarySectionAlternate, &EventStore::decodeApplyBinarySection},
        {MethodType::ContextGetBinarySize, &EventStore::decodeContextGetBinary},
        {MethodType::ContextGetBinary, &EventStore::decodeContextGetBinary},
        {MethodType::ContextGetBinarySectionSize, &EventStore::decodeContextGetBinarySectionSize},
        {MethodType::FinalizeAfterTensorUpdates, &EventStore::decodeFinalizeAfterTensorUpdates},
        {MethodType::UpdateBinarySection, &EventStore::decodeUpdateBinarySection},
    });
    static_assert(
        std::equal(
            decoders.begin(), decoders.end(), profiling::methods.begin(), profiling::methods.end(),
            [](const MethodDecoder& decoder, const Method& method) { return decoder.type == method.type; }),
        "each method has one, in the order of their numbers");

    const auto position =
        static_cast<std::size_t>(static_cast<std::uint8_t>(message.methodType())) - firstMethod;
    if (position >= decoders.size()) {
        logMessage(ZEB_LOG_LEVEL_ERROR, "Unknown method type.");
        return false;
    }
    if (message.methodType() == MethodType::ExecuteAsync) {
        asyncExecute = true;
    }
    parts_->enter(chunk);
    return (this->*decoders[position].decode)(message);
}

void EventStore::aggregateStatistics(std::ostream& notes) {
    for (const MeasuredMethod& method : measuredMethods) {
        aggregate(this->*method.records, this->*method.average, this->*method.max, this->*method.min, arena_);
    }
    if (asyncExecute) {
        aggregateQueueWaits(notes);
    }
    aggregateInitRow();
}

void EventStore::aggregateQueueWaits(std::ostream& notes) {
    executeQueueWaits = queueWaitsOfAll(executeRecords, notes);
    executeMaxQueueWaits =
        queueWaitsOfEach(executeMax, notes, "No max queue-wait time event found per execution.");
    executeMinQueueWaits =
        queueWaitsOfEach(executeMin, notes, "No min queue-wait time event found per execution.");
}

void EventStore::aggregateInitRow() {
    if (hasInitRecord) {
        initTimestamp = initRecord.timestamp;
        initDurationUs = initRecord.durationUs;
    } else if (hasFinalize) {
        initTimestamp = initStepTimestamp;
        initDurationUs = composeDurationUs + initStepDurationUs;
        for (const NamedMethodRecord& entry : finalizeRecords) {
            initDurationUs += entry.record->durationUs;
        }
    }
}

// The message's text up to its first NUL, lying in the chunk; nothing when the message has none.
std::optional<std::string_view> EventStore::textOf(const schema::LogMessage& message) {
    return message.text() == nullptr ? std::nullopt : std::optional(parts_->visible(message.text()));
}

bool EventStore::isVisible(const schema::LogMessage& message) const {
    return message.level() < visibilityLevel_;
}

MethodRecord EventStore::recordWithText(const schema::LogMessage& message) {
    MethodRecord record = timedRecord(message);
    if (message.text() != nullptr) {
        record.message = parts_->text(message.text());
    }
    return record;
}

bool EventStore::decodeWholeRecord(const schema::LogMessage& message, MethodRecord& record, bool& hasRecord) {
    if (!isVisible(message)) {
        return false;
    }
    record.durationUs = durationOf(message);
    record.timestamp = timestampOf(message);
    record.events = EventList(decodeEvents(message, *parts_));
    hasRecord = true;
    return true;
}

bool EventStore::decodeInit(const schema::LogMessage& message) {
    return decodeWholeRecord(message, initRecord, hasInitRecord);
}

bool EventStore::decodeExecuteOverall(const schema::LogMessage& message) {
    return decodeWholeRecord(message, executeOverallRecord, hasExecuteOverall);
}

bool EventStore::decodeDynamicLibLoad(const schema::LogMessage& message) {
    return decodeWholeRecord(message, libLoadRecord, hasLibLoad);
}

bool EventStore::decodeDeInit(const schema::LogMessage& message) {
    bool stored = false;
    decodeWholeRecord(message, deInitRecord, stored);
    if (stored && message.text() != nullptr) {
        deInitRecord.message = parts_->text(message.text());
    }
    return stored;
}

bool EventStore::decodeInitStep(const schema::LogMessage& message) {
    initStepTimestamp = timestampOf(message);  // also of a message that is dropped
    if (!isVisible(message)) {
        return false;
    }
    initStepDurationUs = durationOf(message);
    if (message.text() != nullptr) {
        initStepMessage = parts_->text(message.text());
    }
    return true;
}

bool EventStore::decodeComposeGraphs(const schema::LogMessage& message) {
    if (composeTimestamp == 0) {  // not set yet; also set by a message that is dropped
        composeTimestamp = timestampOf(message);
    }
    if (!isVisible(message)) {
        return false;
    }
    composeDurationUs += durationOf(message);
    if (const auto text = textOf(message); text && !text->empty()) {
        composeGraphNames.add(parts_->name(message.text()));
    }
    return true;
}

// What is kept by graph name or by context key.

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
    return parts_->entryOf(list, name, wholeText, [&] { return NamedMethodRecord{parts_->part(name)}; });
}

// A new graph comes with its first record, so that none is ever without one.
EventStore::GraphEntry EventStore::graphOf(GraphRecordList& list, std::string_view text,
                                           const MethodRecord& first, NameIn nameIn) {
    bool isNew = false;
    GraphMethodRecords& graph = parts_->entryOf(list, text, nameIn, [&] {
        isNew = true;
        return GraphMethodRecords{parts_->part(nameIn(text)), RecordList(first, arena_)};
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
    const auto [initOnes, others] = splitByType(decodeEvents(message, *parts_), EVENT_TYPE_INIT);
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
    const auto [initOnes, others] = splitByType(decodeEvents(message, *parts_), EVENT_TYPE_INIT);
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
    const auto [initOnes, afterInit] = splitByType(decodeEvents(message, *parts_), EVENT_TYPE_INIT);
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
    record.events = EventList(decodeEvents(message, *parts_));
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
    record.message = parts_->text(message.text());
    record.events = EventList(decodeEvents(message, *parts_));
    addRecord(finalizeAfterTensorUpdatesRecords, *text, record, graphNameIn);
    hasFinalizeAfterTensorUpdates = true;
    return true;
}

bool EventStore::decodeUpdateBinarySection(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    MethodRecord record = timedRecord(message);
    record.events = EventList(decodeEvents(message, *parts_));
    updateBinarySectionRecords.assign(1, {{}, arena_.make(record)});
    hasUpdateBinarySection = true;
    return true;
}

bool EventStore::decodeContextGetBinary(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    const MethodRecord record = recordWithText(message);
    namedRecord(contextRetrieval, methodOf(message.methodType()).csvName).record = arena_.make(record);
    hasContextRetrieval = true;
    return true;
}

bool EventStore::decodeContextGetBinarySectionSize(const schema::LogMessage& message) {
    if (!isVisible(message)) {
        return false;
    }
    const MethodRecord record = recordWithText(message);
    addRecord(contextSectionRetrieval, methodOf(message.methodType()).csvName, record);
    hasContextSectionRetrieval = true;
    return true;
}

}  // namespace zeb::profiling
