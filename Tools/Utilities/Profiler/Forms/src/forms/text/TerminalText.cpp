#include "forms/text/TerminalText.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

namespace zeb::forms {

namespace {

using Byte = unsigned char;

struct Range {
    Byte first;
    Byte last;

    [[nodiscard]] bool has(char character) const {
        const auto byte = static_cast<Byte>(character);
        return first <= byte && byte <= last;
    }
};

constexpr Range continuation{0x80, 0xBF};

// The well-formed characters of UTF-8 beyond ASCII, by their first byte.
struct Form {
    Range first;
    Range second;
    std::size_t length;
};
constexpr Form forms[] = {
    {{0xC2, 0xDF}, continuation, 2}, {{0xE0, 0xE0}, {0xA0, 0xBF}, 3}, {{0xE1, 0xEC}, continuation, 3},
    {{0xED, 0xED}, {0x80, 0x9F}, 3}, {{0xEE, 0xEF}, continuation, 3}, {{0xF0, 0xF0}, {0x90, 0xBF}, 4},
    {{0xF1, 0xF3}, continuation, 4}, {{0xF4, 0xF4}, {0x80, 0x8F}, 4},
};

constexpr Range singleControls[] = {{0x00, 0x1F}, {0x7F, 0x9F}};

// Characters that are hidden: all of one beginning whose last byte is in a range.
struct HiddenCharacters {
    std::string_view beginning;
    Range last;
};
constexpr HiddenCharacters hiddenCharacters[] = {
    {"\xC2", {0x80, 0x9F}},      // U+0080 to U+009F
    {"\xE2\x80", {0xAA, 0xAE}},  // U+202A to U+202E
    {"\xE2\x81", {0xA6, 0xA9}},  // U+2066 to U+2069
};

// Gives the length of the character at the front, 1 for a byte that is part of none, and nothing when the
// text ends within it.
std::optional<std::size_t> lengthOfFirst(std::string_view text) {
    const auto* const form = std::find_if(std::begin(forms), std::end(forms),
                                          [&](const Form& each) { return each.first.has(text.front()); });
    if (form == std::end(forms)) {
        return 1;
    }
    for (std::size_t at = 1; at < form->length; ++at) {
        if (at == text.size()) {
            return std::nullopt;
        }
        if (!(at == 1 ? form->second : continuation).has(text[at])) {
            return 1;
        }
    }
    return form->length;
}

bool isHidden(std::string_view character) {
    if (character.size() == 1) {
        return std::any_of(std::begin(singleControls), std::end(singleControls),
                           [&](const Range& range) { return range.has(character.front()); });
    }
    return std::any_of(
        std::begin(hiddenCharacters), std::end(hiddenCharacters), [&](const HiddenCharacters& hidden) {
            return character.size() == hidden.beginning.size() + 1 &&
                   character.starts_with(hidden.beginning) && hidden.last.has(character.back());
        });
}

}  // namespace

std::string TerminalText::shown(std::string_view text) {
    const std::string whole = std::exchange(rest_, {}).append(text);
    std::string shown;
    shown.reserve(whole.size());
    for (std::string_view left = whole; !left.empty();) {
        const auto length = lengthOfFirst(left);
        if (!length) {
            rest_ = left;
            break;
        }
        const std::string_view character = left.substr(0, *length);
        const bool isKeptNewline = newlines_ == Newlines::kept && character == "\n";
        shown += isHidden(character) && !isKeptNewline ? "?" : character;
        left.remove_prefix(*length);
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

}  // namespace zeb::forms
