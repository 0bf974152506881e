#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace zeb::profiling {

/// Room for the digits of any integer.
using Digits = std::array<char, 20>;

/// @return the number in decimal, lying in `digits`
template <std::integral Number>
std::string_view decimalText(Number number, Digits& digits) {
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), static_cast<std::size_t>(end - digits.data())};
}

/// Composes the rows of a table and passes each to a stream as a whole: a table may have a million cells, and
/// a stream takes its time for each that it is given.
class TableText {
public:
    /// @param out has to outlive the text; fields are aligned as it is when it is given, and filled with
    /// blanks
    explicit TableText(std::ostream& out)
        : out_(out), alignsLeft_((out.flags() & std::ios::adjustfield) == std::ios::left) {}
    TableText(const TableText&) = delete;
    TableText& operator=(const TableText&) = delete;

    TableText& text(std::string_view content) {
        text_ += content;
        return *this;
    }
    template <std::integral Number>
    TableText& number(Number value) {
        Digits digits{};
        return text(decimalText(value, digits));
    }

    /// A field of that width at least; a longer text is not cut.
    TableText& field(std::string_view content, std::size_t width) {
        const std::size_t blanks = width > content.size() ? width - content.size() : 0;
        text_.append(alignsLeft_ ? 0 : blanks, ' ').append(content).append(alignsLeft_ ? blanks : 0, ' ');
        return *this;
    }
    template <std::integral Number>
    TableText& field(Number value, std::size_t width) {
        Digits digits{};
        return field(decimalText(value, digits), width);
    }

    void endRow() {
        text_ += '\n';
        out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
        text_.clear();
    }

private:
    std::ostream& out_;
    bool alignsLeft_;
    std::string text_;  ///< of the row so far
};

}  // namespace zeb::profiling
