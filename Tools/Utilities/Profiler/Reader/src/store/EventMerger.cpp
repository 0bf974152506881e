#include "store/EventMerger.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zeb::profiling {

namespace {

// Names of one store are kept once, so equal names mostly are the same text.
bool sameName(std::string_view left, std::string_view right) {
    return left.size() == right.size() && (left.data() == right.data() || left == right);
}

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
        for (const ProfileEvent& event : events) {
            append(event);
        }
    }

    void merge(EventList incoming) {
        const std::size_t searched = entries_.size();
        std::size_t expected = 0;
        for (const ProfileEvent& event : incoming) {
            const auto position = findFirst(event.name, expected);
            if (position && *position < searched) {
                entries_[*position].add(event);
                expected = *position + 1;
            } else if (!event.isObject()) {
                append(event);
            }
        }
    }

    [[nodiscard]] EventList divide(EventArena& arena) const {
        const std::span<ProfileEvent> events = arena.makeEvents(entries_.size());
        std::transform(entries_.begin(), entries_.end(), events.begin(), [&arena](const Entry& entry) {
            ProfileEvent event = entry.event;
            event.value = entry.value.mean();
            event.occurrences = entry.occurrences;
            if (entry.subEvents) {
                event.subEvents = entry.subEvents->divide(arena);
            }
            return event;
        });
        return events;
    }

private:
    struct Entry {
        ProfileEvent event;
        ValueSum value;
        std::uint64_t occurrences = 1;
        bool isFirstOfName;
        std::unique_ptr<MergedList> subEvents;  ///< made when the first sub-events come in addition

        void add(const ProfileEvent& incoming) {
            value.add(incoming.value);
            ++occurrences;
            if (incoming.subEvents.empty()) {
                return;
            }
            if (!subEvents) {
                subEvents = std::make_unique<MergedList>(event.subEvents);
            }
            subEvents->merge(incoming.subEvents);
        }
    };

    static constexpr std::size_t indexedFrom = 16;  // shorter lists are searched faster than a table

    void append(const ProfileEvent& event) {
        const bool isFirst = !findFirst(event.name, entries_.size());
        entries_.push_back({event, ValueSum(event.value), event.occurrences, isFirst, nullptr});
        if (entries_.size() == indexedFrom) {
            for (std::size_t position = 0; position < indexedFrom; ++position) {
                firstOfName_.try_emplace(entries_[position].event.name, position);
            }
        } else if (entries_.size() > indexedFrom) {
            firstOfName_.try_emplace(event.name, entries_.size() - 1);
        }
    }

    // Lists of one method mostly have the same events in the same order: `expected` is looked at before all
    // others.
    [[nodiscard]] std::optional<std::size_t> findFirst(std::string_view name, std::size_t expected) const {
        if (expected < entries_.size() && entries_[expected].isFirstOfName &&
            sameName(entries_[expected].event.name, name)) {
            return expected;
        }
        if (!firstOfName_.empty()) {
            const auto found = firstOfName_.find(name);
            return found == firstOfName_.end() ? std::nullopt : std::optional(found->second);
        }
        const auto found = std::find_if(entries_.begin(), entries_.end(), [name](const Entry& entry) {
            return sameName(entry.event.name, name);
        });
        return found == entries_.end() ? std::nullopt
                                       : std::optional(static_cast<std::size_t>(found - entries_.begin()));
    }

    std::vector<Entry> entries_;
    std::unordered_map<std::string_view, std::size_t> firstOfName_;
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
