#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace zeb::profiling {

/// Writes a text to `at`, where there has to be room for it.
/// @return its end
inline char* putText(std::string_view text, char* at) {
    return std::copy(text.begin(), text.end(), at);
}

/// The same for a number in decimal, which has 20 characters at most.
template <std::integral Number>
char* putNumber(Number number, char* at) {
    return std::to_chars(at, at + 20, number).ptr;
}

enum class Alignment : std::uint8_t { left, right };

/// Composes the rows of a table and passes each to a stream as a whole: a table may have a million cells, and
/// a stream takes its time for each that it is given.
class TableText {
public:
    /// The longest content that `field` takes from a function.
    static constexpr std::size_t maxPutLength = 32;

    /// @param out has to outlive the text
    /// @param alignment of all fields; they are filled with blanks
    explicit TableText(std::ostream& out, Alignment alignment = Alignment::right)
        : out_(out), alignsLeft_(alignment == Alignment::left) {}
    TableText(const TableText&) = delete;
    TableText& operator=(const TableText&) = delete;

    TableText& text(std::string_view content) { return field(content, 0); }
    template <std::integral Number>
    TableText& number(Number value) {
        return field(value, 0);
    }

    /// A field of that width at least; a longer text is not cut.
    TableText& field(std::string_view content, std::size_t width) {
        return put(width, content.size(), [content](char* at) { return putText(content, at); });
    }
    template <std::integral Number>
    TableText& field(Number value, std::size_t width) {
        return put(width, maxPutLength, [value](char* at) { return putNumber(value, at); });
    }
    /// @param content writes to where it is told and gives the end, `maxPutLength` characters later at most
    template <std::invocable<char*> Content>
    TableText& field(Content content, std::size_t width) {
        return put(width, maxPutLength, content);
    }

    void endRow() {
        text("\n");
        out_.write(row_.data(), static_cast<std::streamsize>(used_));
        std::fill_n(row_.begin(), used_, ' ');
        used_ = 0;
    }

private:
    template <typename Content>
    TableText& put(std::size_t width, std::size_t maxLength, Content content) {
        const std::size_t room = std::max(width, maxLength);
        if (row_.size() - used_ < room) {
            row_.resize(std::max(row_.size() * 2, used_ + room), ' ');
        }
        char* const at = row_.data() + used_;
        char* const end = content(at);
        const auto length = static_cast<std::size_t>(end - at);
        if (!alignsLeft_ && length < width) {
            std::rotate(at, end, at + width);
        }
        used_ += std::max(length, width);
        return *this;
    }

    std::ostream& out_;
    bool alignsLeft_;
    std::string row_;  ///< blank behind what is used, which saves filling up each field
    std::size_t used_ = 0;
};

}  // namespace zeb::profiling
