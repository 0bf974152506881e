#include "store/EventMerger.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "store/EventName.h"
#include "store/HashIndex.h"

namespace zeb::profiling {

namespace {

bool isInteger(ValueKind kind) {
    return kind == ValueKind::int64 || kind == ValueKind::uint64 || kind == ValueKind::unset;
}

double asReal(const EventValue& value) {
    switch (value.kind) {
        case ValueKind::float32:
            return static_cast<double>(value.asFloat());
        case ValueKind::float64:
            return value.asDouble();
        default:
            return 0.0;
    }
}

// A value that grows by the values of further events.
class ValueSum {
public:
    explicit ValueSum(const EventValue& value) : value_(value), realSum_(asReal(value)) {}

    void add(const EventValue& incoming) {
        if (isInteger(value_.kind) && isInteger(incoming.kind)) {
            value_ = EventValue::ofUint(value_.payload + incoming.payload);
            ++count_;
        } else if (value_.kind == incoming.kind && value_.kind != ValueKind::text) {
            realSum_ += asReal(incoming);
            ++count_;
        } else {
            *this = ValueSum(incoming);
        }
    }

    [[nodiscard]] EventValue mean() const {
        if (count_ == 1) {
            return value_;
        }
        switch (value_.kind) {
            case ValueKind::float32:
                return EventValue::ofFloat(static_cast<float>(realSum_ / static_cast<double>(count_)));
            case ValueKind::float64:
                return EventValue::ofDouble(realSum_ / static_cast<double>(count_));
            default:
                return EventValue::ofUint(value_.payload / count_);
        }
    }

private:
    EventValue value_;
    double realSum_;
    std::uint64_t count_ = 1;
};

}  // namespace

class EventMerger::MergedList {
public:
    /// Starts with all events of a list, objects included.
    explicit MergedList(EventList events) {
        entries_.reserve(events.size());
        for (const ProfileEvent& event : events) {
            append(event);
        }
    }

    void merge(EventList incoming) {
        const std::size_t searched = entries_.size();
        std::size_t expected = 0;
        for (const ProfileEvent& event : incoming) {
            const std::size_t position = findFirst(event.name, expected);
            if (position < searched) {
                addTo(entries_[position], event);
                expected = position + 1;
            } else if (!event.isObject()) {
                append(event);
            }
        }
    }

    [[nodiscard]] EventList divide(EventArena& arena) const {
        static constexpr std::uint32_t most = ProfileEvent::maxOccurrences;
        const std::span<ProfileEvent> events = arena.makeEvents(entries_.size());
        std::transform(entries_.begin(), entries_.end(), events.begin(), [this, &arena](const Entry& entry) {
            ProfileEvent event = *entry.event;
            if (entry.sum != noSum) {
                const Sum& sum = sums_[entry.sum];
                event.value = sum.value.mean();
                event.occurrences = std::min(sum.occurrences, most) & most;  // masked: it is a bit field
                if (sum.subEvents) {
                    event.subEvents = sum.subEvents->divide(arena);
                }
            }
            return event;
        });
        return events;
    }

private:
    static constexpr std::uint32_t noSum = std::numeric_limits<std::uint32_t>::max();

    struct Entry {
        const ProfileEvent* event;  ///< the first one
        std::uint32_t sum = noSum;  ///< position of what it has grown to
        bool isFirstOfName;
    };

    // What an event has grown to since a second one came. Few have one where most names are new.
    struct Sum {
        ValueSum value;
        std::uint32_t occurrences;
        std::unique_ptr<MergedList> subEvents;  ///< made when the first sub-events come in addition
    };

    static constexpr std::size_t indexedFrom = 16;  // shorter lists are searched faster than a table

    void addTo(Entry& entry, const ProfileEvent& incoming) {
        if (entry.sum == noSum) {
            entry.sum = static_cast<std::uint32_t>(sums_.size());
            sums_.push_back({ValueSum(entry.event->value), entry.event->occurrences, nullptr});
        }
        Sum& sum = sums_[entry.sum];
        sum.value.add(incoming.value);
        ++sum.occurrences;
        if (incoming.subEvents.empty()) {
            return;
        }
        if (!sum.subEvents) {
            sum.subEvents = std::make_unique<MergedList>(entry.event->subEvents);
        }
        sum.subEvents->merge(incoming.subEvents);
    }

    void append(const ProfileEvent& event) {
        const auto position = static_cast<std::uint32_t>(entries_.size());
        const bool isFirst = findFirst(event.name, position) == position;
        entries_.push_back({.event = &event, .isFirstOfName = isFirst});
        if (entries_.size() == indexedFrom) {
            for (std::uint32_t earlier = 0; earlier < indexedFrom; ++earlier) {
                addToIndex(earlier);
            }
        } else if (entries_.size() > indexedFrom) {
            addToIndex(position);
        }
    }

    void addToIndex(std::uint32_t position) {
        if (entries_[position].isFirstOfName) {
            firstOfName_.findOrAdd(
                entries_[position].event->name.hash(), [](std::uint32_t) { return false; },
                [position] { return position; });
        }
    }

    // The position of the first entry of that name, the number of entries if there is none. Lists of one
    // method mostly have the same events in the same order: `expected` is looked at before all others.
    [[nodiscard]] std::size_t findFirst(EventName name, std::size_t expected) const {
        if (expected < entries_.size() && entries_[expected].isFirstOfName &&
            entries_[expected].event->name == name) {
            return expected;
        }
        const auto isNamed = [this, name](std::uint32_t position) {
            return entries_[position].event->name == name;
        };
        if (!firstOfName_.empty()) {
            const std::uint32_t* const found = firstOfName_.find(name.hash(), isNamed);
            return found == nullptr ? entries_.size() : *found;
        }
        std::uint32_t position = 0;
        while (position < entries_.size() && !isNamed(position)) {
            ++position;
        }
        return position;
    }

    std::vector<Entry> entries_;
    std::vector<Sum> sums_;
    HashIndex<std::uint32_t> firstOfName_;
};

EventMerger::EventMerger() = default;
EventMerger::~EventMerger() = default;

void EventMerger::mergeEvents(EventList incoming) {
    if (incoming.empty()) {
        return;
    }
    if (first_.empty()) {
        first_ = incoming;
        return;
    }
    if (!merged_) {
        merged_ = std::make_unique<MergedList>(EventList{});
        merged_->merge(first_);
    }
    merged_->merge(incoming);
}

EventList EventMerger::divideEvents(EventArena& arena) const {
    if (merged_) {
        return merged_->divide(arena);
    }
    if (std::none_of(first_.begin(), first_.end(),
                     [](const ProfileEvent& event) { return event.isObject(); })) {
        return first_;
    }
    MergedList withoutObjects{EventList{}};
    withoutObjects.merge(first_);
    return withoutObjects.divide(arena);
}

}  // namespace zeb::profiling
