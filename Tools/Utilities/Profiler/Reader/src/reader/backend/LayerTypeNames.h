#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zeb::profiling {

bool isKnownLayerType(std::uint32_t layerType);

inline constexpr std::size_t maxLayerTypeNameLength = 22;

/// @return the layer type's name, or a text that says that it is not known
std::string_view layerTypeName(std::uint32_t layerType);

}  // namespace zeb::profiling
