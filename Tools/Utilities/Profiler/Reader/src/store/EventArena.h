#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "memory/BlockList.h"
#include "memory/MemoryBlock.h"
#include "store/HashIndex.h"
#include "store/ProfileEvent.h"
#include "store/StoredText.h"

namespace zeb::profiling {

/// The memory behind records: events, names, texts, object bytes and the records. What it gives stays where
/// it is until the arena goes, and goes with it in one piece; nothing is freed before. All operations throw
/// `std::bad_alloc`.
class EventArena {
public:
    EventArena() = default;
    EventArena(const EventArena&) = delete;
    EventArena& operator=(const EventArena&) = delete;

    /// Keeps a copy of a value that needs no destruction.
    template <typename Value>
    Value* make(const Value& value) {
        static_assert(std::is_trivially_destructible_v<Value>, "the arena runs no destructor");
        return std::construct_at(reinterpret_cast<Value*>(allocate(sizeof(Value), alignof(Value))), value);
    }

    /// @return room for that many events, each to be written before a list is made of them
    std::span<ProfileEvent> makeEvents(std::size_t count);

    /// Keeps a name, which comes again and again, once.
    StoredText keepName(std::string_view name);
    /// @param keep keeps the name in the arena if it is new
    template <typename Keep>
    StoredText keepName(std::string_view name, Keep keep) {
        const auto isName = [this, name](std::uint32_t position) { return names_[position].text() == name; };
        return names_[positions_.findOrAdd(name, isName, [this, &keep] { names_.add(keep()); })];
    }

    /// @return whether it keeps a name
    [[nodiscard]] bool hasName(std::string_view name) const;

    /// Keeps a copy of a text.
    StoredText keepText(std::string_view text);

    /// Makes a text of characters that the arena keeps already.
    StoredText textOf(std::string_view kept);

    /// Keeps a copy of a text with a NUL behind it.
    std::string_view keepTerminated(std::string_view text);

    /// Keeps a copy of bytes.
    std::span<const std::byte> keepBytes(std::span<const std::byte> bytes);

private:
    std::byte* allocate(std::size_t size, std::size_t alignment);
    std::span<std::byte> addBlock(std::size_t size);

    std::vector<MemoryBlock> blocks_;
    std::span<std::byte> free_;  ///< of the block that is being filled
    std::size_t blockSize_ = 0;
    BlockList<StoredText> names_;
    HashIndex positions_;  ///< of the names
};

}  // namespace zeb::profiling
