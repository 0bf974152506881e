#include "store/EventAverage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <unordered_map>
#include <vector>

#include "store/EventName.h"

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

constexpr std::uint32_t noPosition = std::numeric_limits<std::uint32_t>::max();

// Lists merged into one. Where the first entry of a name stands is written into the mark of that name, which
// takes neither memory nor search but serves one list at a time: the outermost. The lists below it have
// tables.
class MergedList {
public:
    /// @param markOwner for the marks of the outermost list, 0 for a list below it
    explicit MergedList(std::uint32_t markOwner) : markOwner_(markOwner) {}

    /// Begins with all events of a list, objects included.
    void begin(EventList events) {
        entries_.reserve(events.size());
        for (const ProfileEvent& event : events) {
            append(event);
        }
    }

    void merge(EventList incoming) {
        const std::size_t searched = entries_.size();
        std::size_t expected = 0;
        for (const ProfileEvent& event : incoming) {
            const std::size_t position = find(event.name.kept(), expected);
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
            if (entry.sum != noPosition) {
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
    struct Entry {
        const ProfileEvent* event;  ///< the first one
        std::uint32_t sum = noPosition;
        bool isFirstOfName;
    };

    // What an event has grown to since a second one came. Few have one where most names are new.
    struct Sum {
        ValueSum value;
        std::uint32_t occurrences;
        std::unique_ptr<MergedList> subEvents;  ///< made when the first sub-events come in addition
    };

    void addTo(Entry& entry, const ProfileEvent& incoming) {
        if (entry.sum == noPosition) {
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
            sum.subEvents = std::make_unique<MergedList>(0);
            sum.subEvents->begin(entry.event->subEvents);
        }
        sum.subEvents->merge(incoming.subEvents);
    }

    void append(const ProfileEvent& event) {
        std::uint32_t& first = firstOfName(event.name.kept());
        const bool isFirst = first == noPosition;
        if (isFirst) {
            first = static_cast<std::uint32_t>(entries_.size());
        }
        entries_.push_back({.event = &event, .isFirstOfName = isFirst});
    }

    // Lists of one method mostly have the same events in the same order: `expected` is looked at first.
    std::size_t find(const KeptName* name, std::size_t expected) {
        if (expected < entries_.size() && entries_[expected].isFirstOfName &&
            entries_[expected].event->name.kept() == name) {
            return expected;
        }
        return firstOfName(name);
    }

    std::uint32_t& firstOfName(const KeptName* name) {
        if (markOwner_ != 0 && name != nullptr) {
            if (name->markOwner != markOwner_) {
                name->markOwner = markOwner_;
                name->mark = noPosition;
            }
            return name->mark;
        }
        return table_.try_emplace(name, noPosition).first->second;
    }

    std::uint32_t markOwner_;
    std::vector<Entry> entries_;
    std::vector<Sum> sums_;
    std::unordered_map<const KeptName*, std::uint32_t> table_;
};

}  // namespace

EventList averageEvents(std::span<const EventList> lists, EventArena& arena) {
    const auto isObject = [](const ProfileEvent& event) { return event.isObject(); };
    if (lists.size() == 1 && std::none_of(lists[0].begin(), lists[0].end(), isObject)) {
        return lists[0];
    }
    MergedList merged(arena.newMarkOwner());
    for (const EventList& list : lists) {
        merged.merge(list);
    }
    return merged.divide(arena);
}

}  // namespace zeb::profiling
