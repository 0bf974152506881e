#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

namespace zeb::profiling {

/// A name that an `EventArena` keeps for all events that have it. Its characters stand right behind it.
struct KeptName {
    std::uint32_t length;
    // An operation over many events may mark their names. A mark counts only for the owner that has set it.
    mutable std::uint32_t markOwner = 0;
    mutable std::uint32_t mark = 0;

    [[nodiscard]] std::string_view text() const { return {reinterpret_cast<const char*>(this + 1), length}; }
};

/// The name of an event. It is as small as a pointer, and lives as long as the arena that it was made with.
/// An arena keeps a name once, so events of one arena have the same name when they have the same `KeptName`.
class EventName {
public:
    /// The name of an event that was given none.
    EventName() = default;
    explicit EventName(const KeptName* kept) : kept_(kept) {}

    [[nodiscard]] const KeptName* kept() const { return kept_; }
    [[nodiscard]] std::string_view text() const { return kept_ == nullptr ? nameless : kept_->text(); }
    operator std::string_view() const { return text(); }  // NOLINT(google-explicit-constructor): it is one

    friend bool operator==(EventName left, std::string_view right) { return left.text() == right; }
    friend std::ostream& operator<<(std::ostream& out, EventName name) { return out << name.text(); }

private:
    static constexpr std::string_view nameless = "null";

    const KeptName* kept_ = nullptr;
};

}  // namespace zeb::profiling
