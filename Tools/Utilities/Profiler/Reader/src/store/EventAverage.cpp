#include "store/EventAverage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <vector>

#include "memory/BlockList.h"
#include "store/EventListBuilder.h"

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
        case ValueKind::int8:
        case ValueKind::int16:
        case ValueKind::int32:
        case ValueKind::int64:
        case ValueKind::uint8:
        case ValueKind::uint16:
        case ValueKind::uint32:
        case ValueKind::uint64:
        case ValueKind::int16Alternate:
        case ValueKind::uint8Alternate:
        case ValueKind::text:
        case ValueKind::unset:
            break;
    }
    return 0.0;
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
        if (value_.kind == ValueKind::float32) {
            return EventValue::ofFloat(static_cast<float>(realSum_ / static_cast<double>(count_)));
        }
        if (value_.kind == ValueKind::float64) {
            return EventValue::ofDouble(realSum_ / static_cast<double>(count_));
        }
        return EventValue::ofUint(value_.payload / count_);
    }

private:
    EventValue value_;
    double realSum_;
    std::uint64_t count_ = 1;
};

void putValue(ProfileEvent& event, const EventValue& value, const EventObject* object, EventArena& arena) {
    if (object == nullptr) {
        event.setValue(value);
    } else {
        event.setObject(arena.make(EventObject{object->bytes, object->fileName, value}));
    }
}

// Lists merged into one, which grows in place. The first event of each name is found by the mark on that
// name, which takes no search but serves one list at a time: the outermost. The lists below it have tables.
class MergedList {
public:
    enum class Place : bool { outermost, below };

    MergedList(EventArena& arena, Place place, std::size_t expectedSize)
        : arena_(arena), place_(place), events_(arena, expectedSize) {}

    /// Begins with all events of a list, objects included.
    void begin(EventList events) {
        for (const ProfileEvent& event : events) {
            events_.add(event);
        }
    }

    void merge(EventList incoming) {
        rememberAll();
        const ProfileEvent* const lastSearched = events_.last();
        ProfileEvent* expected = events_.first();
        for (const ProfileEvent& event : incoming) {
            if (ProfileEvent* const found = find(event.name.kept(), expected)) {
                addTo(*found, event);
                expected = found == lastSearched ? nullptr : EventListBuilder::next(*found);
            } else if (!event.isObject()) {
                events_.add(event);
            }
        }
    }

    EventList divide() {
        for (const Sum& sum : sums_) {
            putValue(*sum.event, sum.value.mean(), sum.object, arena_);
            sum.event->setOccurrences(sum.occurrences);
            if (sum.subEvents) {
                sum.event->subEvents = sum.subEvents->divide();
            }
        }
        return events_.finish();
    }

private:
    // What an event has grown to since a second one came. Few have one where most names are new. Meanwhile
    // the event counts two occurrences, and its value is the position of its sum.
    struct Sum {
        ProfileEvent* event;
        ValueSum value;
        const EventObject* object;
        std::uint32_t occurrences;
        std::unique_ptr<MergedList> subEvents;  ///< made when the first sub-events come in addition
    };

    Sum& sumOf(ProfileEvent& event) {
        if (event.occurrences() == 1) {
            sums_.push_back({&event, ValueSum(event.value()), event.object(), 1, nullptr});
            event.setValue(EventValue::ofUint(sums_.size() - 1));
            event.setOccurrences(2);
        }
        return sums_[event.value().payload];
    }

    void addTo(ProfileEvent& event, const ProfileEvent& incoming) {
        Sum& sum = sumOf(event);
        sum.value.add(incoming.value());
        ++sum.occurrences;
        if (incoming.subEvents.empty()) {
            return;
        }
        if (!sum.subEvents) {
            sum.subEvents =
                std::make_unique<MergedList>(arena_, Place::below, event.subEvents.countByWalking());
            sum.subEvents->begin(event.subEvents);
        }
        sum.subEvents->merge(incoming.subEvents);
    }

    // So far, all events can be found by their names.
    void rememberAll() {
        while (remembered_ != events_.last()) {
            remembered_ = remembered_ == nullptr ? events_.first() : EventListBuilder::next(*remembered_);
            const KeptText* const name = remembered_->name.kept();
            if (firstOfName(name) == nullptr) {
                remember(name, remembered_);
            } else {
                hasNamesTwice_ = true;
            }
        }
    }

    void remember(const KeptText* name, ProfileEvent* first) {
        if (place_ == Place::outermost) {
            name->mark = static_cast<std::uint32_t>(marked_.size());
            marked_.add(first);
        } else {
            table_.emplace(name, first);
        }
    }

    // Lists of one method mostly have the same events in the same order: `expected` is looked at first.
    ProfileEvent* find(const KeptText* name, ProfileEvent* expected) const {
        const bool isExpected = expected != nullptr && !hasNamesTwice_ && expected->name.kept() == name;
        return isExpected ? expected : firstOfName(name);
    }

    [[nodiscard]] ProfileEvent* firstOfName(const KeptText* name) const {
        if (place_ == Place::outermost) {
            const bool isMine = name->mark < marked_.size() && marked_[name->mark]->name.kept() == name;
            return isMine ? marked_[name->mark] : nullptr;
        }
        const auto found = table_.find(name);
        return found == table_.end() ? nullptr : found->second;
    }

    EventArena& arena_;
    Place place_;
    EventListBuilder events_;
    std::vector<Sum> sums_;
    BlockList<ProfileEvent*> marked_;                           ///< the first of each name, by its mark
    std::unordered_map<const KeptText*, ProfileEvent*> table_;  ///< the same, below the outermost list
    ProfileEvent* remembered_ = nullptr;                        ///< the last event that is
    bool hasNamesTwice_ = false;
};

}  // namespace

EventList averageEvents(const RecordList& records, EventArena& arena) {
    const auto hasEvents = [](const MethodRecord& record) { return !record.events.empty(); };
    const auto isObject = [](const ProfileEvent& event) { return event.isObject(); };
    const auto first = std::find_if(records.begin(), records.end(), hasEvents);
    if (first == records.end()) {
        return {};
    }
    const bool isOnlyOne = std::none_of(std::next(first), records.end(), hasEvents);
    if (isOnlyOne && std::none_of(first->events.begin(), first->events.end(), isObject)) {
        return first->events;
    }
    MergedList merged(arena, MergedList::Place::outermost, first->events.countByWalking());
    std::for_each(first, records.end(),
                  [&merged](const MethodRecord& record) { merged.merge(record.events); });
    return merged.divide();
}

}  // namespace zeb::profiling
