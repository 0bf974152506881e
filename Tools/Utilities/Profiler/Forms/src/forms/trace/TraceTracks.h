#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Which slices may stand on one track of a trace. A viewer stacks the slices of a track, so two of them have
/// to be disjoint or one within the other; what is neither gets dropped or distorted. Slices come in any
/// order and each is placed once, in memory that does not grow with their number.
namespace zeb::forms {

/// From a start to an end that is not before it.
struct TimeSpan {
    std::uint64_t startUs = 0;
    std::uint64_t endUs = 0;
};

enum class Sharing : std::uint8_t {
    nested,    ///< a slice may stand within another, as calls do
    disjoint,  ///< slices are of one rank: none stands within another
};

/// One track. It knows the slices that end last one by one, and of all others from when to when they are:
/// there it takes no more.
class Track {
public:
    static constexpr std::size_t knownSlices = 32;

    /// @return whether it can take the slice beside those that it has. One that begins with another and ends
    ///         behind it has to come first, since viewers stack slices that begin together as they come.
    [[nodiscard]] bool admits(TimeSpan slice, Sharing sharing) const;
    void add(TimeSpan slice);

private:
    std::vector<TimeSpan> known_;  ///< by their ends
    std::optional<TimeSpan> others_;
};

/// Tracks of one kind, as many as it takes so that each slice has one, up to a limit.
class TrackGroup {
public:
    static constexpr std::size_t maxTracks = 64;

    explicit TrackGroup(Sharing sharing) : sharing_(sharing) {}

    struct Place {
        std::size_t track = 0;
        bool isNewTrack = false;
    };
    /// Puts a slice on the first track that admits it.
    /// @return nothing when none does and there are `maxTracks`
    std::optional<Place> place(TimeSpan slice);

private:
    Sharing sharing_;
    std::vector<Track> tracks_;
};

}  // namespace zeb::forms
