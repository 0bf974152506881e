#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zeb::command {

/// An amount of memory.
struct MemorySize {
    std::uint64_t bytes;
    std::string text;  ///< as a user writes it: a number, with K, M or G behind it for the binary units
};

/// @return nothing when the text is no size, or one that is 0 or beyond all memory
std::optional<MemorySize> parseMemorySize(std::string_view text);

/// @return the size with the largest unit that divides it
MemorySize memorySizeOf(std::uint64_t bytes);

/// @return three quarters of the machine's memory, or of what the control group may have of it
MemorySize defaultMemorySize();

}  // namespace zeb::command
