#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zeb::profiling {

/// A list of entries in order of first appearance, each name once, that is searched by name in constant time.
/// @tparam Name the entry's member that holds its name; the text has to outlive the list
template <typename Entry, std::string_view Entry::*Name>
class NamedList {
public:
    /// @return the entry under `name`; a new one at the end of the list if there is none. Valid until the
    /// next call.
    Entry& findOrAdd(std::string_view name) {
        const auto [position, added] = positions_.try_emplace(name, entries_.size());
        if (added) {
            entries_.emplace_back().*Name = name;
        }
        return entries_[position->second];
    }

    [[nodiscard]] bool empty() const { return entries_.empty(); }
    [[nodiscard]] std::size_t size() const { return entries_.size(); }
    [[nodiscard]] const Entry& operator[](std::size_t position) const { return entries_[position]; }
    [[nodiscard]] auto begin() const { return entries_.begin(); }
    [[nodiscard]] auto end() const { return entries_.end(); }

private:
    std::vector<Entry> entries_;
    std::unordered_map<std::string_view, std::size_t> positions_;
};

}  // namespace zeb::profiling
