#pragma once

#include <cstddef>
#include <iomanip>
#include <ostream>
#include <string_view>

/// What the per-layer tables have in common.
namespace zeb::profiling {

inline constexpr std::string_view oruTableTitle = "ORU Per-layer Stats:";
inline constexpr std::string_view zebTableTitle = "ZEB Per-layer Stats:";
inline constexpr std::string_view mappingTableTitle = "ZEB Layer - ORU Layer(s) mapping:";

/// What a console column is wider than its title.
inline constexpr std::size_t columnSpacing = 4;

constexpr std::size_t columnWidth(std::string_view title) {
    return title.size() + columnSpacing;
}

/// Writes a value in a field of that width, in the stream's alignment.
template <typename Value>
void printField(std::ostream& out, const Value& value, std::size_t width) {
    out << std::setw(static_cast<int>(width)) << value;
}

}  // namespace zeb::profiling
