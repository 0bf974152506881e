#include "store/EventAverage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
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

// Lists merged into one, which grows in place. The first event of each name is found by its name: in the
// outermost list by a mark on the name itself, which takes no search but serves one list at a time; in the
// lists below it by a table. With tables alone a log of new names takes 1.6 times as long to load.
class MergedList {
public:
    enum class Level : bool { outermost, below };

    MergedList(EventArena& arena, Level level, std::size_t expectedSize)
        : arena_(arena), level_(level), events_(arena, expectedSize) {}
    MergedList(const MergedList&) = delete;
    MergedList& operator=(const MergedList&) = delete;

    /// Begins with all events of a list, objects included.
    void begin(EventList events) {
        for (const ProfileEvent& event : events) {
            add(event);
        }
    }

    void mergeEvents(EventList incoming) {
        searchAllFromNowOn();
        std::uint32_t expected = 0;
        for (const ProfileEvent& event : incoming) {
            const std::uint32_t found = find(event.name.kept(), expected);
            if (found != nowhere) {
                addTo(found, event);
                expected = found + 1;
            } else if (!event.isObject()) {
                add(event);
            }
        }
    }

    EventList divideEvents() {
        for (std::size_t position = 0; position < sums_.size(); ++position) {
            if (const auto& sum = sums_[position]) {
                ProfileEvent& event = *merged_[position];
                putValue(event, sum->value.mean(), sum->object, arena_);
                event.setOccurrences(sum->occurrences);
                if (sum->subEvents) {
                    event.subEvents = sum->subEvents->divideEvents();
                }
            }
        }
        return events_.finish();
    }

private:
    // What an event has grown to since a second one came. Few have one where most names are new.
    struct Sum {
        ValueSum value;
        const EventObject* object;
        std::uint32_t occurrences;
        std::unique_ptr<MergedList> subEvents;  ///< made when the first sub-events come in addition
    };

    static constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

    void add(const ProfileEvent& event) {
        merged_.makeRoom();
        merged_.add(&events_.add(event));
    }

    Sum& sumOf(std::uint32_t position) {
        if (position >= sums_.size()) {
            sums_.resize(position + 1);
        }
        std::unique_ptr<Sum>& sum = sums_[position];
        if (!sum) {
            const ProfileEvent& event = *merged_[position];
            sum = std::make_unique<Sum>(Sum{ValueSum(event.value()), event.object(), 1, nullptr});
        }
        return *sum;
    }

    void addTo(std::uint32_t position, const ProfileEvent& incoming) {
        Sum& sum = sumOf(position);
        sum.value.add(incoming.value());
        ++sum.occurrences;
        if (incoming.subEvents.empty()) {
            return;
        }
        if (!sum.subEvents) {
            const EventList own = merged_[position]->subEvents;
            sum.subEvents = std::make_unique<MergedList>(arena_, Level::below, own.countByWalking());
            sum.subEvents->begin(own);
        }
        sum.subEvents->mergeEvents(incoming.subEvents);
    }

    // Events that came in one list are not merged with each other.
    void searchAllFromNowOn() {
        for (; searched_ < merged_.size(); ++searched_) {
            const KeptText* const name = merged_[searched_]->name.kept();
            if (firstOfName(name) != nowhere) {
                hasNamesTwice_ = true;
            } else if (level_ == Level::outermost) {
                name->mark = searched_;
            } else {
                table_.emplace(name, searched_);
            }
        }
    }

    // Lists of one method mostly have the same events in the same order: `expected` is looked at first.
    [[nodiscard]] std::uint32_t find(const KeptText* name, std::uint32_t expected) const {
        const bool isExpected =
            expected < searched_ && !hasNamesTwice_ && merged_[expected]->name.kept() == name;
        return isExpected ? expected : firstOfName(name);
    }

    [[nodiscard]] std::uint32_t firstOfName(const KeptText* name) const {
        if (level_ == Level::outermost) {
            const std::uint32_t position = name->mark;  // where another list has left it, it counts nothing
            const bool isOurs = position < searched_ && merged_[position]->name.kept() == name;
            return isOurs ? position : nowhere;
        }
        const auto found = table_.find(name);
        return found == table_.end() ? nowhere : found->second;
    }

    EventArena& arena_;
    Level level_;
    EventListBuilder events_;
    BlockList<ProfileEvent*> merged_;         ///< the events of the builder
    std::vector<std::unique_ptr<Sum>> sums_;  ///< by position, those behind the last one left out
    std::uint32_t searched_ = 0;              ///< that many events can be found
    bool hasNamesTwice_ = false;
    std::unordered_map<const KeptText*, std::uint32_t> table_;  ///< below the outermost list
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
    MergedList merged(arena, MergedList::Level::outermost, first->events.countByWalking());
    std::for_each(first, records.end(),
                  [&merged](const MethodRecord& record) { merged.mergeEvents(record.events); });
    return merged.divideEvents();
}

}  // namespace zeb::profiling
