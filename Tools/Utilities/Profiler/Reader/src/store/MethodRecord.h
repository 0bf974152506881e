#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "memory/BlockList.h"
#include "memory/ForwardIterator.h"
#include "store/EventArena.h"
#include "store/NamedList.h"
#include "store/ProfileEvent.h"
#include "store/StoredText.h"

namespace zeb::profiling {

/// One occurrence of a method, or a statistic over several. Its texts and events live as long as the store.
struct MethodRecord {
    std::uint64_t durationUs = 0;
    std::uint64_t timestamp = 0;  ///< `MessageTime.timestamp`, in the log's own scale
    StoredText message;           ///< `LogMessage.text`, where the method keeps it
    EventList events;
};

/// A record of nothing.
inline constexpr MethodRecord noRecord;

/// Records in the order in which they were added. They stand in an `EventArena`, each beside its events, so
/// that a graph of a single record costs no memory of its own. A copy of a list shows the same records.
class RecordList {
    struct Node {
        MethodRecord record;
        Node* next = nullptr;
    };

public:
    struct Cursor {
        const Node* node = nullptr;

        [[nodiscard]] const MethodRecord& at() const { return node->record; }
        void advance() { node = node->next; }
        friend bool operator==(const Cursor& left, const Cursor& right) = default;
    };
    using Iterator = ForwardIterator<MethodRecord, Cursor>;

    RecordList() = default;
    /// Makes a list of one record.
    /// @param arena has to outlive the list and all copies of it
    RecordList(const MethodRecord& record, EventArena& arena) { add(record, arena); }

    /// @param arena as above
    void add(const MethodRecord& record, EventArena& arena);

    /// Adds events to the first record without any; when there is none, to a new one at the end. All calls
    /// together walk the list once.
    void fill(EventList events, EventArena& arena);

    [[nodiscard]] bool empty() const { return first_ == nullptr; }
    [[nodiscard]] Iterator begin() const { return Iterator({first_}); }
    [[nodiscard]] Iterator end() const { return {}; }
    [[nodiscard]] const MethodRecord& front() const { return first_->record; }
    [[nodiscard]] const MethodRecord& back() const { return last_->record; }

    /// Both take time for each record that they pass.
    [[nodiscard]] std::size_t countByWalking() const {
        return static_cast<std::size_t>(std::distance(begin(), end()));
    }
    /// @param index below the count
    [[nodiscard]] const MethodRecord& walkTo(std::size_t index) const {
        return *std::next(begin(), static_cast<std::ptrdiff_t>(index));
    }

private:
    Node* first_ = nullptr;
    Node* last_ = nullptr;
    Node* lastFilled_ = nullptr;  ///< all records up to this one have events
};

/// A record under a graph's name, or under the name of a method. It stands in the arena and never changes, so
/// a statistic that is one of the records needs no copy of it.
struct NamedMethodRecord {
    StoredText name;
    const MethodRecord* record = &noRecord;  ///< never null
};

/// All occurrences of a method under one name, in log order; never empty in the store.
struct GraphMethodRecords {
    StoredText graphName;
    RecordList records;
};

/// The queue wait of each execution of a graph, in us.
struct GraphQueueWaits {
    StoredText graphName;
    std::vector<std::uint64_t> queueWaits;
};

/// The queue wait of one execution of a graph.
struct GraphQueueWait {
    StoredText graphName;
    std::uint64_t queueWaitUs = 0;
};

using GraphRecordList = NamedList<GraphMethodRecords, &GraphMethodRecords::graphName>;
using NamedRecordList = NamedList<NamedMethodRecord, &NamedMethodRecord::name>;
using StatisticsList = BlockList<NamedMethodRecord>;

}  // namespace zeb::profiling
