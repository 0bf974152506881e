#include "samplelog/LogWriter.h"

#include <array>
#include <iterator>
#include <sstream>
#include <type_traits>

namespace zeb::samplelog {

namespace {

namespace schema = profiling::schema;
using Builder = flatbuffers::FlatBufferBuilder;
using TextOffset = flatbuffers::Offset<flatbuffers::String>;

TextOffset encodeText(Builder& builder, const std::optional<std::string>& text) {
    return text ? builder.CreateString(*text) : TextOffset();
}

// What lies outside an event's own table has to be written before it.
struct EncodedValue {
    TextOffset text;
    flatbuffers::Offset<flatbuffers::Vector<std::uint8_t>> bytes;
};

EncodedValue encodeValue(Builder& builder, const Value& value) {
    EncodedValue encoded;
    if (const auto* const text = std::get_if<std::string>(&value)) {
        encoded.text = builder.CreateString(*text);
    } else if (const auto* const content = std::get_if<Bytes>(&value)) {
        encoded.bytes = builder.CreateVector(*content);
    }
    return encoded;
}

// Returns the selector that goes with the value.
schema::ValueSelector addValue(schema::LogEventBuilder& table, const Value& value,
                               const EncodedValue& encoded) {
    static_assert(std::variant_size_v<Value> == 7, "each alternative is below");
    switch (value.index()) {
        case 1:
            table.add_intValue(std::get<std::int64_t>(value));
            return schema::ValueSelector::Int;
        case 2:
            table.add_uintValue(std::get<std::uint64_t>(value));
            return schema::ValueSelector::Uint;
        case 3:
            table.add_floatValue(std::get<float>(value));
            return schema::ValueSelector::Float;
        case 4:
            table.add_doubleValue(std::get<double>(value));
            return schema::ValueSelector::Double;
        case 5:
            table.add_stringValue(encoded.text);
            return schema::ValueSelector::Text;
        case 6:
            table.add_bytes(encoded.bytes);
            return schema::ValueSelector::Bytes;
        default:
            return schema::ValueSelector::None;
    }
}

flatbuffers::Offset<schema::LogEvent> encodeEvent(Builder& builder, const Event& event);

flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<schema::LogEvent>>> encodeEvents(
    Builder& builder, const std::vector<Event>& events) {
    if (events.empty()) {
        return {};
    }
    std::vector<flatbuffers::Offset<schema::LogEvent>> tables;
    tables.reserve(events.size());
    for (const Event& event : events) {
        tables.push_back(encodeEvent(builder, event));
    }
    return builder.CreateVector(tables);
}

flatbuffers::Offset<schema::LogEvent> encodeEvent(Builder& builder, const Event& event) {
    const auto name = encodeText(builder, event.name);
    const auto fileName = encodeText(builder, event.fileName);
    const EncodedValue value = encodeValue(builder, event.value);
    const auto subEvents = encodeEvents(builder, event.subEvents);
    schema::LogEventBuilder table(builder);
    const schema::ValueSelector selector = addValue(table, event.value, value);
    table.add_valueSelector(event.valueSelector ? static_cast<schema::ValueSelector>(*event.valueSelector)
                                                : selector);
    table.add_name(name);
    table.add_fileName(fileName);
    table.add_unit(event.unit);
    table.add_type(event.type);
    table.add_subEvents(subEvents);
    return table.Finish();
}

flatbuffers::Offset<schema::MethodTiming> encodeTiming(Builder& builder, const Timing& timing) {
    schema::MethodTimingBuilder table(builder);
    if (timing.startTime) {
        table.add_startTime(*timing.startTime);
    }
    if (timing.endTime) {
        table.add_endTime(*timing.endTime);
    }
    return table.Finish();
}

}  // namespace

void LogWriter::setHeader(const Header& header) {
    const auto version = encodeText(builder_, header.generatorVersion);
    const auto backend = encodeText(builder_, header.backendInfo);
    const auto name = encodeText(builder_, header.generatorName);
    schema::LogHeaderBuilder table(builder_);
    table.add_timeScale(header.timeScale);
    table.add_epochTimestamp(header.epochTimestamp);
    table.add_steadyClockTimestamp(header.steadyClockTimestamp);
    table.add_generatorVersion(version);
    table.add_backendInfo(backend);
    table.add_generatorName(name);
    header_ = table.Finish();
}

void LogWriter::add(const Message& message) {
    const auto time = schema::CreateMessageTime(builder_, message.timestamp);
    const auto timing = encodeTiming(builder_, message.timing);
    const auto events = encodeEvents(builder_, message.events);
    const auto text = encodeText(builder_, message.text);
    schema::LogMessageBuilder table(builder_);
    table.add_time(time);
    table.add_timing(timing);
    table.add_events(events);
    table.add_text(text);
    table.add_methodType(message.methodType);
    table.add_level(message.level);
    messages_.push_back(table.Finish());
}

void LogWriter::finishChunk() {
    const auto messages =
        messages_.empty()
            ? flatbuffers::Offset<flatbuffers::Vector<flatbuffers::Offset<schema::LogMessage>>>()
            : builder_.CreateVector(messages_);
    builder_.FinishSizePrefixed(schema::CreateLogChunk(builder_, header_, messages));
    out_.write(reinterpret_cast<const char*>(builder_.GetBufferPointer()),
               static_cast<std::streamsize>(builder_.GetSize()));
    builder_.Clear();
    header_ = 0;
    messages_.clear();
}

Bytes encodeLog(const std::optional<Header>& header, const std::vector<Message>& messages) {
    std::ostringstream out;
    LogWriter writer(out);
    if (header) {
        writer.setHeader(*header);
    }
    for (const Message& message : messages) {
        writer.add(message);
    }
    writer.finishChunk();
    const std::string text = out.str();
    return {text.begin(), text.end()};
}

}  // namespace zeb::samplelog
