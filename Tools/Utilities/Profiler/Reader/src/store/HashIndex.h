#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <vector>

namespace zeb::profiling {

/// @return a number that spreads texts well, the same for equal texts
inline std::uint32_t hashOf(std::string_view text) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    constexpr std::size_t wordSize = sizeof(std::uint64_t);
    std::uint64_t hash = text.size();
    const auto mixIn = [&hash, text](std::size_t at, std::size_t length) {
        std::uint64_t word = 0;
        std::copy_n(text.data() + at, length, reinterpret_cast<char*>(&word));
        hash = (hash ^ word) * factor;
        hash ^= hash >> 32U;
    };
    if (text.size() < wordSize) {
        mixIn(0, text.size());
    } else {
        for (std::size_t at = 0; at < text.size() - wordSize; at += wordSize) {
            mixIn(at, wordSize);
        }
        mixIn(text.size() - wordSize, wordSize);
    }
    return static_cast<std::uint32_t>(hash * factor >> 32U);
}

/// Finds the position of an entry in a list by the hash of its name, in constant time. The list and the
/// comparison of names are its user's.
class HashIndex {
public:
    /// @param matches tells whether the entry at a position, which has the same hash, is the one
    /// @param position of the entry to add when there is none
    /// @return the position of the entry that was there or has been added
    template <typename Matches>
    std::uint32_t findOrAdd(std::uint32_t hash, Matches matches, std::size_t position) {
        if ((size_ + 1) * 4 > slots_.size() * 3) {
            grow();
        }
        Slot& slot = slots_[slotOf(hash, matches)];
        if (slot.position == none) {
            slot = {static_cast<std::uint32_t>(position), hash};
            ++size_;
        }
        return slot.position;
    }

private:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    struct Slot {
        std::uint32_t position = none;
        std::uint32_t hash = 0;
    };

    // The slot of the entry, or the free one where it would be.
    template <typename Matches>
    [[nodiscard]] std::size_t slotOf(std::uint32_t hash, Matches matches) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t at = hash & mask;
        while (slots_[at].position != none && (slots_[at].hash != hash || !matches(slots_[at].position))) {
            at = (at + 1) & mask;
        }
        return at;
    }

    void grow() {
        constexpr std::size_t firstSize = 16;
        std::vector<Slot> old(std::max(firstSize, slots_.size() * 2));
        old.swap(slots_);
        for (const Slot& slot : old) {
            if (slot.position != none) {
                slots_[slotOf(slot.hash, [](std::uint32_t /*position*/) { return false; })] = slot;
            }
        }
    }

    std::vector<Slot> slots_;  ///< a power of two of them, a quarter of them free
    std::size_t size_ = 0;
};

}  // namespace zeb::profiling
