#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "log/FlatBufferReaderUtil.h"
#include "reports/EventText.h"
#include "store/EventStore.h"
#include "support/TestLog.h"

namespace zeb::test {

/// A store that is handed messages. Each comes in a chunk of its own that is gone right after, so that the
/// sanitizer sees whatever the store keeps of it.
class TestStore : public profiling::EventStore {
public:
    explicit TestStore(std::int8_t visibilityLevel = 127) : EventStore(visibilityLevel) {}

    bool take(const Message& message) { return takeLog(logOf({{message}}), 1); }

    /// Takes that many messages of the one chunk of a log.
    bool takeLog(const samplelog::Bytes& log, std::size_t messages) {
        profiling::LogChunkBuffer chunk(log.size() - 4);
        return takeLog(log, messages, chunk);
    }
    /// @param chunk what the log's chunk is read into
    bool takeLog(const samplelog::Bytes& log, std::size_t messages, profiling::LogChunkBuffer& chunk) {
        std::copy(log.begin() + 4, log.end(), chunk.data());
        profiling::FlatBufferReaderUtil walker;
        bool isStored = walker.openChunk(chunk);
        for (std::size_t position = 0; isStored && position < messages; ++position) {
            isStored = dispatchMethod(*walker.nextMessage(), walker.chunk());
        }
        return isStored;
    }

    /// Takes the messages, aggregates, and gives the notes.
    std::string takeAll(const std::vector<Message>& messages) {
        for (const Message& message : messages) {
            take(message);
        }
        std::ostringstream notes;
        aggregateStatistics(notes);
        return notes.str();
    }
};

/// Events in a line: "name=value", "xN" behind it for N occurrences, sub-events in parentheses.
inline std::string inLine(const profiling::EventList& events) {
    std::string line;
    for (const profiling::ProfileEvent& event : events) {
        line += (line.empty() ? "" : " ") + std::string(event.name) + "=" +
                profiling::formatEventValue(event.value());
        if (event.occurrences() > 1) {
            line += "x" + std::to_string(event.occurrences());
        }
        if (!event.subEvents.empty()) {
            line += "(" + inLine(event.subEvents) + ")";
        }
    }
    return line;
}

}  // namespace zeb::test
