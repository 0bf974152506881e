#include "reader/backend/CheckedNumbers.h"

#include <cerrno>
#include <cstdlib>
#include <limits>
#include <stdexcept>

// The texts of the exceptions are part of what a host sees, so they are made here and not by the standard
// library, whose texts differ from one to the next.
namespace zeb::profiling {

std::uint64_t checkedUnsigned64(const std::string& text) {
    char* end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        throw std::invalid_argument("invalid stoull argument");
    }
    if (errno == ERANGE) {
        throw std::out_of_range("stoull argument out of range");
    }
    return value;
}

std::int32_t checkedSigned32(const std::string& text) {
    using Limits = std::numeric_limits<std::int32_t>;
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str()) {
        throw std::invalid_argument("invalid stoi argument");
    }
    if (errno == ERANGE || value < Limits::min() || value > Limits::max()) {
        throw std::out_of_range("stoi argument out of range");
    }
    return static_cast<std::int32_t>(value);
}

std::uint64_t cutToWhole(double value) {
    constexpr double firstAbove = 18446744073709551616.0;
    return value < firstAbove ? static_cast<std::uint64_t>(value) : std::numeric_limits<std::uint64_t>::max();
}

}  // namespace zeb::profiling
