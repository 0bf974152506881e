#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace zeb::profiling {

/// What is wrong with a chunk, in the order in which it is tested.
enum class ChunkFault : std::uint8_t { none, tooShort, tooLong, rootOffset, verification };

/// @return what a chunk of that fault does, to stand behind its number, place and length
std::string_view wordsFor(ChunkFault fault);

/// What is logged of a chunk that is damaged in whatever way, cut off at the end of the file included.
inline constexpr const char* damagedChunkText = "Corrupted flatbuffer binary stream";

/// Levels that the events of a chunk that is sound nest at most: those of a message stand on the first.
inline constexpr std::uint32_t maxEventDepth = 62;

/// Tests a chunk from its first byte to its last leaf, so that all of its tables can be read afterwards
/// without a further test. Tables may stand at any address: the chunk needs no alignment.
ChunkFault checkChunk(std::span<const std::uint8_t> chunk);

}  // namespace zeb::profiling
