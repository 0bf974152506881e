#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "analysis/Run.h"

struct XXH3_state_s;

namespace zeb::analysis {

/// The id of a run: the 128-bit XXH3 hash of its log's bytes, as 32 hex digits. It tells runs apart and knows
/// a copy; it is no protection against somebody who makes two logs of one id.
class RunIdHash {
public:
    /// @throws std::bad_alloc
    RunIdHash();

    void add(std::span<const std::uint8_t> bytes);

    /// @return the id of all bytes so far
    [[nodiscard]] std::string runId() const;

private:
    struct Free {
        void operator()(XXH3_state_s* state) const;
    };
    std::unique_ptr<XXH3_state_s, Free> state_;
};

/// @return an id for a run whose log's bytes nobody has: a hash of its header and its executions
std::string runIdOfFigures(const Run& run);

/// @return whether a text has the form of an id
bool isRunId(std::string_view text);

}  // namespace zeb::analysis
