#include "samplelog/SharedEventsLog.h"

#include <vector>

namespace zeb::samplelog {

namespace {

namespace schema = profiling::schema;
using Builder = flatbuffers::FlatBufferBuilder;
using EventOffset = flatbuffers::Offset<schema::LogEvent>;
using TextOffset = flatbuffers::Offset<flatbuffers::String>;

EventOffset encodeLowestEvent(Builder& builder, TextOffset name, const std::string& objectName) {
    const auto fileName = objectName.empty() ? TextOffset() : builder.CreateString(objectName);
    schema::LogEventBuilder table(builder);
    table.add_name(name);
    if (!objectName.empty()) {
        table.add_unit(object);
        table.add_fileName(fileName);
    }
    return table.Finish();
}

EventOffset encodeEvent(Builder& builder, TextOffset name, EventOffset below, std::uint32_t copiesBelow) {
    const auto subEvents = builder.CreateVector(std::vector<EventOffset>(copiesBelow, below));
    schema::LogEventBuilder table(builder);
    table.add_name(name);
    table.add_subEvents(subEvents);
    return table.Finish();
}

EventOffset encodeTree(Builder& builder, const SharedEventsShape& shape) {
    const auto name = builder.CreateString(shape.name);
    EventOffset event = encodeLowestEvent(builder, name, shape.objectName);
    for (std::uint32_t level = 1; level < shape.levels; ++level) {
        event = encodeEvent(builder, name, event, level <= shape.sharedLevels ? shape.fanOut : 1);
    }
    return event;
}

flatbuffers::Offset<schema::LogMessage> encodeMessage(Builder& builder, const SharedEventsShape& shape) {
    const auto events = builder.CreateVector(std::vector<EventOffset>{encodeTree(builder, shape)});
    const auto text = builder.CreateString("graph");
    const auto time = schema::CreateMessageTime(builder, 1);
    schema::MethodTimingBuilder timing(builder);
    const auto timingTable = timing.Finish();
    schema::LogMessageBuilder table(builder);
    table.add_time(time);
    table.add_methodType(MethodType::Execute);
    table.add_timing(timingTable);
    table.add_events(events);
    table.add_text(text);
    return table.Finish();
}

}  // namespace

std::uint64_t SharedEventsShape::eventCount() const {
    std::uint64_t events = 1;
    for (std::uint32_t level = 1; level < levels; ++level) {
        events = 1 + events * (level <= sharedLevels ? fanOut : 1);
    }
    return events;
}

Bytes encodeSharedEventsLog(const SharedEventsShape& shape) {
    Builder builder;
    const auto messages = builder.CreateVector(
        std::vector<flatbuffers::Offset<schema::LogMessage>>{encodeMessage(builder, shape)});
    builder.FinishSizePrefixed(schema::CreateLogChunk(builder, 0, messages));
    return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

void writeSharedEventsLog(std::ostream& out) {
    const Bytes log = encodeSharedEventsLog();
    out.write(reinterpret_cast<const char*>(log.data()), static_cast<std::streamsize>(log.size()));
}

}  // namespace zeb::samplelog
