#include "forms/markdown/MarkdownText.h"

#include <algorithm>

#include "console/ConsoleText.h"

namespace zeb::forms {

namespace {

constexpr std::size_t maxNameColumns = 80;
constexpr std::size_t maxSentenceColumns = 400;
constexpr std::size_t maxListed = 12;
constexpr std::size_t maxListBytes = 8'000;  // before the last one
// Splits the text for whoever looks for mentions and addresses in what is rendered.
constexpr std::string_view nothing = "<!-- -->";

std::string lineOf(const std::vector<std::string>& cells) {
    std::string line = "|";
    for (const std::string& cell : cells) {
        line.append(" ").append(cell).append(" |");
    }
    return line + '\n';
}

}  // namespace

std::string markdownName(std::string_view name, bool isInTable) {
    if (name.empty()) {
        return "(no name)";
    }
    const std::string shown = console::shownName(name, maxNameColumns, true);
    std::size_t longest = 0;
    std::size_t length = 0;
    std::string text;
    for (const char character : shown) {
        length = character == '`' ? length + 1 : 0;
        longest = std::max(longest, length);
        text += character == '|' && isInTable ? "\\|" : std::string(1, character);
    }
    const std::string fence(longest + 1, '`');
    const bool needsBlanks = longest > 0 || text.front() == ' ' || text.back() == ' ';
    const std::string blank(needsBlanks ? 1 : 0, ' ');
    return fence + blank + text + blank + fence;
}

std::string markdownSentence(std::string_view text) {
    constexpr std::string_view meaningful = R"(\`*_{}[]<>()#+-.!|~&:$="'/^)";
    std::string escaped;
    // With blanks at an end it could not be emphasised.
    const std::string shown = console::shownName(text, maxSentenceColumns, true);
    const std::size_t begin = std::min(shown.find_first_not_of(' '), shown.size());
    for (const char character : shown.substr(begin, shown.find_last_not_of(' ') + 1 - begin)) {
        if (meaningful.find(character) != std::string_view::npos) {
            escaped += '\\';
        }
        escaped += character;
        if (character == '@' || character == '#') {
            escaped += nothing;
        }
    }
    return escaped;
}

std::string markdownTable(const std::vector<std::string>& titles,
                          const std::vector<std::vector<std::string>>& rows) {
    std::vector<std::string> sides(titles.size(), "---:");
    sides.front() = ":---";
    std::string table = lineOf(titles) + lineOf(sides);
    for (const auto& row : rows) {
        table += lineOf(row);
    }
    return table;
}

std::string markdownFold(std::string_view summary, const std::string& content) {
    return "<details><summary>" + std::string(summary) + "</summary>\n\n" + content + "\n</details>\n";
}

void MarkdownDocument::add(const std::string& section) {
    constexpr std::size_t roomForTheCount = 200;
    if (text_.size() + section.size() + end_.size() + roomForTheCount > maxMarkdownBytes) {
        ++leftOut_;
    } else {
        text_ += section;
    }
}

std::string MarkdownDocument::text(std::string_view one, std::string_view several) const {
    std::string left;
    if (leftOut_ != 0) {
        left = "and " + std::to_string(leftOut_) + " more " + std::string(leftOut_ == 1 ? one : several) +
               " that did not fit in here\n\n";
    }
    return text_ + left + end_;
}

std::string markdownList(const std::vector<std::string>& sentences) {
    std::string list;
    std::size_t listed = 0;
    while (listed < std::min(sentences.size(), maxListed) && list.size() < maxListBytes) {
        list += "- " + markdownSentence(sentences[listed++]) + '\n';
    }
    if (sentences.size() > listed) {
        list += "- and " + std::to_string(sentences.size() - listed) + " more\n";
    }
    return list;
}

}  // namespace zeb::forms
