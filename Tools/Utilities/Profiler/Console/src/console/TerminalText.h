#pragma once

#include <string>
#include <string_view>

namespace zeb::console {

/// Makes of text that comes from elsewhere what a terminal shows and doesn't obey: each control character
/// (`profiling::isControl`, a stray byte 80 to 9F) becomes a question mark. All else stays, byte for byte.
class TerminalText {
public:
    enum class Newlines : bool { hidden, kept };

    explicit TerminalText(Newlines newlines) : newlines_(newlines) {}

    /// @return the text so far, but for a character at its end that is not whole and may go on in the next
    /// one
    std::string shown(std::string_view text);

    /// @return what is left at the end of the last text
    std::string rest();

private:
    Newlines newlines_;
    std::string rest_;
};

/// @return the text as one line
std::string shownOnOneLine(std::string_view text);

}  // namespace zeb::console
