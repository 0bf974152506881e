#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Text for a console: names fit to be shown, tables, bars.
namespace zeb::forms {

/// @return how many columns a text takes, a character one each; a byte of no character counts as one
std::size_t columnsOf(std::string_view text);

/// @return the name on one line; cut in its middle when it has more columns than that
std::string shownName(std::string_view name, std::size_t mostColumns, bool hasUnicode);

/// @return the words of a text on lines of that many columns at most, a longer word on a line of its own
std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

enum class Side : bool { left, right };

/// A table whose columns are as wide as their content.
class ConsoleTable {
public:
    struct Column {
        std::string title;
        Side side;
    };

    explicit ConsoleTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

    /// @param cells one a column
    void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    /// @return its lines, the titles first, each with that indentation in front
    [[nodiscard]] std::vector<std::string> lines(std::size_t indentation) const;

private:
    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace zeb::forms
