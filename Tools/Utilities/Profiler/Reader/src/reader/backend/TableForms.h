#pragma once

#include <cstddef>
#include <string_view>

/// What the per-layer tables have in common.
namespace zeb::profiling {

/// What a console column is wider than its title.
inline constexpr std::size_t columnSpacing = 4;

constexpr std::size_t columnWidth(std::string_view title) {
    return title.size() + columnSpacing;
}

}  // namespace zeb::profiling
