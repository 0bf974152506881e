#include "store/EventArena.h"

#include <algorithm>

namespace zeb::profiling {

static_assert(std::is_trivially_destructible_v<ProfileEvent>, "the arena runs no destructor");

std::span<ProfileEvent> EventArena::makeEvents(std::size_t count) {
    if (count == 0) {
        return {};
    }
    std::byte* const room = allocate(count * sizeof(ProfileEvent), alignof(ProfileEvent));
    return {reinterpret_cast<ProfileEvent*>(room), count};
}

StoredText EventArena::keepName(std::string_view name) {
    return keepName(name, [this, name] { return keepText(name); });
}

bool EventArena::hasName(std::string_view name) const {
    return positions_.contains(name, [&](std::uint32_t position) { return names_[position].text() == name; });
}

StoredText EventArena::keepText(std::string_view text) {
    auto* const kept =
        reinterpret_cast<KeptText*>(allocate(sizeof(KeptText) + text.size(), alignof(KeptText)));
    auto* const characters = reinterpret_cast<char*>(kept + 1);
    std::construct_at(kept, KeptText{characters, static_cast<std::uint32_t>(text.size())});
    std::copy(text.begin(), text.end(), characters);
    return StoredText(kept);
}

StoredText EventArena::textOf(std::string_view kept) {
    return StoredText(make(KeptText{kept.data(), static_cast<std::uint32_t>(kept.size())}));
}

std::string_view EventArena::keepTerminated(std::string_view text) {
    auto* const copy = reinterpret_cast<char*>(allocate(text.size() + 1, 1));
    *std::copy(text.begin(), text.end(), copy) = '\0';
    return {copy, text.size()};
}

std::span<const std::byte> EventArena::keepBytes(std::span<const std::byte> bytes) {
    std::byte* const copy = allocate(bytes.size(), 1);
    std::copy(bytes.begin(), bytes.end(), copy);
    return {copy, bytes.size()};
}

std::byte* EventArena::allocate(std::size_t size, std::size_t alignment) {
    constexpr std::size_t largeSize = 1U << 18U;
    if (size >= largeSize) {  // gets a block of its own, so that no block is left half empty
        return addBlock(size).data();
    }
    void* place = free_.data();
    std::size_t room = free_.size();
    if (free_.empty() || std::align(alignment, size, place, room) == nullptr) {
        constexpr std::size_t firstBlockSize = 1U << 12U;
        constexpr std::size_t lastBlockSize = 1U << 20U;
        blockSize_ = std::clamp(std::max(blockSize_ * 2, size), firstBlockSize, lastBlockSize);
        free_ = addBlock(blockSize_);
        place = free_.data();
    }
    auto* const start = static_cast<std::byte*>(place);
    free_ = {start + size, free_.data() + free_.size()};
    return start;
}

// A block begins where everything may stand.
std::span<std::byte> EventArena::addBlock(std::size_t size) {
    blocks_.push_back(makeMemoryBlock(size));
    return {blocks_.back().get(), size};
}

}  // namespace zeb::profiling
