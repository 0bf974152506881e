#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "store/EventName.h"
#include "store/HashIndex.h"
#include "store/MemoryBlock.h"
#include "store/ProfileEvent.h"

namespace zeb::profiling {

/// The memory behind events: events, names, texts and object bytes. What it gives stays where it is until the
/// arena goes, and goes with it in one piece; nothing is freed before. All operations throw `std::bad_alloc`.
class EventArena {
public:
    EventArena() = default;
    EventArena(const EventArena&) = delete;
    EventArena& operator=(const EventArena&) = delete;

    /// @return that many fresh events, to be filled before a list is made of them
    std::span<ProfileEvent> makeEvents(std::size_t count);

    /// Keeps a name, which comes again and again, once.
    EventName keepName(std::string_view name);

    /// Keeps a copy of a text, with a NUL behind it.
    std::string_view keepText(std::string_view text);

    /// Keeps a copy of an object's bytes and its file name.
    const EventObject* keepObject(std::span<const std::byte> bytes, std::string_view fileName);

    /// @return a number for the marks on names, which no other operation has
    std::uint32_t newMarkOwner() { return ++markOwners_; }

private:
    const KeptName* makeName(std::string_view name);

    std::byte* allocate(std::size_t size, std::size_t alignment);
    std::span<std::byte> addBlock(std::size_t size);

    std::vector<MemoryBlock> blocks_;
    std::span<std::byte> free_;  ///< of the block that is being filled
    std::size_t blockSize_ = 0;
    std::vector<const KeptName*> names_;
    HashIndex positions_;  ///< of the names
    std::uint32_t markOwners_ = 0;
};

}  // namespace zeb::profiling
