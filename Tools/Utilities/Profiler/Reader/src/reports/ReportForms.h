#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

#include "reports/ReportSource.h"
#include "reports/SectionHeads.h"

/// The lines and sections that the reports of all readers share. Every line ends in a newline.
namespace zeb::profiling {

/// Blanks of one level of indentation in a console report.
inline constexpr std::size_t reportIndentWidth = 4;

/// Writes blanks for that many levels.
void indent(std::ostream& out, std::uint64_t levels);

void printSectionHead(std::ostream& out, const SectionHead& head);

/// @param position of the graph in the list that the section walks, counted from 0
void printGraphHead(std::ostream& out, std::size_t position, std::string_view graphName);

void printTimeLine(std::ostream& out, std::uint64_t durationUs);

/// The header text of the log and a blank line.
void printReportHeader(std::ostream& out, const ReportSource& source);

void printDeInitStats(std::ostream& out, const ReportSource& source);

/// The four lines at the head of every CSV report.
void writeCsvPreamble(std::ostream& out, const ReportSource& source);

/// Opens a CSV file for a report, which goes behind what the file holds.
/// @return the stream, in the classic locale and in fixed notation with precision 0; not open when the file
/// cannot be opened
std::ofstream openCsvFile(const std::string& path);

/// The events of the Init section: those that came with other messages, else those of the Init message.
EventList initSectionEvents(const EventStore& store);

}  // namespace zeb::profiling
