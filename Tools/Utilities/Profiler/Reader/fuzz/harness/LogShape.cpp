#include "harness/LogShape.h"

#include <string_view>

#include "reader/backend/PayloadReader.h"

namespace zeb::fuzz {

namespace {

constexpr std::size_t prefixSize = 4;
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

/// Walks the tables of a chunk as its offsets lead. What leads out of the chunk is left out.
class ChunkWalk {
public:
    ChunkWalk(std::span<const std::uint8_t> chunk, LogShape& shape)
        : chunk_(std::as_bytes(chunk)), shape_(shape) {}

    void walk() { walkTables(follow(chunk_.u32(0), messagesSlot), eventsSlot, 0); }

private:
    // A vector of tables, each of which has a vector of further tables in that slot.
    void walkTables(std::uint64_t vector, std::uint64_t slot, int depth) {
        if (vector == 0 || depth > maxDepth) {
            return;
        }
        const std::size_t count = chunk_.records(vector + 4, 4, chunk_.u32(vector));
        for (std::size_t index = 0; index < count && shape_.isAffordable; ++index) {
            const std::uint64_t element = vector + 4 + index * 4;
            const std::uint64_t table = element + chunk_.u32(element);
            takeTable(table, depth > 0);
            walkTables(follow(table, slot), subEventsSlot, depth + 1);
        }
    }

    void takeTable(std::uint64_t table, bool isEvent) {
        for (const std::uint64_t slot : textSlots) {
            const std::uint64_t text = follow(table, slot);
            textBytes_ += chunk_.records(text + 4, 1, chunk_.u32(text));
        }
        shape_.isAffordable = ++tables_ <= maxTables && textBytes_ <= maxTextBytes;
        if (const std::uint64_t name = isEvent ? follow(table, fileNameSlot) : 0; name != 0) {
            shape_.hasObjects = true;
            shape_.namesPlainFiles =
                shape_.namesPlainFiles && chunk_.text(name + 4).find('/') == std::string_view::npos;
        }
    }

    // Where the offset in a slot leads, 0 when there is none.
    [[nodiscard]] std::uint64_t follow(std::uint64_t table, std::uint64_t slot) const {
        const auto back = static_cast<std::int32_t>(chunk_.u32(table));
        const auto vtable = static_cast<std::uint64_t>(static_cast<std::int64_t>(table) - back);
        const std::uint32_t field = slot < u16(vtable) ? u16(vtable + slot) : 0;
        const std::uint32_t offset = field == 0 ? 0 : chunk_.u32(table + field);
        return offset == 0 ? 0 : table + field + offset;
    }

    [[nodiscard]] std::uint32_t u16(std::uint64_t offset) const {
        // The last two bytes of a chunk are read with the two in front of them.
        return chunk_.has(offset, 4) ? chunk_.u32(offset) & 0xFFFFU : chunk_.u32(offset - 2) >> 16U;
    }

    profiling::PayloadReader chunk_;
    LogShape& shape_;
    std::size_t tables_ = 0;
    std::size_t textBytes_ = 0;
};

}  // namespace

LogShape shapeOf(std::span<const std::uint8_t> log) {
    LogShape shape;
    const profiling::PayloadReader reader(std::as_bytes(log));
    std::size_t at = 0;
    while (shape.isAffordable && reader.has(at, prefixSize)) {
        const std::uint32_t length = reader.u32(at);
        at += prefixSize;
        if (!reader.has(at, length)) {
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
