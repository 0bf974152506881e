#pragma once

#include <cstdint>

namespace zeb::profiling {

/// Two numbers that nobody outside the process can tell.
struct HashSecret {
    std::uint64_t first;
    std::uint64_t second;
};

/// @return another secret with each call
HashSecret makeHashSecret() noexcept;

/// What a system that has no random numbers to give is replaced by: the clock and where things lie in memory.
HashSecret makeHashSecretWithoutSystem() noexcept;

}  // namespace zeb::profiling
