#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <unordered_set>

namespace zeb::exports {

/// Ids of runs, some fifty bytes each.
class RunIds {
public:
    /// @return whether it is new
    bool add(std::string_view runId);

    [[nodiscard]] bool has(std::string_view runId) const;

    /// Adds those of all batches in a directory; there may be none.
    /// @throws Failure when one can't be read
    void addBatchesIn(const std::filesystem::path& directory);

private:
    using Id = std::array<std::uint64_t, 2>;
    struct Hash {
        std::size_t operator()(const Id& id) const { return static_cast<std::size_t>(id[1]); }
    };

    static Id idOf(std::string_view runId);
    void addTable(const std::filesystem::path& table);

    std::unordered_set<Id, Hash> ids_;
};

}  // namespace zeb::exports
