#pragma once

#include <cstddef>
#include <cstdint>

#include "flatbuffers/flatbuffers.h"

/// What stands in a log in front of each chunk: the chunk's length in bytes, little-endian.
namespace zeb::profiling {

using ChunkLength = std::uint32_t;

inline constexpr std::size_t chunkPrefixSize = sizeof(ChunkLength);

/// @param prefix `chunkPrefixSize` bytes, at any address
inline ChunkLength chunkLengthIn(const std::uint8_t* prefix) {
    return flatbuffers::ReadScalar<ChunkLength>(prefix);
}

}  // namespace zeb::profiling
