#include "reports/EventReport.h"

#include "reports/EventText.h"
#include "reports/ReportForms.h"

namespace zeb::profiling {

namespace {

void writeEventRow(std::ostream& out, const ProfileEvent& event, std::string_view level,
                   std::uint64_t timestamp, std::string_view message) {
    if (!event.isObject()) {
        out << timestamp << ',' << message << ',' << formatEventValue(event.value()) << ','
            << unitCsvText(event.unit()) << ",BACKEND" << level << event.name << '\n';
    }
}

}  // namespace

void printOneEvent(std::ostream& out, const ProfileEvent& event, std::uint64_t level,
                   ObjectFiles* objectFiles) {
    if (!event.isObject()) {
        printEventLine(out, event, level);
    } else if (objectFiles != nullptr) {
        objectFiles->write(event);
    }
}

void printEvents(std::ostream& out, const EventList& events, std::uint64_t level, ObjectFiles* objectFiles) {
    for (const ProfileEvent& event : events) {
        printOneEvent(out, event, level, objectFiles);
        printEvents(out, event.subEvents, level + 1, objectFiles);
    }
}

// The sub-events of an object event have their rows without it.
void writeEventRows(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                    std::string_view message) {
    for (const ProfileEvent& event : events) {
        writeEventRow(out, event, ",ROOT,", timestamp, message);
        for (const ProfileEvent& subEvent : event.subEvents) {
            writeEventRow(out, subEvent, ",SUB-EVENT,", timestamp, message);
        }
    }
}

}  // namespace zeb::profiling
