#pragma once

#include <cstdint>
#include <span>

namespace zeb::profiling {

/// What is wrong with a chunk, in the order in which it is tested.
enum class ChunkFault : std::uint8_t {
    none,
    tooShort,      ///< fewer bytes than any chunk has
    tooLong,       ///< more bytes than a FlatBuffer can have
    rootOffset,    ///< the root table lies outside the chunk
    verification,  ///< a table, vector or string in it is malformed
};

/// Tests a chunk from its first byte to its last leaf, so that all of its tables can be read afterwards
/// without a further test. Tables may stand at any address: the chunk needs no alignment.
ChunkFault checkChunk(std::span<const std::uint8_t> chunk);

}  // namespace zeb::profiling
