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

    bool take(const Message& message) {
        const samplelog::Bytes log = logOf({{message}});
        profiling::LogChunkBuffer chunk(log.size() - 4);
        std::copy(log.begin() + 4, log.end(), chunk.data());
        profiling::FlatBufferReaderUtil walker;
        return walker.openChunk(chunk) && dispatchMethod(*walker.nextMessage());
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
