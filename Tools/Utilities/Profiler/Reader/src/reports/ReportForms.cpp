#include "reports/ReportForms.h"

#include <iomanip>
#include <locale>

#include "zeb/profiling/Version.h"

namespace zeb::profiling {

void indent(std::ostream& out, std::uint64_t levels) {
    for (std::uint64_t blanks = levels * reportIndentWidth; blanks > 0; --blanks) {
        out.put(' ');
    }
}

void printSectionHead(std::ostream& out, const SectionHead& head) {
    out << head.title << '\n' << std::string(head.underline, '-') << '\n';
}

void printGraphHead(std::ostream& out, std::size_t position, std::string_view graphName) {
    out << "Graph " << position << " (" << graphName << "):\n";
}

void printTimeLine(std::ostream& out, std::uint64_t durationUs) {
    indent(out, 1);
    out << "Marlix: " << durationUs << " us\n";
}

void printReportHeader(std::ostream& out, const ReportSource& source) {
    out << source.reader.printHeader() << '\n';
}

void printDeInitStats(std::ostream& out, const ReportSource& source) {
    const MethodRecord& record = source.store.deInitRecord;
    printSectionHead(out, heads::deInit);
    printTimeLine(out, record.durationUs);
    source.reader.printEvent(out, record.events, 1);
    out << '\n';
}

void writeCsvPreamble(std::ostream& out, const ReportSource& source) {
    const LogHeaderDetails& header = source.header;
    out << "input log file location, " << source.logFilePath << '\n'
        << "zeb-profile-viewer version, " << versionText << '\n'
        << header.generatorName << " version, " << header.generatorVersion << '\n'
        << "Backend version, " << header.backendInfo << '\n';
}

std::ofstream openCsvFile(const std::string& path) {
    std::ofstream csv;
    csv.imbue(std::locale::classic());
    csv.open(path, std::ios::app);
    csv << std::fixed << std::setprecision(0);
    return csv;
}

EventList initSectionEvents(const EventStore& store) {
    if (store.hasInitEvents) {
        return store.initEvents;
    }
    return store.hasInitRecord ? store.initRecord.events : EventList{};
}

}  // namespace zeb::profiling
