#include "harness/LogShape.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "log/ChunkPrefix.h"

namespace zeb::fuzz {

namespace {

constexpr std::size_t maxTables = 20'000;
constexpr std::size_t maxTextBytes = 4'000'000;
constexpr std::size_t maxMissingBytes = 16'000'000;
constexpr int maxDepth = 66;  // somewhat more than the reader takes

// Where the fields of the tables stand in their vtables.
constexpr std::uint64_t messagesSlot = 6;
constexpr std::uint64_t eventsSlot = 12;
constexpr std::uint64_t subEventsSlot = 12;
constexpr std::uint64_t fileNameSlot = 22;
constexpr std::uint64_t textSlots[] = {4, 14, 20, 22, 28};

/// Numbers of bytes that need not be there. It is made of nothing that the reader is made of, and it is what
/// most of a run would be if it were slow.
class Bytes {
public:
    explicit Bytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] bool has(std::uint64_t offset, std::uint64_t length) const {
        return offset <= bytes_.size() && length <= bytes_.size() - offset;
    }
    /// @return a little-endian number, 0 when it is not all there
    template <typename Number>
    [[nodiscard]] Number number(std::uint64_t offset) const {
        Number value = 0;
        if (has(offset, sizeof(Number))) {
            std::memcpy(&value, bytes_.data() + offset, sizeof(Number));
        }
        return value;
    }
    /// @return how many of the bytes that a vector announces lie behind `offset`, in elements of that size
    [[nodiscard]] std::size_t elements(std::uint64_t vector, std::size_t size) const {
        const std::uint64_t first = vector + sizeof(std::uint32_t);
        return has(first, 0)
                   ? std::min<std::size_t>(number<std::uint32_t>(vector), (bytes_.size() - first) / size)
                   : 0;
    }
    /// @return whether a text holds that character
    [[nodiscard]] bool textHas(std::uint64_t text, char character) const {
        const std::size_t length = elements(text, 1);
        return length != 0 && std::memchr(bytes_.data() + text + 4, character, length) != nullptr;
    }

private:
    static_assert(std::endian::native == std::endian::little);

    std::span<const std::uint8_t> bytes_;
};

/// Walks the tables of a chunk as its offsets lead. What leads out of the chunk is left out.
class ChunkWalk {
public:
    ChunkWalk(std::span<const std::uint8_t> chunk, LogShape& shape) : chunk_(chunk), shape_(shape) {}

    void walk() { walkTables(follow(chunk_.number<std::uint32_t>(0), messagesSlot), eventsSlot, 0); }

private:
    // A vector of tables, each of which has a vector of further tables in that slot.
    void walkTables(std::uint64_t vector, std::uint64_t slot, int depth) {
        if (vector == 0 || depth > maxDepth) {
            return;
        }
        const std::size_t count = chunk_.elements(vector, 4);
        for (std::size_t index = 0; index < count && shape_.isAffordable; ++index) {
            const std::uint64_t element = vector + 4 + index * 4;
            const std::uint64_t table = element + chunk_.number<std::uint32_t>(element);
            countTable(table, depth > 0);
            walkTables(follow(table, slot), subEventsSlot, depth + 1);
        }
    }

    void countTable(std::uint64_t table, bool isEvent) {
        for (const std::uint64_t slot : textSlots) {
            const std::uint64_t text = follow(table, slot);
            textBytes_ += text == 0 ? 0 : chunk_.elements(text, 1);
        }
        shape_.isAffordable = ++tables_ <= maxTables && textBytes_ <= maxTextBytes;
        if (const std::uint64_t name = isEvent ? follow(table, fileNameSlot) : 0; name != 0) {
            shape_.hasObjects = true;
            shape_.namesPlainFiles = shape_.namesPlainFiles && !chunk_.textHas(name, '/');
        }
    }

    // Where the offset in a slot leads, 0 when there is none.
    [[nodiscard]] std::uint64_t follow(std::uint64_t table, std::uint64_t slot) const {
        const auto back = chunk_.number<std::int32_t>(table);
        const auto vtable = static_cast<std::uint64_t>(static_cast<std::int64_t>(table) - back);
        const std::uint32_t field =
            slot < chunk_.number<std::uint16_t>(vtable) ? chunk_.number<std::uint16_t>(vtable + slot) : 0;
        const std::uint32_t offset = field == 0 ? 0 : chunk_.number<std::uint32_t>(table + field);
        return offset == 0 ? 0 : table + field + offset;
    }

    Bytes chunk_;
    LogShape& shape_;
    std::size_t tables_ = 0;
    std::size_t textBytes_ = 0;
};

}  // namespace

LogShape shapeOf(std::span<const std::uint8_t> log) {
    LogShape shape;
    const Bytes bytes(log);
    std::size_t at = 0;
    while (shape.isAffordable && bytes.has(at, profiling::chunkPrefixSize)) {
        const std::uint32_t length = bytes.number<std::uint32_t>(at);
        at += profiling::chunkPrefixSize;
        if (!bytes.has(at, length)) {
            shape.isCutOff = true;
            shape.isAffordable = length - (log.size() - at) <= maxMissingBytes;
            break;
        }
        ChunkWalk(log.subspan(at, length), shape).walk();
        at += length;
        shape.chunkEnds.push_back(at);
    }
    return shape;
}

}  // namespace zeb::fuzz
