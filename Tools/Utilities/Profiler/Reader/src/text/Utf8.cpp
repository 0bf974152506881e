#include "text/Utf8.h"

#include <algorithm>
#include <iterator>

namespace zeb::profiling {

namespace {

constexpr std::string_view ellipsis = "\xE2\x80\xA6";
constexpr std::size_t longestCharacter = 4;

unsigned byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool isContinuation(unsigned byte) {
    return (byte & 0xC0U) == 0x80U;
}

// The length that the first byte of a character tells; 0 for a byte that is none.
std::size_t toldLength(unsigned first) {
    if (first < 0x80U) {
        return 1;
    }
    if (first < 0xC2U || first > 0xF4U) {
        return 0;
    }
    return first < 0xE0U ? 2 : first < 0xF0U ? 3 : 4;
}

// Forms that are too long, halves of pairs and what lies behind the last character show in the second byte.
bool mayFollow(unsigned first, unsigned second) {
    if (!isContinuation(second)) {
        return false;
    }
    switch (first) {
        case 0xE0U:
            return second >= 0xA0U;
        case 0xEDU:
            return second < 0xA0U;
        case 0xF0U:
            return second >= 0x90U;
        case 0xF4U:
            return second < 0x90U;
        default:
            return true;
    }
}

struct Range {
    char32_t first;
    char32_t last;
};
constexpr Range controls[] = {
    {0x0000, 0x001F}, {0x007F, 0x009F},  // C0, DEL, C1
    {0x061C, 0x061C}, {0x200E, 0x200F},  // marks of the writing direction
    {0x2028, 0x202E},                    // separators, overrides
    {0x2066, 0x2069},                    // isolates
};

}  // namespace

FrontCharacter frontCharacter(std::string_view text) {
    using State = FrontCharacter::State;
    const unsigned first = byteAt(text, 0);
    const std::size_t length = toldLength(first);
    if (length == 0) {
        return {State::faulty, 1};
    }
    for (std::size_t at = 1; at < length; ++at) {
        if (at == text.size()) {
            return {State::endsEarly, at};
        }
        if (!(at == 1 ? mayFollow(first, byteAt(text, at)) : isContinuation(byteAt(text, at)))) {
            return {State::faulty, at};
        }
    }
    return {State::whole, length};
}

char32_t codeOf(std::string_view character) {
    constexpr unsigned bitsOfFirst[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t code = byteAt(character, 0) & bitsOfFirst[character.size()];
    for (std::size_t at = 1; at < character.size(); ++at) {
        code = code << 6U | (byteAt(character, at) & 0x3FU);
    }
    return code;
}

bool isControl(char32_t code) {
    return std::any_of(std::begin(controls), std::end(controls),
                       [code](const Range& range) { return range.first <= code && code <= range.last; });
}

std::string wellFormed(std::string_view text) {
    std::string formed;
    formed.reserve(text.size());
    while (!text.empty()) {
        const FrontCharacter front = frontCharacter(text);
        formed +=
            front.state == FrontCharacter::State::whole ? text.substr(0, front.length) : replacementCharacter;
        text.remove_prefix(front.length);
    }
    return formed;
}

std::string cutInMiddle(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return std::string(text);
    }
    const std::size_t half = (size - ellipsis.size()) / 2;
    std::size_t front = half;
    std::size_t back = text.size() - half;
    for (std::size_t steps = 1; steps < longestCharacter && isContinuation(byteAt(text, front)); ++steps) {
        --front;
    }
    for (std::size_t steps = 1; steps < longestCharacter && isContinuation(byteAt(text, back)); ++steps) {
        ++back;
    }
    return std::string(text.substr(0, front)).append(ellipsis).append(text.substr(back));
}

}  // namespace zeb::profiling
