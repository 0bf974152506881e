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
    const auto isName = [this, name](std::uint32_t position) { return names_[position]->text() == name; };
    const std::uint32_t position = positions_.findOrAdd(name, isName, names_.size());
    if (position == names_.size()) {
        names_.push_back(makeName(name));
    }
    return EventName(names_[position]);
}

const KeptName* EventArena::makeName(std::string_view name) {
    auto* const kept =
        static_cast<KeptName*>(memory_.allocate(sizeof(KeptName) + name.size(), alignof(KeptName)));
    std::construct_at(kept, KeptName{.length = static_cast<std::uint32_t>(name.size())});
    std::copy(name.begin(), name.end(), reinterpret_cast<char*>(kept + 1));
    return kept;
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
