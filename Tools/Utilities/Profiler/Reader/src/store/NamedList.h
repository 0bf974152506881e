#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "memory/BlockList.h"
#include "store/HashIndex.h"
#include "store/StoredText.h"

namespace zeb::profiling {

/// A list of entries in order of first appearance, each name once, that is searched by name in constant time.
/// @tparam Name the entry's member that holds its name
template <typename Entry, StoredText Entry::*Name>
class NamedList {
public:
    /// @param make makes a new entry of that name, to stand at the end of the list, if there is none
    /// @return the position of the entry under `name`
    /// @throws std::bad_alloc and what `make` throws, with the list as it was
    template <typename Make>
    std::uint32_t findOrAdd(std::string_view name, Make make) {
        const auto isNamed = [this, name](std::uint32_t position) {
            return entries_[position].*Name == name;
        };
        return positions_.findOrAdd(name, isNamed, [this, &make] { entries_.add(make()); });
    }

    [[nodiscard]] bool empty() const { return entries_.empty(); }
    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    [[nodiscard]] Entry& operator[](std::size_t position) { return entries_[position]; }
    [[nodiscard]] const Entry& operator[](std::size_t position) const { return entries_[position]; }
    [[nodiscard]] auto begin() const { return entries_.begin(); }
    [[nodiscard]] auto end() const { return entries_.end(); }

private:
    BlockList<Entry> entries_;
    HashIndex positions_;
};

}  // namespace zeb::profiling
