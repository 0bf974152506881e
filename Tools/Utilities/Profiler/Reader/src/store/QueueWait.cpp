#include "store/QueueWait.h"

namespace zeb::profiling {

namespace {

QueueWait queueWaitWithin(const EventList& events, int levels) {
    QueueWait wait;
    for (const ProfileEvent& event : events) {
        if (event.eventType == EVENT_TYPE_QUEUE_WAIT) {
            ++wait.count;
            wait.lastUs = event.value().asNumber();
        }
        if (levels > 1) {
            const QueueWait below = queueWaitWithin(event.subEvents, levels - 1);
            wait.count += below.count;
            wait.lastUs = below.count > 0 ? below.lastUs : wait.lastUs;
        }
    }
    return wait;
}

}  // namespace

QueueWait queueWaitOf(const EventList& events) {
    return queueWaitWithin(events, 2);
}

}  // namespace zeb::profiling
