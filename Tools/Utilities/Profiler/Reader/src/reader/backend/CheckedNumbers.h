#pragma once

#include <cstdint>
#include <string>

/// Numbers from the text of an event's value, in decimal. Leading blanks and trailing characters are
/// accepted.
namespace zeb::profiling {

/// @throws std::invalid_argument when the text does not begin with a number; std::out_of_range when it is too
/// large
std::uint64_t checkedUnsigned64(const std::string& text);

/// @throws as above
std::int32_t checkedSigned32(const std::string& text);

}  // namespace zeb::profiling
