#pragma once

#include <cstddef>
#include <optional>

namespace zeb::console {

/// What a console shows.
struct ConsoleStyle {
    bool hasColour = false;
    bool hasUnicode = false;  ///< bars, tree lines and the sign of a cut
    /// Columns; nothing where lines may have any length, as in a pipe.
    std::optional<std::size_t> width = {};
};

/// @return what can be shown on a descriptor: colours on a terminal alone, unless NO_COLOR is set or TERM is
/// dumb; more than plain characters where the user's locale is of UTF-8; and the terminal's width
ConsoleStyle styleOfTerminal(int descriptor);

}  // namespace zeb::console
