#include "forms/text/ConsoleText.h"

#include <algorithm>
#include <cstdint>

#include "forms/text/TerminalText.h"

namespace zeb::forms {

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

std::string shownName(std::string_view name, std::size_t mostColumns, bool hasUnicode) {
    // No more than this can show, and a log may have names of megabytes.
    const std::size_t mostBytes = mostColumns * 4;
    const std::string_view gap = hasUnicode ? "\xE2\x80\xA6" : "..";
    if (name.size() <= mostBytes) {
        const std::string shown = shownOnOneLine(name);
        if (columnsOf(shown) <= mostColumns) {
            return shown;
        }
    }
    const std::size_t kept = mostColumns - std::min(mostColumns, columnsOf(gap));
    const std::string front = shownOnOneLine(name.substr(0, mostBytes));
    const std::string back = shownOnOneLine(name.substr(name.size() - std::min(name.size(), mostBytes)));
    return std::string(firstOf(front, kept - kept / 2)).append(gap).append(lastOf(back, kept / 2));
}

std::vector<std::string> wrapped(std::string_view text, std::size_t columns) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(text.size(), word.size() + 1));
        if (!lines.empty() && columnsOf(lines.back()) + 1 + columnsOf(word) <= columns) {
            lines.back().append(" ").append(word);
        } else {
            lines.emplace_back(word);
        }
    }
    return lines;
}

std::vector<std::string> ConsoleTable::lines(std::size_t indentation) const {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        std::size_t width = columnsOf(columns_[column].title);
        for (const auto& row : rows_) {
            width = std::max(width, columnsOf(row[column]));
        }
        widths.push_back(width);
    }
    const auto lineOf = [&](const auto& cellOf) {
        std::string line(indentation, ' ');
        for (std::size_t column = 0; column < columns_.size(); ++column) {
            const std::string& cell = cellOf(column);
            const std::string blanks(widths[column] - columnsOf(cell), ' ');
            line += column == 0 ? "" : "  ";
            line += columns_[column].side == Side::left ? cell + blanks : blanks + cell;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    };
    std::vector<std::string> lines{
        lineOf([this](std::size_t column) -> const std::string& { return columns_[column].title; })};
    for (const auto& row : rows_) {
        lines.push_back(lineOf([&row](std::size_t column) -> const std::string& { return row[column]; }));
    }
    return lines;
}

}  // namespace zeb::forms
