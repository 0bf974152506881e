#pragma once

#include <string_view>

namespace zeb::profiling {

/// Version of the viewer and its readers, as all reports show it.
inline constexpr std::string_view versionText = "v2.51.0.260929181845";

}  // namespace zeb::profiling
