#pragma once

#include <algorithm>
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

/// @return a quotient of counts or times cut to a whole number; what is too large for it becomes the largest
std::uint64_t cutToWhole(double value);

/// @return the difference of two times, 0 where it would be negative
constexpr std::uint64_t differenceOrZero(std::uint64_t larger, std::uint64_t smaller) {
    return larger - std::min(larger, smaller);
}

}  // namespace zeb::profiling
