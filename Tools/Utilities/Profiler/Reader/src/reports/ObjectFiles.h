#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

#include "store/ProfileEvent.h"

namespace zeb::profiling {

/// Saves the bytes of object events, one new file each. A file that exists is never touched.
class ObjectFiles {
public:
    /// Writes the event's bytes to a file named after its `objectFileName`; when that is taken, "a.bin" leads
    /// on to "a_1.bin", "a_2.bin" and so on. An event without a file name is passed over. No directory is
    /// made. A file that cannot be made, or not be written whole, is logged; of the latter stays what was
    /// written, so that its size tells the loss.
    void writeObjectFile(const ProfileEvent& event);

private:
    std::unordered_map<std::string, std::uint64_t>
        nextNumbers_;  ///< by file name: all numbers below are taken
};

}  // namespace zeb::profiling
