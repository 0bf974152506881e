#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

#include "flatbuffers/flatbuffers.h"
#include "log/ProfileLog_generated.h"

/// Writes profiling logs as a profiling runtime writes them: messages gathered into size-prefixed chunks.
namespace zeb::samplelog {

using Bytes = std::vector<std::uint8_t>;
using MethodType = profiling::schema::MethodType;

/// Unit codes of an event, as they stand in the log.
enum Unit : std::uint32_t { microseconds = 0, bytes = 2, cycles = 3, count = 4, object = 5, none = 6 };

/// Event types that the reader treats apart; all other numbers are opaque.
inline constexpr std::uint32_t initEventType = 100;
inline constexpr std::uint32_t finalizeEventType = 300;
inline constexpr std::uint32_t queueWaitEventType = 405;

/// The value of an event. Which alternative is held decides the log's `valueSelector`; `monostate` is no
/// value.
using Value = std::variant<std::monostate, std::int64_t, std::uint64_t, float, double, std::string, Bytes>;

/// One event, a row of a message's event tree. What is not set is left out of the log.
struct Event {
    std::optional<std::string> name;
    Value value;
    std::uint32_t unit = microseconds;
    std::uint32_t type = 0;
    std::optional<std::string> fileName;
    std::vector<Event> subEvents;
    std::optional<std::uint32_t> valueSelector =
        std::nullopt;  ///< written instead of the one that `value` asks for
};

/// When a method began and ended, in us. A time that is not set is left out of the log.
struct Timing {
    std::optional<std::uint64_t> startTime;
    std::optional<std::uint64_t> endTime;
};

/// One call of a profiled method.
struct Message {
    MethodType methodType = MethodType::Unknown;
    std::optional<std::string> text;
    Timing timing;
    std::uint64_t timestamp = 0;
    std::vector<Event> events;
    std::int8_t level = 0;
};

/// What the log says about itself. What is not set is left out of the log.
struct Header {
    float timeScale = 0.0F;
    std::uint64_t epochTimestamp = 0;        ///< us since the Unix epoch
    std::uint64_t steadyClockTimestamp = 0;  ///< us
    std::optional<std::string> generatorName;
    std::optional<std::string> generatorVersion;
    std::optional<std::string> backendInfo;
};

/// Writes a log to a stream, chunk by chunk. A message is encoded as it is added, so memory follows the
/// largest chunk. Nothing is written before `finishChunk`.
class LogWriter {
public:
    /// @param out has to outlive the writer; its state tells whether writing succeeded
    explicit LogWriter(std::ostream& out) : out_(out) {}

    /// Puts a header into the open chunk.
    void setHeader(const Header& header);
    /// Adds a message to the open chunk.
    void add(const Message& message);
    /// Writes the open chunk, which may hold neither header nor messages, and opens the next.
    void finishChunk();

    /// @return size of the open chunk so far, in bytes
    [[nodiscard]] std::size_t openChunkSize() const { return builder_.GetSize(); }

private:
    std::ostream& out_;
    flatbuffers::FlatBufferBuilder builder_;
    flatbuffers::Offset<profiling::schema::LogHeader> header_;
    std::vector<flatbuffers::Offset<profiling::schema::LogMessage>> messages_;
};

/// A whole log in memory, one chunk of all messages.
Bytes encodeLog(const std::optional<Header>& header, const std::vector<Message>& messages);

}  // namespace zeb::samplelog
