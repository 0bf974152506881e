#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <vector>

/// Floors: small loops that do the least that a reader of the same log has to do. Each throws
/// `std::runtime_error` for a log that it cannot read.
namespace zeb::bench {

/// Reads every chunk into a buffer of its size.
/// @return number of bytes
std::uint64_t readChunks(const std::string& logPath);

/// Reads every chunk and verifies it as the reader does.
/// @return number of bytes
std::uint64_t verifyChunks(const std::string& logPath);

/// An event as a plain record, which owns all that is in it.
struct PlainEvent {
    std::uint32_t type = 0;
    std::uint32_t unit = 0;
    std::int32_t valueKind = 0;
    std::uint64_t value = 0;
    std::uint64_t occurrences = 1;
    std::vector<std::uint8_t> bytes;
    std::string name;
    std::string fileName;
    std::vector<PlainEvent> subEvents;
};

struct PlainMessage {
    std::uint64_t durationUs = 0;
    std::uint64_t timestamp = 0;
    std::string text;
    std::vector<PlainEvent> events;
};

/// A log in plain records.
struct PlainLog {
    std::deque<PlainMessage> messages;
    std::list<std::string> stringValues;
};

/// Reads and verifies every chunk, and copies all of its messages and events. Lists are reserved exactly.
PlainLog copyLog(const std::string& logPath);

/// Appends what a report of the layers shape shows of its layers, formatted as there.
void formatLayerReport(std::string& text, std::size_t layers);
/// The same for the CSV report.
void formatLayerCsv(std::string& text, std::size_t layers);

}  // namespace zeb::bench
