#include "reports/EventReport.h"

#include <iomanip>

#include "reports/EventText.h"
#include "reports/ReportForms.h"
#include "text/TableText.h"

namespace zeb::profiling {

namespace {

void writeEventRow(TableText& row, const ProfileEvent& event, std::string_view level, std::uint64_t timestamp,
                   std::string_view message) {
    if (!event.isObject()) {
        row.number(timestamp).text(",").text(message).text(",").text(formatEventValue(event.value()));
        row.text(",").text(unitCsvText(event.unit())).text(",BACKEND").text(level).text(event.name).endRow();
    }
}

}  // namespace

void printEventLine(std::ostream& out, const ProfileEvent& event, std::uint64_t level) {
    indent(out, level);
    if (level == 1) {
        out << "Backend (" << event.name << "): ";
    } else {
        out << event.name << ": ";
    }
    out << std::fixed << std::setprecision(0) << formatEventValue(event.value()) << unitSuffix(event.unit())
        << '\n';
}

// The sub-events of an object event have their rows without it.
void writeEventRows(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                    std::string_view message) {
    TableText row(out);
    for (const ProfileEvent& event : events) {
        writeEventRow(row, event, ",ROOT,", timestamp, message);
        for (const ProfileEvent& subEvent : event.subEvents) {
            writeEventRow(row, subEvent, ",SUB-EVENT,", timestamp, message);
        }
    }
}

}  // namespace zeb::profiling
