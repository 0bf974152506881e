#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Markdown as GitHub and GitLab render it, of which nothing in a log is more than text.
namespace zeb::forms {

/// Bytes of a form at most: a comment under a change may have 65,536 characters.
inline constexpr std::size_t maxMarkdownBytes = 60'000;

/// @return a name as code, on one line and without its middle where it is long; where `isInTable`, for a cell
std::string markdownName(std::string_view name, bool isInTable);

/// @return a sentence with names in it: each character that could mean something is text, also what would
/// mention
///         people or become a link
std::string markdownSentence(std::string_view text);

/// @return a table; the first column is text, the others are numbers
std::string markdownTable(const std::vector<std::string>& titles,
                          const std::vector<std::vector<std::string>>& rows);

/// @return what is folded until somebody opens it
std::string markdownFold(std::string_view summary, const std::string& content);

/// A document that never gets longer than a form may.
class MarkdownDocument {
public:
    /// @param end that is to follow all sections
    explicit MarkdownDocument(std::string end) : end_(std::move(end)) {}

    /// Adds a section, or counts it where there is no room left.
    void add(const std::string& section);

    /// @param one,several what a section is called that was left out
    [[nodiscard]] std::string text(std::string_view one, std::string_view several) const;

private:
    std::string text_;
    std::string end_;
    std::size_t leftOut_ = 0;
};

/// @return a list of sentences, of which it shows no more than a few, on few bytes, and counts the rest
std::string markdownList(const std::vector<std::string>& sentences);

}  // namespace zeb::forms
