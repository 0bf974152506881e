#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

/// Texts of a log as a run has them. A log may have a long text in one place and refer to it from any number
/// of others, so a run has no more of each than this.
namespace zeb::analysis {

/// Bytes that a text has at most.
inline constexpr std::size_t maxTextBytes = 256;

/// @return the text, without its middle where it is longer than that
std::string cutText(std::string_view text);

/// Cuts a name that graphs, steps or layers are matched by. Faults in UTF-8 are replaced, as JSON has them,
/// so that a name is the same there and here.
/// @return the name; a longer one without its middle, and with a hash of the whole at its end, so that names
/// which differ still do
std::string cutName(std::string_view name);

/// A text that is held once, however many copies there are.
class SharedText {
public:
    SharedText() = default;
    SharedText(std::string text)  // NOLINT(google-explicit-constructor): it is one
        : text_(std::make_shared<const std::string>(std::move(text))) {}

    [[nodiscard]] std::string_view text() const {
        return text_ ? std::string_view(*text_) : std::string_view();
    }
    operator std::string_view() const { return text(); }  // NOLINT(google-explicit-constructor): it is one

    friend bool operator==(const SharedText& left, std::string_view right) { return left.text() == right; }

private:
    std::shared_ptr<const std::string> text_;
};

}  // namespace zeb::analysis
