#include "store/EventListBuilder.h"

#include <algorithm>

namespace zeb::profiling {

ProfileEvent& EventListBuilder::add(const ProfileEvent& event) {
    if (free_.size() < 2) {
        addRow();
    }
    last_ = &free_.front();
    *last_ = event.copyForAnotherList();
    first_ = first_ == nullptr ? last_ : first_;
    free_ = free_.subspan(1);
    return *last_;
}

void EventListBuilder::addRow() {
    constexpr std::size_t shortestRow = 3;
    constexpr std::size_t longestRow = 1023;
    const std::span<ProfileEvent> row = arena_.makeEvents(nextRow_ + 1);
    room_ += nextRow_;
    if (!free_.empty()) {
        free_.front() = ProfileEvent::leadingTo(row.data());
    }
    free_ = row;
    nextRow_ = std::clamp(room_ / 4, shortestRow, longestRow);
}

ProfileEvent* EventListBuilder::next(const ProfileEvent& event) {
    return const_cast<ProfileEvent*>(event.next());  // all of them are this builder's
}

}  // namespace zeb::profiling
