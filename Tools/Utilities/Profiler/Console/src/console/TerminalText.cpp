#include "console/TerminalText.h"

#include <utility>

#include "text/Utf8.h"

namespace zeb::console {

namespace {

using profiling::FrontCharacter;

// A byte that is part of no character may be a control character by itself.
bool isHidden(std::string_view character) {
    return profiling::isControl(character.size() == 1 ? static_cast<unsigned char>(character.front())
                                                      : profiling::codeOf(character));
}

}  // namespace

std::string TerminalText::shown(std::string_view text) {
    const std::string whole = std::exchange(rest_, {}).append(text);
    std::string shown;
    shown.reserve(whole.size());
    for (std::string_view left = whole; !left.empty();) {
        const FrontCharacter front = profiling::frontCharacter(left);
        if (front.state == FrontCharacter::State::endsEarly) {
            rest_ = left;
            break;
        }
        const bool isWhole = front.state == FrontCharacter::State::whole;
        const std::string_view character = left.substr(0, isWhole ? front.length : 1);
        const bool isKeptNewline = newlines_ == Newlines::kept && character == "\n";
        shown += isHidden(character) && !isKeptNewline ? "?" : character;
        left.remove_prefix(character.size());
    }
    return shown;
}

std::string TerminalText::rest() {
    return std::exchange(rest_, {}).empty() ? "" : "?";
}

std::string shownOnOneLine(std::string_view text) {
    TerminalText line(TerminalText::Newlines::hidden);
    std::string shown = line.shown(text);
    return shown += line.rest();
}

}  // namespace zeb::console
