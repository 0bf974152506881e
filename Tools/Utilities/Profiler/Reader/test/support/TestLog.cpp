#include "support/TestLog.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <sstream>

namespace zeb::test {

namespace {

std::vector<std::string> caughtLines;

void catchLine(const char* format, std::int32_t level, std::uint64_t /*timestamp*/, va_list arguments) {
    std::array<char, 500> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    caughtLines.push_back(std::to_string(level) + " " + text.data());
}

}  // namespace

void put32(samplelog::Bytes& bytes, std::size_t at, std::uint64_t number) {
    for (std::size_t index = 0; index < 4; ++index) {
        bytes.at(at + index) = static_cast<std::uint8_t>(number >> (8U * index));
    }
}

Message message(MethodType type, std::string text, std::uint64_t durationUs, std::vector<Event> events,
                std::uint64_t timestamp) {
    Message made;
    made.methodType = type;
    made.text = std::move(text);
    made.timing = {.startTime = 500, .endTime = 500 + durationUs};
    made.timestamp = timestamp;
    made.events = std::move(events);
    return made;
}

samplelog::Bytes logOf(const std::vector<std::vector<Message>>& chunks, const Header& header) {
    std::ostringstream out;
    samplelog::LogWriter writer(out);
    writer.setHeader(header);
    for (const std::vector<Message>& chunk : chunks) {
        for (const Message& message : chunk) {
            writer.add(message);
        }
        writer.finishChunk();
    }
    const std::string text = out.str();
    return {text.begin(), text.end()};
}

CaughtLog::CaughtLog(std::int32_t maxLevel) {
    caughtLines.clear();
    profiling::setLogger(profiling::loggerHandle,
                         std::make_shared<profiling::Logger>(profiling::Logger{catchLine, maxLevel, 0}));
}

CaughtLog::~CaughtLog() {
    profiling::setLogger(profiling::loggerHandle, nullptr);
    caughtLines.clear();
}

const std::vector<std::string>& CaughtLog::lines() const {
    return caughtLines;
}

bool CaughtLog::has(std::string_view line) const {
    return std::find(caughtLines.begin(), caughtLines.end(), line) != caughtLines.end();
}

}  // namespace zeb::test
