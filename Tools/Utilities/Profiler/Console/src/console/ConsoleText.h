#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Text for a console: names fit to be shown, tables, bars.
namespace zeb::console {

/// @return how many columns a text takes, a character one each; a byte of no character counts as one
std::size_t columnsOf(std::string_view text);

/// @return the name on one line; cut in its middle when it has more columns than that
std::string shownName(std::string_view name, std::size_t maxColumns, bool hasUnicode);

/// @return the words of a text, which blanks and line feeds part, on lines of that many columns at most; a
/// longer word on a line of its own
std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

enum class Side : bool { left, right };

struct Column {
    std::string title;
    Side side;
    bool isShown = true;
};

inline Column left(std::string title, bool isShown = true) {
    return {std::move(title), Side::left, isShown};
}

inline Column right(std::string title, bool isShown = true) {
    return {std::move(title), Side::right, isShown};
}

using Cells = std::vector<std::string>;

/// @param rows of as many cells as there are columns
/// @return the lines of a table whose columns are as wide as their content, the titles first, each with that
/// indentation in front
std::vector<std::string> tableLines(const std::vector<Column>& columns, const std::vector<Cells>& rows,
                                    std::size_t indentation);

/// Of how many columns something tells: an array of its elements', all else of one.
template <typename Part>
inline constexpr std::size_t columnsIn = 1;
template <typename Element, std::size_t size>
inline constexpr std::size_t columnsIn<std::array<Element, size>> = size;

/// A table of so many columns; a row with more or fewer cells does not compile. What stands in a column that
/// is not shown is left out.
template <std::size_t columnCount>
class ConsoleTable {
public:
    /// @param columns each a `Column` or an array of them
    template <typename... Columns>
    explicit ConsoleTable(const Columns&... columns) {
        (append(columns_, columns), ...);
    }

    /// @param cells each a text or an array of texts
    template <typename... Texts>
    requires((columnsIn<Texts> + ...) == columnCount) void add(const Texts&... cells) {
        Cells& row = rows_.emplace_back();
        (append(row, cells), ...);
    }

    [[nodiscard]] std::vector<std::string> lines(std::size_t indentation) const {
        return tableLines(columns_, rows_, indentation);
    }

private:
    template <typename Element, typename One>
    static void append(std::vector<Element>& all, const One& one) {
        all.emplace_back(one);
    }
    template <typename Element, std::size_t size>
    static void append(std::vector<Element>& all, const std::array<Element, size>& some) {
        all.insert(all.end(), some.begin(), some.end());
    }

    std::vector<Column> columns_;
    std::vector<Cells> rows_;
};

template <typename... Columns>
explicit ConsoleTable(const Columns&...) -> ConsoleTable<(columnsIn<Columns> + ...)>;

}  // namespace zeb::console
