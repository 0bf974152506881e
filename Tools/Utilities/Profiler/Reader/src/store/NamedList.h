#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "store/BlockList.h"
#include "store/EventArena.h"
#include "store/HashIndex.h"
#include "store/StoredText.h"

namespace zeb::profiling {

/// A list of entries in order of first appearance, each name once, that is searched by name in constant time.
/// @tparam Name the entry's member that holds its name
template <typename Entry, StoredText Entry::*Name>
class NamedList {
public:
    /// @param arena keeps the name of a new entry, and has to outlive the list
    /// @return the entry under `name`; a new one at the end of the list if there is none. Valid until the
    /// next call.
    Entry& findOrAdd(std::string_view name, EventArena& arena) {
        const auto isNamed = [this, name](std::uint32_t position) {
            return entries_[position].*Name == name;
        };
        const std::uint32_t position = positions_.findOrAdd(name, isNamed);
        if (position == entries_.size()) {
            entries_.add({}).*Name = arena.keepText(name);
        }
        return entries_[position];
    }

    [[nodiscard]] bool empty() const { return entries_.empty(); }
    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    [[nodiscard]] const Entry& operator[](std::size_t position) const { return entries_[position]; }
    [[nodiscard]] auto begin() const { return entries_.begin(); }
    [[nodiscard]] auto end() const { return entries_.end(); }

private:
    BlockList<Entry> entries_;
    HashIndex positions_;
};

}  // namespace zeb::profiling
