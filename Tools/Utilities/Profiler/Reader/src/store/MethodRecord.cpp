#include "store/MethodRecord.h"

namespace zeb::profiling {

void RecordList::add(const MethodRecord& record, EventArena& arena) {
    Node* const node = arena.make(Node{record});
    (last_ == nullptr ? first_ : last_->next) = node;
    last_ = node;
}

void RecordList::fill(EventList events, EventArena& arena) {
    Node* node = lastFilled_ == nullptr ? first_ : lastFilled_->next;
    while (node != nullptr && !node->record.events.empty()) {
        lastFilled_ = node;
        node = node->next;
    }
    if (node == nullptr) {
        add({}, arena);
        node = last_;
    }
    node->record.events = events;
}

}  // namespace zeb::profiling
