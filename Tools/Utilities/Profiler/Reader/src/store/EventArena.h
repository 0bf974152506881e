#pragma once

#include <cstddef>
#include <memory_resource>
#include <span>
#include <string_view>
#include <vector>

#include "store/EventName.h"
#include "store/HashIndex.h"
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

private:
    const KeptName* makeName(std::string_view name);

    std::pmr::monotonic_buffer_resource memory_;
    std::vector<const KeptName*> names_;
    HashIndex positions_;  ///< of the names
};

}  // namespace zeb::profiling
