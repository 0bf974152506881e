#include "store/EventArena.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>

namespace zeb::profiling {

// The arena never runs a destructor.
static_assert(std::is_trivially_destructible_v<ProfileEvent> &&
              std::is_trivially_destructible_v<EventObject> && std::is_trivially_destructible_v<KeptName>);

std::span<ProfileEvent> EventArena::makeEvents(std::size_t count) {
    if (count == 0) {
        return {};
    }
    auto* const events =
        static_cast<ProfileEvent*>(memory_.allocate(count * sizeof(ProfileEvent), alignof(ProfileEvent)));
    std::uninitialized_value_construct_n(events, count);
    return {events, count};
}

EventName EventArena::keepName(std::string_view name) {
    const std::uint32_t hash = hashOf(name);
    const auto isName = [name](const KeptName* kept) { return kept->text() == name; };
    const auto keep = [this, name, hash] {
        void* const memory = memory_.allocate(sizeof(KeptName) + name.size(), alignof(KeptName));
        auto* const kept = std::construct_at(static_cast<KeptName*>(memory),
                                             KeptName{static_cast<std::uint32_t>(name.size()), hash});
        std::copy(name.begin(), name.end(), reinterpret_cast<char*>(kept + 1));
        return kept;
    };
    return EventName(names_.findOrAdd(hash, isName, keep));
}

std::string_view EventArena::keepText(std::string_view text) {
    auto* const copy = static_cast<char*>(memory_.allocate(text.size() + 1, 1));
    *std::copy(text.begin(), text.end(), copy) = '\0';
    return {copy, text.size()};
}

const EventObject* EventArena::keepObject(std::span<const std::byte> bytes, std::string_view fileName) {
    auto* const object =
        static_cast<EventObject*>(memory_.allocate(sizeof(EventObject), alignof(EventObject)));
    auto* const copy = static_cast<std::byte*>(memory_.allocate(bytes.size(), 1));
    std::copy(bytes.begin(), bytes.end(), copy);
    return std::construct_at(object, EventObject{{copy, bytes.size()}, keepText(fileName)});
}

}  // namespace zeb::profiling
