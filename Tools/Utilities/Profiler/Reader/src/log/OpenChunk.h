#pragma once

#include <cstdint>
#include <span>

namespace zeb::profiling {

/// A chunk whose messages are being read.
struct OpenChunk {
    std::span<const std::uint8_t> bytes;
    std::uint64_t number = 0;  ///< that no other chunk of the process has; an address may have had others
};

}  // namespace zeb::profiling
