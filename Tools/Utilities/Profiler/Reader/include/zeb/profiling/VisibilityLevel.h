#pragma once

#include <cstdint>

namespace zeb::profiling {

/// How much of a log a reader decodes. A message is decoded only when its level, a signed byte of the log, is
/// strictly below the reader's level. The values carry no names: any number from -128 to 127 is a level.
enum class VisibilityLevel : std::int8_t {};

}  // namespace zeb::profiling
