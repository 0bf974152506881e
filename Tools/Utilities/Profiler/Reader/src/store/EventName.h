#pragma once

#include <cstdint>
#include <ostream>
#include <string_view>

#include "store/HashIndex.h"

namespace zeb::profiling {

/// A name that an `EventArena` keeps for all events that have it. Its characters stand right behind it.
struct KeptName {
    std::uint32_t length;
    std::uint32_t hash;

    [[nodiscard]] std::string_view text() const { return {reinterpret_cast<const char*>(this + 1), length}; }
};

/// The name of an event. It is as small as a pointer, and lives as long as the arena that it was made with.
class EventName {
public:
    /// The name of an event that has none in the log.
    EventName() = default;
    explicit EventName(const KeptName* kept) : kept_(kept) {}

    [[nodiscard]] std::string_view text() const { return kept_ == nullptr ? nameless : kept_->text(); }
    operator std::string_view() const { return text(); }  // NOLINT(google-explicit-constructor): it is one
    [[nodiscard]] std::uint32_t hash() const { return kept_ == nullptr ? hashOf(nameless) : kept_->hash; }

    /// Names of one arena are kept once, so equal names mostly are the same text.
    friend bool operator==(EventName left, EventName right) {
        return left.kept_ == right.kept_ || (left.hash() == right.hash() && left.text() == right.text());
    }
    friend bool operator==(EventName left, std::string_view right) { return left.text() == right; }
    friend std::ostream& operator<<(std::ostream& out, EventName name) { return out << name.text(); }

private:
    static constexpr std::string_view nameless = "null";

    const KeptName* kept_ = nullptr;
};

}  // namespace zeb::profiling
