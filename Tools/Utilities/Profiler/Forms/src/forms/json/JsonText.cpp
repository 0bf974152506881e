#include "forms/json/JsonText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace zeb::forms {

namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

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

// The length of the character at the front of a text, 0 when no well-formed one stands there.
std::size_t lengthOfFirst(std::string_view text) {
    const std::size_t length = toldLength(byteAt(text, 0));
    if (length > text.size()) {
        return 0;
    }
    for (std::size_t at = 1; at < length; ++at) {
        if (!isContinuation(byteAt(text, at))) {
            return 0;
        }
    }
    return length < 2 || mayFollow(byteAt(text, 0), byteAt(text, 1)) ? length : 0;
}

void appendAscii(std::string& json, char character) {
    constexpr std::string_view digits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
        json += '\\';
        json += character;
    } else if (character == '\n') {
        json += "\\n";
    } else if (character == '\t') {
        json += "\\t";
    } else if (code < 0x20U || code == 0x7FU) {
        json += "\\u00";
        json += digits[code >> 4U];
        json += digits[code & 0xFU];
    } else {
        json += character;
    }
}

template <typename Number>
void appendPlain(std::string& json, Number value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    json.append(text.data(), end);
}

template <typename Number>
void appendQuotedIf(bool isQuoted, std::string& json, Number value) {
    json += isQuoted ? "\"" : "";
    appendPlain(json, value);
    json += isQuoted ? "\"" : "";
}

}  // namespace

void appendJsonText(std::string& json, std::string_view text) {
    json += '"';
    while (!text.empty()) {
        const std::size_t length = lengthOfFirst(text);
        if (length == 1) {
            appendAscii(json, text.front());
        } else {
            json += length == 0 ? replacementCharacter : text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    json += '"';
}

void appendJsonNumber(std::string& json, std::uint64_t value) {
    appendQuotedIf(value > largestExactNumber, json, value);
}

void appendJsonNumber(std::string& json, std::int64_t value) {
    constexpr auto largest = static_cast<std::int64_t>(largestExactNumber);
    appendQuotedIf(value > largest || value < -largest, json, value);
}

void appendJsonNumber(std::string& json, double value) {
    appendQuotedIf(!std::isfinite(value), json, value);
}

void appendJsonNumber(std::string& json, float value) {
    appendQuotedIf(!std::isfinite(value), json, value);
}

}  // namespace zeb::forms
