// The dispatcher, and the decoders that fill single members of the store.

#include <array>
#include <cstddef>

#include "logging/Logger.h"
#include "store/EventStore.h"
#include "store/EventTree.h"
#include "store/MessageFields.h"

namespace zeb::profiling {

bool EventStore::dispatchMethod(const schema::LogMessage& message, const OpenChunk& chunk) {
    using Decoder = bool (EventStore::*)(const schema::LogMessage&);
    static constexpr std::array<Decoder, 18> decoders = {
        nullptr,
        &EventStore::decodeExecute,
        &EventStore::decodeFinalize,
        &EventStore::decodeExecute,
        &EventStore::decodeInit,
        &EventStore::decodeDeInit,
        &EventStore::decodeInitStep,
        &EventStore::decodeComposeGraphs,
        &EventStore::decodeExecuteOverall,
        &EventStore::decodeGraphEvents,
        &EventStore::decodeDynamicLibLoad,
        &EventStore::decodeApplyBinarySection,
        &EventStore::decodeApplyBinarySection,
        &EventStore::decodeContextGetBinary,
        &EventStore::decodeContextGetBinary,
        &EventStore::decodeContextGetBinarySectionSize,
        &EventStore::decodeFinalizeAfterTensorUpdates,
        &EventStore::decodeUpdateBinarySection,
    };
    const auto methodType = static_cast<std::int8_t>(message.methodType());
    if (methodType < 1 || static_cast<std::size_t>(methodType) >= decoders.size()) {
        logMessage(ZEB_LOG_LEVEL_ERROR, "Unknown method type.");
        return false;
    }
    if (message.methodType() == schema::MethodType::ExecuteAsync) {
        asyncExecute = true;
    }
    parts_.enter(chunk);
    return (this->*decoders[static_cast<std::uint8_t>(methodType)])(message);
}

// The message's text up to its first NUL, lying in the chunk; nothing when the message has none.
std::optional<std::string_view> EventStore::textOf(const schema::LogMessage& message) {
    return message.text() == nullptr ? std::nullopt : std::optional(parts_.visible(message.text()));
}

bool EventStore::isVisible(const schema::LogMessage& message) const {
    return message.level() < visibilityLevel_;
}

bool EventStore::decodeWholeRecord(const schema::LogMessage& message, MethodRecord& record, bool& hasRecord) {
    if (!isVisible(message)) {
        return false;
    }
    record.durationUs = durationOf(message);
    record.timestamp = timestampOf(message);
    record.events = EventList(decodeEvents(message, parts_));
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
        deInitRecord.message = parts_.text(message.text());
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
        initStepMessage = parts_.text(message.text());
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
        composeGraphNames += composeGraphNames.empty() ? "" : "; ";
        composeGraphNames += *text;
    }
    return true;
}

}  // namespace zeb::profiling
