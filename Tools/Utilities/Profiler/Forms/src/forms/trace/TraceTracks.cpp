#include "forms/trace/TraceTracks.h"

#include <algorithm>

namespace zeb::forms {

namespace {

// One of no length that begins with another and comes later would be stacked on it.
bool areDisjoint(TimeSpan later, TimeSpan earlier) {
    return earlier.endUs <= later.startUs ||
           (later.endUs <= earlier.startUs && later.startUs < earlier.startUs);
}

bool standsAround(TimeSpan later, TimeSpan earlier) {
    return later.startUs < earlier.startUs && earlier.endUs <= later.endUs;
}

bool standsWithin(TimeSpan later, TimeSpan earlier) {
    return earlier.startUs <= later.startUs && later.endUs <= earlier.endUs;
}

}  // namespace

bool Track::admits(TimeSpan slice, Sharing sharing) const {
    if (known_.empty() || known_.back().endUs <= slice.startUs) {
        return true;
    }
    const bool nests = sharing == Sharing::nested;
    if (others_ && !areDisjoint(slice, *others_) && !(nests && standsAround(slice, *others_))) {
        return false;
    }
    return std::all_of(known_.begin(), known_.end(), [&](TimeSpan known) {
        return areDisjoint(slice, known) ||
               (nests && (standsAround(slice, known) || standsWithin(slice, known)));
    });
}

void Track::add(TimeSpan slice) {
    const auto endsLater = [](TimeSpan one, TimeSpan other) { return one.endUs < other.endUs; };
    known_.insert(std::upper_bound(known_.begin(), known_.end(), slice, endsLater), slice);
    if (known_.size() > knownSlices) {
        const TimeSpan first = known_.front();
        others_ = others_ ? TimeSpan{std::min(others_->startUs, first.startUs),
                                     std::max(others_->endUs, first.endUs)}
                          : first;
        known_.erase(known_.begin());
    }
}

std::optional<TrackGroup::Place> TrackGroup::place(TimeSpan slice) {
    const auto free = std::find_if(tracks_.begin(), tracks_.end(),
                                   [&](const Track& track) { return track.admits(slice, sharing_); });
    const bool isNewTrack = free == tracks_.end();
    if (isNewTrack && tracks_.size() == maxTracks) {
        return std::nullopt;
    }
    Track& track = isNewTrack ? tracks_.emplace_back() : *free;
    track.add(slice);
    return Place{static_cast<std::size_t>(&track - tracks_.data()), isNewTrack};
}

}  // namespace zeb::forms
