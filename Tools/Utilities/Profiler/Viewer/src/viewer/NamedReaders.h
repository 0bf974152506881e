#pragma once

#include <string_view>

namespace zeb::viewer {

/// A reader that comes with the viewer.
struct NamedReader {
    std::string_view name;      ///< that `--reader` takes
    std::string_view fileName;  ///< of its plug-in
};

/// All of them, the default first.
inline constexpr NamedReader namedReaders[] = {
    {"murl", "libZebMurlProfilingReader.so"},
    {"generic", "libZebGenericProfilingReader.so"},
};

}  // namespace zeb::viewer
