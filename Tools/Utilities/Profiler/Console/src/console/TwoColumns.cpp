#include "console/TwoColumns.h"

#include <algorithm>
#include <cstddef>

#include "console/ConsoleText.h"

namespace zeb::console {

namespace {

constexpr std::size_t gap = 2;  // before the labels and between the columns

}  // namespace

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
        for (const std::string& line : wrapped(text, helpWidth - std::min(indent, helpWidth))) {
            lines.append(isFirst ? "" : nextLine).append(line);
            isFirst = false;
        }
        lines += '\n';
    }
    return lines;
}

}  // namespace zeb::console
