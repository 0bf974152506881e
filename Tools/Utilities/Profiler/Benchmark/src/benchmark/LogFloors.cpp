#include <bit>
#include <cstring>
#include <fstream>
#include <memory>
#include <span>
#include <stdexcept>

#include "benchmark/Floors.h"
#include "log/ChunkCheck.h"
#include "log/LogAccess.h"
#include "log/ProfileLog_generated.h"

namespace zeb::bench {

namespace {

namespace schema = profiling::schema;
using profiling::lengthOf;
using profiling::storedText;
using profiling::tableAt;

// Calls `visit` with the bytes of each chunk.
template <typename Visit>
std::uint64_t forEachChunk(const std::string& logPath, Visit visit) {
    std::ifstream file(logPath, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot open " + logPath);
    }
    std::uint64_t size = 0;
    std::uint32_t length = 0;
    while (file.read(reinterpret_cast<char*>(&length), sizeof(length))) {
        const auto buffer = std::make_unique_for_overwrite<std::uint8_t[]>(length);
        if (!file.read(reinterpret_cast<char*>(buffer.get()), length)) {
            throw std::runtime_error("short chunk in " + logPath);
        }
        visit(std::span<const std::uint8_t>(buffer.get(), length));
        size += sizeof(length) + length;
    }
    return size;
}

void verify(std::span<const std::uint8_t> chunk) {
    if (profiling::checkChunk(chunk) != profiling::ChunkFault::none) {
        throw std::runtime_error("damaged chunk");
    }
}

std::string textUpToNul(const flatbuffers::String* text) {
    const auto* const first = storedText(text).data();
    return {first, strnlen(first, lengthOf(text))};
}

class LogCopier {
public:
    void copyChunk(std::span<const std::uint8_t> chunk) {
        const auto* const messages = schema::GetLogChunk(chunk.data())->messages();
        for (std::uint32_t index = 0; messages != nullptr && index < lengthOf(messages); ++index) {
            copyMessage(*tableAt(messages, index));
        }
    }

    PlainLog take() { return std::move(log_); }

private:
    void copyMessage(const schema::LogMessage& source) {
        PlainMessage& message = log_.messages.emplace_back();
        const auto start = source.timing()->startTime();
        const auto end = source.timing()->endTime();
        message.durationUs = start && end && *end > *start ? *end - *start : 0;
        message.timestamp = source.time()->timestamp();
        if (source.text() != nullptr) {
            message.text = textUpToNul(source.text());
        }
        copyEvents(source.events(), message.events);
    }

    void copyEvents(const flatbuffers::Vector<flatbuffers::Offset<schema::LogEvent>>* sources,
                    std::vector<PlainEvent>& events) {
        if (sources == nullptr) {
            return;
        }
        const std::uint32_t count = lengthOf(sources);
        events.reserve(count);
        for (std::uint32_t index = 0; index < count; ++index) {
            const schema::LogEvent& source = *tableAt(sources, index);
            PlainEvent& event = events.emplace_back();
            event.type = source.type();
            event.unit = source.unit();
            event.name = source.name() == nullptr ? "null" : textUpToNul(source.name());
            if (source.fileName() != nullptr) {
                event.fileName = textUpToNul(source.fileName());
            }
            copyValue(source, event);
            copyEvents(source.subEvents(), event.subEvents);
        }
    }

    void copyValue(const schema::LogEvent& source, PlainEvent& event) {
        event.valueKind = static_cast<std::int32_t>(source.valueSelector());
        switch (source.valueSelector()) {
            case schema::ValueSelector::Int:
                event.value = static_cast<std::uint64_t>(source.intValue());
                break;
            case schema::ValueSelector::Uint:
                event.value = source.uintValue();
                break;
            case schema::ValueSelector::Float:
                event.value = std::bit_cast<std::uint32_t>(source.floatValue());
                break;
            case schema::ValueSelector::Double:
                event.value = std::bit_cast<std::uint64_t>(source.doubleValue());
                break;
            case schema::ValueSelector::Text:
                if (source.stringValue() != nullptr) {
                    const auto& text = log_.stringValues.emplace_back(storedText(source.stringValue()));
                    event.value = reinterpret_cast<std::uintptr_t>(text.c_str());
                }
                break;
            case schema::ValueSelector::Bytes:
                if (source.bytes() != nullptr) {
                    const auto* const first =
                        reinterpret_cast<const std::uint8_t*>(profiling::bytesOf(source.bytes()).data());
                    event.bytes.assign(first, first + lengthOf(source.bytes()));
                }
                break;
            default:
                break;
        }
    }

    PlainLog log_;
};

}  // namespace

std::uint64_t readChunks(const std::string& logPath) {
    return forEachChunk(logPath, [](std::span<const std::uint8_t> /*chunk*/) {});
}

std::uint64_t verifyChunks(const std::string& logPath) {
    return forEachChunk(logPath, verify);
}

PlainLog copyLog(const std::string& logPath) {
    LogCopier copier;
    forEachChunk(logPath, [&copier](std::span<const std::uint8_t> chunk) {
        verify(chunk);
        copier.copyChunk(chunk);
    });
    return copier.take();
}

}  // namespace zeb::bench
