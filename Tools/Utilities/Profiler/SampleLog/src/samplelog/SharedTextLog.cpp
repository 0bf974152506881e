#include "samplelog/SharedTextLog.h"

#include <vector>

namespace zeb::samplelog {

namespace {

namespace schema = profiling::schema;
using Builder = flatbuffers::FlatBufferBuilder;
using EventOffset = flatbuffers::Offset<schema::LogEvent>;
using MessageOffset = flatbuffers::Offset<schema::LogMessage>;
using TextOffset = flatbuffers::Offset<flatbuffers::String>;
using PayloadOffset = flatbuffers::Offset<flatbuffers::Vector<std::uint8_t>>;

// Wherever a payload begins in it, there stands half of the whole one's length.
PayloadOffset encodePayload(Builder& builder, std::size_t size) {
    Bytes bytes(size);
    for (std::size_t at = 0; at < size; ++at) {
        bytes[at] = static_cast<std::uint8_t>(size / 2 >> (8U * (at % 4)));
    }
    return builder.CreateVector(bytes);
}

EventOffset encodeObject(Builder& builder, TextOffset text, PayloadOffset payload) {
    schema::LogEventBuilder table(builder);
    table.add_name(text);
    table.add_fileName(text);
    table.add_unit(object);
    table.add_valueSelector(schema::ValueSelector::Bytes);
    table.add_bytes(payload);
    return table.Finish();
}

EventOffset encodeTextEvent(Builder& builder, TextOffset text) {
    schema::LogEventBuilder table(builder);
    table.add_name(text);
    table.add_valueSelector(schema::ValueSelector::Text);
    table.add_stringValue(text);
    return table.Finish();
}

}  // namespace

Bytes encodeSharedTextLog(const SharedTextShape& shape) {
    Builder builder;
    const TextOffset text = builder.CreateString(shape.text);
    const PayloadOffset payload = encodePayload(builder, shape.payloadSize);
    const auto time = schema::CreateMessageTime(builder, 1);
    const auto timing = schema::CreateMethodTiming(builder);
    std::vector<MessageOffset> messages;
    for (std::size_t position = 0; position < shape.messages; ++position) {
        const auto later = static_cast<flatbuffers::uoffset_t>(position * shape.payloadStep);
        const auto events = builder.CreateVector(std::vector<EventOffset>{
            encodeObject(builder, text, PayloadOffset(payload.o - later)), encodeTextEvent(builder, text)});
        schema::LogMessageBuilder table(builder);
        table.add_time(time);
        table.add_methodType(shape.methodType);
        table.add_timing(timing);
        table.add_events(events);
        table.add_text(text);
        messages.push_back(table.Finish());
    }
    builder.FinishSizePrefixed(schema::CreateLogChunk(builder, 0, builder.CreateVector(messages)));
    return {builder.GetBufferPointer(), builder.GetBufferPointer() + builder.GetSize()};
}

}  // namespace zeb::samplelog
