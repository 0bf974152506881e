#include "forms/json/JsonWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "text/Utf8.h"

namespace zeb::forms {

namespace {

constexpr std::size_t pieceSize = 64UL * 1024;

// The text of a number, in room of its own.
class Digits {
public:
    template <typename... Arguments>
    explicit Digits(Arguments... arguments) {
        end_ = std::to_chars(text_.data(), text_.data() + text_.size(), arguments...).ptr;
    }

    operator std::string_view() const {  // NOLINT(google-explicit-constructor): it is one
        return {text_.data(), static_cast<std::size_t>(end_ - text_.data())};
    }

private:
    std::array<char, 32> text_{};
    const char* end_ = nullptr;
};

std::string_view shortEscapeOf(char32_t code) {
    constexpr std::pair<char32_t, std::string_view> escapes[] = {
        {U'"', "\\\""}, {U'\\', "\\\\"}, {U'\b', "\\b"}, {U'\f', "\\f"},
        {U'\n', "\\n"}, {U'\r', "\\r"},  {U'\t', "\\t"}};
    const auto* const found = std::find_if(std::begin(escapes), std::end(escapes),
                                           [code](const auto& escape) { return escape.first == code; });
    return found == std::end(escapes) ? std::string_view() : found->second;
}

constexpr char32_t asciiEnd = 0x7F;

bool isMarkup(char32_t code) {
    return code == U'<' || code == U'>' || code == U'&';
}

}  // namespace

void JsonWriter::separate() {
    text_ += std::exchange(needsComma_, true) ? "," : "";
    text_ += std::exchange(breaksLine_, false) ? "\n" : "";
    if (text_.size() >= pieceSize) {
        flush();
    }
}

void JsonWriter::begin(char bracket) {
    separate();
    text_ += bracket;
    needsComma_ = false;
}

void JsonWriter::end(char bracket) {
    text_ += std::exchange(breaksLine_, false) ? "\n" : "";
    text_ += bracket;
    needsComma_ = true;
}

void JsonWriter::key(std::string_view key) {
    separate();
    quoted(key);
    text_ += ':';
    needsComma_ = false;
}

void JsonWriter::plain(std::string_view text) {
    separate();
    text_ += text;
}

void JsonWriter::value(std::string_view text) {
    separate();
    quoted(text);
}

void JsonWriter::value(std::int64_t number) {
    constexpr auto largest = static_cast<std::int64_t>(largestExactNumber);
    whole(number, -largest <= number && number <= largest);
}

void JsonWriter::value(std::uint64_t number) {
    whole(number, number <= largestExactNumber);
}

template <typename Number>
void JsonWriter::whole(Number number, bool isExact) {
    isExact || !style_.bigAsText ? plain(Digits(number)) : value(Digits(number));
}

void JsonWriter::value(double number) {
    std::isfinite(number) ? plain(Digits(number)) : value(Digits(number));
}

void JsonWriter::value(float number) {
    std::isfinite(number) ? plain(Digits(number)) : value(Digits(number));
}

void JsonWriter::real(double number) {
    constexpr double smallest = 1e-4;  // what lies between these two has no exponent
    constexpr double largest = 1e15;
    if (!std::isfinite(number)) {
        return null();
    }
    const double size = std::abs(number);
    if (size != 0.0 && (size < smallest || size >= largest)) {
        return plain(Digits(number, std::chars_format::scientific));
    }
    const Digits digits(number, std::chars_format::fixed);
    plain(digits);
    text_ += std::string_view(digits).find('.') == std::string_view::npos ? ".0" : "";
}

bool JsonWriter::isPlain(char character) const {
    return character >= ' ' && character <= '~' && character != '"' && character != '\\' &&
           !(style_.isInPage && isMarkup(static_cast<char32_t>(character)));
}

void JsonWriter::quoted(std::string_view text) {
    text_ += '"';
    while (!text.empty()) {
        const auto* const end =
            std::find_if_not(text.begin(), text.end(), [this](char character) { return isPlain(character); });
        const auto size = static_cast<std::size_t>(end - text.begin());
        text_ += text.substr(0, size);
        text.remove_prefix(size);
        if (text.empty()) {
            break;
        }
        const profiling::FrontCharacter front = profiling::frontCharacter(text);
        const std::string_view character = text.substr(0, front.length);
        if (front.state != profiling::FrontCharacter::State::whole) {
            text_ += profiling::replacementCharacter;
        } else if (const char32_t code = profiling::codeOf(character);
                   code > asciiEnd && !profiling::isControl(code)) {
            text_ += character;
        } else {
            escaped(code);
        }
        text.remove_prefix(front.length);
    }
    text_ += '"';
}

void JsonWriter::escaped(char32_t code) {
    if (const std::string_view escape = shortEscapeOf(code); !escape.empty()) {
        text_ += escape;
        return;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    text_ += "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        text_ += digits[code >> shift & 0xFU];
    }
}

std::uint64_t JsonWriter::flush() {
    text_ += std::exchange(breaksLine_, false) ? "\n" : "";
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    bytes_ += text_.size();
    text_.clear();
    return bytes_;
}

}  // namespace zeb::forms
