#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "memory/BlockList.h"
#include "store/HashSecret.h"

namespace zeb::profiling {

/// Spreads names over numbers. A log chooses its names, so it must not know how: each spreading has a secret
/// of its own, without which nobody can make names that all meet in one place.
class NameHash {
public:
    /// @return the same number for equal texts
    [[nodiscard]] std::uint32_t operator()(std::string_view text) const {
        std::uint64_t hash = secret_.first * (2 * text.size() + 1);  // no byte can make up for another length
        for (std::size_t at = 0; text.size() > at + pairSize; at += pairSize) {
            hash = folded(wordAt(text, at) ^ secret_.second, wordAt(text, at + wordSize) ^ hash);
        }
        // The last pair may overlap the one before, and within itself.
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        if (text.size() < wordSize) {
            std::copy(text.begin(), text.end(), reinterpret_cast<char*>(&last));
        } else {
            first = wordAt(text, std::max(text.size(), pairSize) - pairSize);
            last = wordAt(text, text.size() - wordSize);
        }
        return static_cast<std::uint32_t>(folded(first ^ secret_.second, last ^ hash));
    }

private:
    __extension__ using Product = unsigned __int128;
    static constexpr std::size_t wordSize = sizeof(std::uint64_t);
    static constexpr std::size_t pairSize = 2 * wordSize;

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

    HashSecret secret_ = makeHashSecret();
};

/// Finds the position of an entry in a list by its name, in constant time. The list and the comparison of
/// names are its user's.
///
/// It is a table of its own because a log may be all names, each looked up in vain and then added: with the
/// flat hash set of Abseil loading such a log takes 1.3 times as long, with `std::unordered_set` 2.6 times.
class HashIndex {
public:
    /// @param matches tells whether the entry at a position, which most likely has the name, is the one
    /// @param add adds the entry to the end of the list when there is none. What it throws is passed on, with
    /// the index as it was.
    /// @return the position of the entry
    /// @throws std::bad_alloc, with index and list as they were
    template <typename Matches, typename Add>
    std::uint32_t findOrAdd(std::string_view name, Matches matches, Add add) {
        const std::uint32_t hash = hash_(name);
        if ((hashes_.size() + 1) * 8 > tags_.size() * 5) {
            grow();
        }
        const std::size_t slot = slotOf(hash, matches);
        if (tags_[slot] == freeTag) {
            hashes_.makeRoom();
            add();
            hashes_.add(hash);
            occupy(slot, hash, static_cast<std::uint32_t>(hashes_.size() - 1));
        }
        return positions_[slot];
    }

    /// @return whether there is an entry
    template <typename Matches>
    [[nodiscard]] bool contains(std::string_view name, Matches matches) const {
        return !tags_.empty() && tags_[slotOf(hash_(name), matches)] != freeTag;
    }

private:
    static constexpr std::uint8_t freeTag = 0;

    static std::uint8_t tagOf(std::uint32_t hash) { return static_cast<std::uint8_t>(1 + (hash >> 25U)); }

    // The slot of the entry, or the free one where it would be.
    template <typename Matches>
    [[nodiscard]] std::size_t slotOf(std::uint32_t hash, Matches matches) const {
        const std::size_t mask = tags_.size() - 1;
        const std::uint8_t tag = tagOf(hash);
        std::size_t at = hash & mask;
        while (tags_[at] != freeTag && (tags_[at] != tag || !matches(positions_[at]))) {
            at = (at + 1) & mask;
        }
        return at;
    }

    void occupy(std::size_t slot, std::uint32_t hash, std::uint32_t position) {
        tags_[slot] = tagOf(hash);
        positions_[slot] = position;
    }

    void grow() {
        constexpr std::size_t firstSize = 16;
        const std::size_t size = std::max(firstSize, tags_.size() * 4);
        std::vector<std::uint32_t> positions(size);
        std::vector<std::uint8_t> tags(size, freeTag);
        positions_.swap(positions);
        tags_.swap(tags);
        for (std::size_t position = 0; position < hashes_.size(); ++position) {
            const std::uint32_t hash = hashes_[position];
            occupy(slotOf(hash, [](std::uint32_t /*position*/) { return false; }), hash,
                   static_cast<std::uint32_t>(position));
        }
    }

    NameHash hash_;
    BlockList<std::uint32_t> hashes_;  ///< by position
    // Slots, a power of two of them. A look-up mostly takes the tags alone, which are small enough for
    // caches.
    std::vector<std::uint8_t> tags_;
    std::vector<std::uint32_t> positions_;
};

}  // namespace zeb::profiling
