#include "console/ConsoleText.h"

#include <algorithm>
#include <cstdint>

#include "console/TerminalText.h"

namespace zeb::console {

namespace {

bool beginsCharacter(char byte) {
    return (static_cast<std::uint8_t>(byte) & 0xC0U) != 0x80U;
}

// The bytes of the first so many characters, and of the last.
std::string_view firstOf(std::string_view text, std::size_t columns) {
    std::size_t end = 0;
    while (end < text.size() && (columns > 0 || !beginsCharacter(text[end]))) {
        columns -= beginsCharacter(text[end]) && columns > 0 ? 1 : 0;
        ++end;
    }
    return text.substr(0, end);
}

std::string_view lastOf(std::string_view text, std::size_t columns) {
    std::size_t begin = text.size();
    while (begin > 0 && columns > 0) {
        --begin;
        columns -= beginsCharacter(text[begin]) ? 1 : 0;
    }
    return text.substr(begin);
}

}  // namespace

std::size_t columnsOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

std::string shownName(std::string_view name, std::size_t maxColumns, bool hasUnicode) {
    // No more than this can show, and a log may have names of megabytes.
    const std::size_t maxBytes = maxColumns * 4;
    const std::string_view gap = hasUnicode ? "\xE2\x80\xA6" : "..";
    if (name.size() <= maxBytes) {
        const std::string shown = shownOnOneLine(name);
        if (columnsOf(shown) <= maxColumns) {
            return shown;
        }
    }
    const std::size_t kept = maxColumns - std::min(maxColumns, columnsOf(gap));
    const std::string front = shownOnOneLine(name.substr(0, maxBytes));
    const std::string back = shownOnOneLine(name.substr(name.size() - std::min(name.size(), maxBytes)));
    return std::string(firstOf(front, kept - kept / 2)).append(gap).append(lastOf(back, kept / 2));
}

std::vector<std::string> wrapped(std::string_view text, std::size_t columns) {
    constexpr std::string_view blanks = " \n";
    std::vector<std::string> lines;
    for (std::size_t at = text.find_first_not_of(blanks); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(blanks, at), text.size());
        const std::string_view word = text.substr(at, end - at);
        if (lines.empty() || columnsOf(lines.back()) + 1 + columnsOf(word) > columns) {
            lines.emplace_back(word);
        } else {
            lines.back().append(" ").append(word);
        }
        at = text.find_first_not_of(blanks, end);
    }
    return lines;
}

std::vector<std::string> tableLines(const std::vector<Column>& columns, const std::vector<Cells>& rows,
                                    std::size_t indentation) {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < columns.size(); ++column) {
        std::size_t width = columnsOf(columns[column].title);
        for (const Cells& row : rows) {
            width = std::max(width, columnsOf(row[column]));
        }
        widths.push_back(width);
    }
    const auto lineOf = [&](const auto& cellOf) {
        std::string line(indentation, ' ');
        std::string_view gap;
        for (std::size_t column = 0; column < columns.size(); ++column) {
            if (!columns[column].isShown) {
                continue;
            }
            const std::string& cell = cellOf(column);
            const std::string blanks(widths[column] - columnsOf(cell), ' ');
            line += std::exchange(gap, "  ");
            line += columns[column].side == Side::left ? cell + blanks : blanks + cell;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    };
    std::vector<std::string> lines{
        lineOf([&](std::size_t column) -> const std::string& { return columns[column].title; })};
    for (const Cells& row : rows) {
        lines.push_back(lineOf([&row](std::size_t column) -> const std::string& { return row[column]; }));
    }
    return lines;
}

}  // namespace zeb::console
