#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string_view>
#include <vector>

namespace zeb::profiling {

/// Spreads names over numbers. A log chooses its names, so it must not know how: each spreading has a secret
/// of its own, without which nobody can make names that all meet in one place.
class NameHash {
public:
    /// @return the same number for equal texts
    [[nodiscard]] std::uint32_t operator()(std::string_view text) const {
        std::uint64_t hash = secret_ ^ text.size();
        std::uint64_t last = 0;
        if (text.size() < wordSize) {
            std::copy(text.begin(), text.end(), reinterpret_cast<char*>(&last));
        } else {
            for (std::size_t at = 0; at < text.size() - wordSize; at += wordSize) {
                hash = folded(hash ^ wordAt(text, at), otherSecret_);
            }
            last = wordAt(text, text.size() - wordSize);
        }
        return static_cast<std::uint32_t>(folded(hash ^ last, otherSecret_));
    }

private:
    __extension__ using Product = unsigned __int128;
    static constexpr std::size_t wordSize = sizeof(std::uint64_t);

    static std::uint64_t secret() {
        std::random_device random;
        return std::uint64_t{random()} << 32U | random() | 1U;  // odd, so that a product loses nothing of it
    }

    static std::uint64_t wordAt(std::string_view text, std::size_t at) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, wordSize);
        return word;
    }

    // Every bit of either factor moves many bits of the result.
    static std::uint64_t folded(std::uint64_t left, std::uint64_t right) {
        const Product product = Product{left} * right;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
    }

    std::uint64_t secret_ = secret();
    std::uint64_t otherSecret_ = secret();
};

/// Finds the position of an entry in a list by its name, in constant time. The list and the comparison of
/// names are its user's.
class HashIndex {
public:
    /// @param matches tells whether the entry at a position, which most likely has the name, is the one
    /// @param position of the entry to add when there is none
    /// @return the position of the entry that was there or has been added
    template <typename Matches>
    std::uint32_t findOrAdd(std::string_view name, Matches matches, std::size_t position) {
        const std::uint32_t hash = hash_(name);
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

    NameHash hash_;
    std::vector<Slot> slots_;  ///< a power of two of them, a quarter of them free
    std::size_t size_ = 0;
};

}  // namespace zeb::profiling
