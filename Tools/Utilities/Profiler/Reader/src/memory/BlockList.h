#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "memory/ForwardIterator.h"
#include "memory/MemoryBlock.h"

namespace zeb::profiling {

/// A list that is cheap to grow: once it is long, it fills one block of memory after the other, where a
/// vector would move to fresh memory of twice the size again and again.
template <typename Entry>
class BlockList {
public:
    struct Cursor {
        const BlockList* list = nullptr;
        std::size_t position = 0;

        [[nodiscard]] const Entry& at() const { return (*list)[position]; }
        void advance() { ++position; }
        friend bool operator==(const Cursor& left, const Cursor& right) = default;
    };
    using Iterator = ForwardIterator<Entry, Cursor>;

    /// Makes room for one more entry, which `add` then takes without fail.
    /// @throws std::bad_alloc, with the list as it was
    void makeRoom() {
        if (size_ == capacity_) {
            grow();
        }
    }

    /// @return the new entry; valid until the next call
    /// @throws std::bad_alloc, with the list as it was
    Entry& add(const Entry& entry) {
        makeRoom();
        return *std::construct_at(addressOf(size_++), entry);
    }

    [[nodiscard]] bool empty() const { return size_ == 0; }
    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] Entry& operator[](std::size_t position) { return *addressOf(position); }
    [[nodiscard]] const Entry& operator[](std::size_t position) const { return *addressOf(position); }
    [[nodiscard]] const Entry& front() const { return *addressOf(0); }
    [[nodiscard]] const Entry& back() const { return *addressOf(size_ - 1); }
    [[nodiscard]] Iterator begin() const { return Iterator({this, 0}); }
    [[nodiscard]] Iterator end() const { return Iterator({this, size_}); }

private:
    static_assert(std::is_trivially_copyable_v<Entry>, "entries are moved as bytes and never destroyed");
    static constexpr std::size_t firstEntries = 8;
    static constexpr std::size_t entriesEach = std::bit_floor((std::size_t{1} << 17U) / sizeof(Entry));

    void grow() {
        if (capacity_ >= entriesEach) {
            blocks_.push_back(makeMemoryBlock(entriesEach * sizeof(Entry)));
            capacity_ += entriesEach;
        } else {
            growFirstBlock();
        }
    }

    // Most lists are short: the first block doubles until it has its size.
    void growFirstBlock() {
        const std::size_t capacity = std::max(firstEntries, capacity_ * 2);
        MemoryBlock block = makeMemoryBlock(capacity * sizeof(Entry));
        if (blocks_.empty()) {
            blocks_.emplace_back();
        } else {
            std::memcpy(block.get(), blocks_.front().get(), capacity_ * sizeof(Entry));
        }
        blocks_.front() = std::move(block);
        capacity_ = capacity;
    }

    [[nodiscard]] Entry* addressOf(std::size_t position) const {
        return reinterpret_cast<Entry*>(blocks_[position / entriesEach].get()) + position % entriesEach;
    }

    std::vector<MemoryBlock> blocks_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace zeb::profiling
