#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace zeb::console {

inline constexpr std::size_t helpWidth = 80;  ///< columns of a terminal

/// A row of a help: what is explained, and the explanation, whose line feeds are blanks.
struct LabelledText {
    std::string label;
    std::string text;
};

/// Lays rows out in two columns, the first one indented and as wide as its longest label asks for, in lines
/// of `helpWidth` columns.
/// @return whole lines
std::string twoColumns(std::span<const LabelledText> rows);

/// @param textOf gives a value's text, and an empty one for a number that is none of the enumeration's
/// @return a row for each value, by number
template <typename Enumeration>
std::vector<LabelledText> rowsOf(std::string_view (*textOf)(Enumeration)) {
    using Number = std::underlying_type_t<Enumeration>;
    static_assert(sizeof(Number) == 1 && std::is_unsigned_v<Number>, "all numbers are tried");
    std::vector<LabelledText> rows;
    for (unsigned number = 0; number <= std::numeric_limits<Number>::max(); ++number) {
        if (const auto text = textOf(static_cast<Enumeration>(number)); !text.empty()) {
            rows.push_back({std::to_string(number), std::string(text)});
        }
    }
    return rows;
}

}  // namespace zeb::console
