#include "log/ChunkCheck.h"

#include <limits>

#include "flatbuffers/flatbuffers.h"
#include "log/ProfileLog_generated.h"

namespace zeb::profiling {

namespace {

constexpr std::size_t minChunkSize = 12;
constexpr std::size_t maxChunkSize = 2147483646;  // a FlatBuffer's offsets are signed 32-bit numbers
constexpr flatbuffers::uoffset_t maxDepth = 2 + maxEventDepth;  // the root and a message take two

// Options that only some releases of FlatBuffers have are set where they exist.
template <typename Options>
Options verifierOptions() {
    Options options;
    options.max_depth = maxDepth;
    options.max_tables = std::numeric_limits<flatbuffers::uoffset_t>::max();
    options.check_alignment = false;
    options.check_nested_flatbuffers = true;
    if constexpr (requires { options.max_size; }) {
        options.max_size = std::numeric_limits<std::int32_t>::max();
    }
    if constexpr (requires { options.assert; }) {
        options.assert = false;
    }
    return options;
}

}  // namespace

std::string_view wordsFor(ChunkFault fault) {
    switch (fault) {
        case ChunkFault::none:
            return "is sound";
        case ChunkFault::tooShort:
            return "is too short to be a chunk";
        case ChunkFault::tooLong:
            return "is too long for a FlatBuffer";
        case ChunkFault::rootOffset:
            return "has a root offset that leads out of it";
        case ChunkFault::verification:
            return "fails verification: a table, vector or string in it is malformed";
    }
    return {};
}

ChunkFault checkChunk(std::span<const std::uint8_t> chunk) {
    if (chunk.size() < minChunkSize) {
        return ChunkFault::tooShort;
    }
    if (chunk.size() > maxChunkSize) {
        return ChunkFault::tooLong;
    }
    const auto rootOffset = flatbuffers::ReadScalar<flatbuffers::soffset_t>(chunk.data());
    if (rootOffset <= 0 || static_cast<std::size_t>(rootOffset) > chunk.size() - 1) {
        return ChunkFault::rootOffset;
    }
    flatbuffers::Verifier verifier(chunk.data(), chunk.size(),
                                   verifierOptions<flatbuffers::Verifier::Options>());
    return schema::VerifyLogChunkBuffer(verifier) ? ChunkFault::none : ChunkFault::verification;
}

}  // namespace zeb::profiling
