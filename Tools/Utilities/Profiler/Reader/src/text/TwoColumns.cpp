#include "text/TwoColumns.h"

#include <algorithm>
#include <cstddef>

namespace zeb::profiling {

namespace {

constexpr std::size_t gap = 2;  // before the labels and between the columns

}  // namespace

std::string twoColumns(std::span<const LabelledText> rows) {
    std::size_t labelWidth = 0;
    for (const LabelledText& row : rows) {
        labelWidth = std::max(labelWidth, row.label.size());
    }
    const std::string nextLine = "\n" + std::string(gap + labelWidth + gap, ' ');
    std::string lines;
    for (const auto& [label, text] : rows) {
        lines.append(gap, ' ').append(label).append(labelWidth - label.size() + gap, ' ');
        for (const char character : text) {
            if (character == '\n') {
                lines += nextLine;
            } else {
                lines += character;
            }
        }
        lines += '\n';
    }
    return lines;
}

}  // namespace zeb::profiling
