#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

/// Arithmetic of counts and times that stays within its type, whatever a log holds.
namespace zeb::profiling {

/// @return a quotient of counts or times cut to a whole number; what is too large for it becomes the largest
constexpr std::uint64_t cutToWhole(double value) {
    constexpr double firstAbove = 18446744073709551616.0;
    return value < firstAbove ? static_cast<std::uint64_t>(value) : std::numeric_limits<std::uint64_t>::max();
}

/// @return the sum of two times, the largest number where it would be larger
constexpr std::uint64_t sumOrMost(std::uint64_t one, std::uint64_t other) {
    return one + std::min(other, std::numeric_limits<std::uint64_t>::max() - one);
}

/// @return the difference of two times, 0 where it would be negative
constexpr std::uint64_t differenceOrZero(std::uint64_t larger, std::uint64_t smaller) {
    return larger - std::min(larger, smaller);
}

}  // namespace zeb::profiling
