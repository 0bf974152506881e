#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
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

/// Finds values by the hash of what they stand for, in constant time. It keeps values that are small and
/// cheap to copy, a pointer or a position, and leaves the comparison to its user.
template <typename Value>
class HashIndex {
public:
    [[nodiscard]] bool empty() const { return size_ == 0; }

    /// @param matches tells whether a value of the same hash is the one
    /// @return the value, or null; valid until the next value is added
    template <typename Matches>
    [[nodiscard]] const Value* find(std::uint32_t hash, Matches matches) const {
        if (slots_.empty()) {
            return nullptr;
        }
        const Slot& slot = slots_[slotOf(hash, matches)];
        return slot.isUsed ? &slot.value : nullptr;
    }

    /// @param make gives the value to add; called when none matches
    /// @return the value that matches, or the new one
    template <typename Matches, typename Make>
    Value findOrAdd(std::uint32_t hash, Matches matches, Make make) {
        if ((size_ + 1) * 4 > slots_.size() * 3) {
            grow();
        }
        Slot& slot = slots_[slotOf(hash, matches)];
        if (!slot.isUsed) {
            slot = {make(), hash, true};
            ++size_;
        }
        return slot.value;
    }

private:
    struct Slot {
        Value value{};
        std::uint32_t hash = 0;
        bool isUsed = false;
    };

    // The slot of the value, or the free one where it would be.
    template <typename Matches>
    [[nodiscard]] std::size_t slotOf(std::uint32_t hash, Matches matches) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t position = hash & mask;
        while (slots_[position].isUsed &&
               (slots_[position].hash != hash || !matches(slots_[position].value))) {
            position = (position + 1) & mask;
        }
        return position;
    }

    void grow() {
        constexpr std::size_t firstSize = 16;
        std::vector<Slot> old(std::max(firstSize, slots_.size() * 2));
        old.swap(slots_);
        for (const Slot& slot : old) {
            if (slot.isUsed) {
                slots_[slotOf(slot.hash, [](const Value& /*value*/) { return false; })] = slot;
            }
        }
    }

    std::vector<Slot> slots_;  ///< a power of two of them, a quarter of them free
    std::size_t size_ = 0;
};

}  // namespace zeb::profiling
