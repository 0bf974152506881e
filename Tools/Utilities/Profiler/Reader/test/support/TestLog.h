#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "logging/Logger.h"
#include "samplelog/EventMakers.h"
#include "samplelog/LogWriter.h"
#include "support/TestFiles.h"

/// What the tests of all rooms share: messages by verbs, files that go away, and the log calls of a test.
namespace zeb::test {

using samplelog::Event;
using samplelog::Header;
using samplelog::Message;
using samplelog::MethodType;
using samplelog::ofType;
using samplelog::Value;

/// An event with a name, a value and what is below it.
inline Event event(std::string name, Value value = {}, std::vector<Event> subEvents = {}) {
    return samplelog::event(std::move(name), std::move(value), samplelog::microseconds, std::move(subEvents));
}
inline Event inUnit(std::uint32_t unit, Event event) {
    event.unit = unit;
    return event;
}
/// An event of unit object with bytes and a file name.
inline Event object(std::string name, samplelog::Bytes bytes, std::string fileName = {}) {
    return samplelog::objectEvent(std::move(name), std::move(bytes), std::move(fileName));
}
inline Value number(std::uint64_t value) {
    return value;
}

/// Puts the low 32 bits of a number in place of the bytes at `at`.
void put32(samplelog::Bytes& bytes, std::size_t at, std::uint64_t number);

/// A message that ran for that many us. Its timestamp is 1000 unless it is given.
Message message(MethodType type, std::string text, std::uint64_t durationUs, std::vector<Event> events = {},
                std::uint64_t timestamp = 1000);

/// A log in chunks: each list of messages becomes one.
samplelog::Bytes logOf(const std::vector<std::vector<Message>>& chunks, const Header& header = {});

/// Catches what the library logs, for as long as it lives: "LEVEL text" each.
class CaughtLog {
public:
    explicit CaughtLog(std::int32_t maxLevel = profiling::ZEB_LOG_LEVEL_DEBUG);
    ~CaughtLog();
    CaughtLog(const CaughtLog&) = delete;
    CaughtLog& operator=(const CaughtLog&) = delete;

    [[nodiscard]] const std::vector<std::string>& lines() const;
    [[nodiscard]] bool has(std::string_view line) const;
};

}  // namespace zeb::test
