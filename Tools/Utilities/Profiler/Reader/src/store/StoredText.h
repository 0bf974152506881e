#pragma once

#include <cstdint>
#include <limits>
#include <ostream>
#include <string_view>

namespace zeb::profiling {

/// A text as an `EventArena` keeps it. Its characters mostly stand right behind it.
struct KeptText {
    const char* characters;
    std::uint32_t length;
    static constexpr std::uint32_t unmarked = std::numeric_limits<std::uint32_t>::max();
    // An operation over many names may leave a number with each, to be found again in a list of its own. Any
    // other one may have left another number: it counts only where the list has that name at that number.
    mutable std::uint32_t mark = unmarked;

    [[nodiscard]] std::string_view text() const { return {characters, length}; }
};

/// A text of the store, or none, which is empty. It is as small as a pointer, never changes, and lives as
/// long as the arena that it was made with.
class StoredText {
public:
    StoredText() = default;
    explicit StoredText(const KeptText* kept) : kept_(kept) {}

    /// Of names that an arena keeps once, equal ones have the same.
    [[nodiscard]] const KeptText* kept() const { return kept_; }
    [[nodiscard]] std::string_view text() const {
        return kept_ == nullptr ? std::string_view{} : kept_->text();
    }
    [[nodiscard]] bool empty() const { return text().empty(); }
    operator std::string_view() const { return text(); }  // NOLINT(google-explicit-constructor): it is one

    friend bool operator==(StoredText left, std::string_view right) { return left.text() == right; }
    friend std::ostream& operator<<(std::ostream& out, StoredText text) { return out << text.text(); }

private:
    const KeptText* kept_ = nullptr;
};

}  // namespace zeb::profiling
