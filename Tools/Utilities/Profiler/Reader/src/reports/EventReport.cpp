// The two operations of a reader that walk an event list.

#include <ostream>

#include "reader/ZebProfileLogReader.h"
#include "reports/EventText.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

void ZebProfileLogReader::printEvent(std::ostream& out, const EventList& events, std::uint64_t level) {
    for (const ProfileEvent& event : events) {
        if (event.isObject()) {
            writeObjectFile(event);
        } else {
            printEventLine(out, event, level);
        }
        printEvent(out, event.subEvents, level + 1);
    }
}

namespace {

void writeEventRow(std::ostream& out, const ProfileEvent& event, std::string_view level,
                   std::uint64_t timestamp, const std::string& message) {
    if (!event.isObject()) {
        out << timestamp << ',' << message << ',' << formatEventValue(event.value()) << ','
            << unitCsvText(event.unit()) << ",BACKEND" << level << event.name << '\n';
    }
}

}  // namespace

// Only two levels of events have rows; the sub-events of an object event have theirs without it.
void ZebProfileLogReader::writeEventCsv(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                                        const std::string& message) {
    for (const ProfileEvent& event : events) {
        writeEventRow(out, event, ",ROOT,", timestamp, message);
        for (const ProfileEvent& subEvent : event.subEvents) {
            writeEventRow(out, subEvent, ",SUB-EVENT,", timestamp, message);
        }
    }
}

}  // namespace zeb::profiling
