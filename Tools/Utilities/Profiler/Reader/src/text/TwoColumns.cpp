#include "text/TwoColumns.h"

#include <algorithm>
#include <cstddef>

namespace zeb::profiling {

namespace {

constexpr std::size_t gap = 2;  // before the labels and between the columns

}  // namespace

std::vector<std::string> wrappedLines(std::string_view text, std::size_t width) {
    constexpr std::string_view blanks = " \n";
    std::vector<std::string> lines;
    for (std::size_t at = text.find_first_not_of(blanks); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(blanks, at), text.size());
        const std::string_view word = text.substr(at, end - at);
        if (lines.empty() || lines.back().size() + 1 + word.size() > width) {
            lines.emplace_back(word);
        } else {
            lines.back().append(" ").append(word);
        }
        at = text.find_first_not_of(blanks, end);
    }
    return lines;
}

std::string twoColumns(std::span<const LabelledText> rows) {
    std::size_t labelWidth = 0;
    for (const LabelledText& row : rows) {
        labelWidth = std::max(labelWidth, row.label.size());
    }
    const std::size_t indent = gap + labelWidth + gap;
    const std::string nextLine = "\n" + std::string(indent, ' ');
    std::string lines;
    for (const auto& [label, text] : rows) {
        lines.append(gap, ' ').append(label).append(labelWidth - label.size() + gap, ' ');
        bool isFirst = true;
        for (const std::string& line : wrappedLines(text, helpWidth - std::min(indent, helpWidth))) {
            lines.append(isFirst ? "" : nextLine).append(line);
            isFirst = false;
        }
        lines += '\n';
    }
    return lines;
}

}  // namespace zeb::profiling
