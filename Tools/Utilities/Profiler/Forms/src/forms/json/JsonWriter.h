#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace zeb::forms {

/// The largest number up to which every whole number is exact to a reader that has doubles alone.
inline constexpr std::uint64_t largestExactNumber = std::uint64_t{1} << 53U;

/// Who is to read the JSON.
struct JsonStyle {
    bool bigAsText =
        false;  ///< numbers beyond `largestExactNumber` are strings, for readers that have doubles
    bool isInPage = false;  ///< stands in a script element, so nothing in it may end that or begin a comment
};

inline constexpr JsonStyle jsonOfPage{.bigAsText = true, .isInPage = true};

/// Writes JSON to a stream, value by value, with no more of it in memory than a piece. No locale plays a
/// part. What is put between `begin...` and `end...` is up to the caller; commas are not.
///
/// Texts may be any bytes. What is no UTF-8 is replaced, and what a terminal obeys or shows nothing of is
/// escaped: control characters, marks and overrides of the writing direction, line separators.
class JsonWriter {
public:
    /// @param out has to outlive the writer; its state tells whether writing succeeded
    explicit JsonWriter(std::ostream& out, JsonStyle style = {}) : out_(out), style_(style) {}
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginList() { begin('['); }
    void endList() { end(']'); }

    /// To be called before each value of an object; keys have to differ.
    void key(std::string_view key);

    void null() { plain("null"); }
    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }
    void value(std::int64_t number);
    void value(std::uint64_t number);
    template <std::integral Number>
    void value(Number number) {
        if constexpr (std::same_as<Number, bool>) {
            plain(number ? "true" : "false");
        } else if constexpr (std::signed_integral<Number>) {
            value(std::int64_t{number});
        } else {
            value(std::uint64_t{number});
        }
    }
    /// Shortest form that reads back as the same number; one that is not finite is a string.
    void value(double number);
    void value(float number);
    /// The same, but it shows that it is no whole number ("1.0"), and one that is not finite is null.
    void real(double number);

    template <typename Value>
    void member(std::string_view name, const Value& of) {
        key(name);
        value(of);
    }

    /// Lets what comes next begin a line.
    void breakLine() { breaksLine_ = true; }

    /// Hands over all that is written so far. To be called once more at the end.
    /// @return bytes that were handed over in all
    std::uint64_t flush();

private:
    void separate();
    void begin(char bracket);
    void end(char bracket);
    void plain(std::string_view text);
    void quoted(std::string_view text);
    void escaped(char32_t code);
    [[nodiscard]] bool isPlain(char character) const;
    template <typename Number>
    void whole(Number number, bool isExact);

    std::ostream& out_;
    JsonStyle style_;
    std::string text_;  ///< what has not gone out yet
    bool needsComma_ = false;
    bool breaksLine_ = false;
    std::uint64_t bytes_ = 0;  ///< gone out
};

}  // namespace zeb::forms
