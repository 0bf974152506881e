#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zeb::fuzz {

/// What a log holds, seen from the outside and without trust in it.
struct LogShape {
    std::vector<std::size_t> chunkEnds;  ///< behind each chunk that is there in full, in bytes
    bool isCutOff = false;               ///< the file ends within a chunk
    /// Whether reading the log costs little. A log may share its tables, and so stand for far more events
    /// than it has bytes; and a length prefix may ask for far more memory than the log fills.
    bool isAffordable = true;
    bool hasObjects = false;      ///< there may be objects to save
    bool namesPlainFiles = true;  ///< all object file names stay in the working directory
};

/// Looks through a log that may be malformed in any way.
LogShape shapeOf(std::span<const std::uint8_t> log);

}  // namespace zeb::fuzz
