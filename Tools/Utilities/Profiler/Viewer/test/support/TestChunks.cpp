#include "support/TestChunks.h"

#include <vector>

#include "flatbuffers/flatbuffers.h"
#include "log/ProfileLog_generated.h"

namespace zeb::viewer::test {

namespace schema = profiling::schema;

std::string soundChunk() {
    flatbuffers::FlatBufferBuilder builder;
    const auto name = builder.CreateString("generator");
    schema::LogHeaderBuilder header(builder);
    header.add_generatorName(name);
    builder.Finish(schema::CreateLogChunk(builder, header.Finish()));
    return {reinterpret_cast<const char*>(builder.GetBufferPointer()), builder.GetSize()};
}

std::string sharedEventsLog(const std::string& objectName) {
    flatbuffers::FlatBufferBuilder builder;
    auto event = schema::CreateLogEventDirect(builder, "event", 0, 0, 5, nullptr, schema::ValueSelector::None,
                                              0, 0.0F, nullptr, objectName.c_str());
    for (int level = 0; level < 7; ++level) {
        const std::vector<flatbuffers::Offset<schema::LogEvent>> children(8, event);
        event = schema::CreateLogEventDirect(builder, "event", 0, 0, 0, &children);
    }
    const auto time = schema::CreateMessageTime(builder, 1);
    const auto timing = schema::CreateMethodTiming(builder);
    const std::vector events{event};
    const std::vector messages{schema::CreateLogMessageDirect(builder, time, schema::MethodType::Execute,
                                                              timing, 0, &events, "net")};
    builder.FinishSizePrefixed(schema::CreateLogChunkDirect(builder, 0, &messages));
    return {reinterpret_cast<const char*>(builder.GetBufferPointer()), builder.GetSize()};
}

std::string prefixOf(std::uint32_t length) {
    std::string prefix;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        prefix += static_cast<char>(length >> shift & 0xFFU);
    }
    return prefix;
}

std::string withPrefix(const std::string& chunk) {
    return prefixOf(static_cast<std::uint32_t>(chunk.size())) + chunk;
}

}  // namespace zeb::viewer::test
