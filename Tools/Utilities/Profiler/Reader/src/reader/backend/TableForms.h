#pragma once

#include <cstddef>
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

}  // namespace zeb::profiling
