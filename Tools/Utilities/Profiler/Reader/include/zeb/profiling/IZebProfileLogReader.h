#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "zeb/profiling/ParsedArgs.h"
#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::profiling {

class EventList;

/// A reader of one profiling log, parameterised by the type of its visibility level.
///
/// The host calls the operations by their position in the virtual table (Itanium C++ ABI), so their order in
/// this header is part of the contract. Host and plug-in must share that ABI and the layout of `std::string`.
/// A reader serves one thread at a time; different readers may be used in different threads. Each text that a
/// reader puts on standard output goes through `std::cout` and out in one piece: the reader holds the lock of
/// `stdout` meanwhile (`flockfile`), like every reader of every plug-in in the process, and what the host
/// writes with C's functions waits. A host that uses `std::cout` in another thread at that time has to hold
/// the lock too. No text depends on a locale that the host has set.
template <typename Level>
class IZebProfileLogReader {
public:
    IZebProfileLogReader() = default;
    IZebProfileLogReader(const IZebProfileLogReader&) = delete;
    IZebProfileLogReader& operator=(const IZebProfileLogReader&) = delete;

    /// Writes the console report to standard output, and appends the CSV report to the file `outputPath`
    /// unless that is empty. To be called after `loadLog`.
    /// @return false only when the file cannot be opened
    /// @throws std::invalid_argument, std::out_of_range for a value in the log that has to be a number and is
    /// none;
    ///         std::bad_alloc
    virtual bool generateReports(const std::string& outputPath) = 0;

    virtual ~IZebProfileLogReader() = default;

    /// @return the header of the log as text, empty as long as no header has been read
    virtual std::string printHeader() = 0;

    /// Decodes the next message of the open chunk; for use by the reader itself.
    /// @return whether the message was stored; false also when the chunk has no message left
    virtual bool readNextMessage() = 0;
};

/// The reader as a plug-in gives it to a host: the interface above and the operations that follow it.
class IZebPluginLogReader : public IZebProfileLogReader<VisibilityLevel> {
public:
    /// Reads, decodes and aggregates the whole log. To be called once. Writes the notes of the aggregation,
    /// if there are any, to standard output.
    /// @param saveObjects whether `generateReports` writes object events to files in the working directory
    /// @return false when the log cannot be opened, a chunk is damaged or there is no memory for it;
    ///         what earlier chunks held has been decoded then, but not aggregated
    /// @throws std::bad_alloc when decoding runs out of memory
    virtual bool loadLog(bool saveObjects) = 0;

    /// Takes the reader's own options from the command line. To be called before `generateReports`.
    /// @return false when the host should not go on: help was shown, or the options are wrong, and the
    ///         reader has said so on standard error
    virtual bool parseBackendArgs(commandline2::ParsedArgs& parsedArgs) = 0;

    /// Writes one console line for each event and its sub-events; for use by the reader itself.
    /// @param level depth of the list, 1 for the events of a message
    virtual void printEvent(std::ostream& out, const EventList& events, std::uint64_t level) = 0;

    /// Writes one CSV row for each event and its direct sub-events; for use by the reader itself.
    /// @param timestamp of the message that the events belong to, as it stands in the log
    virtual void writeEventCsv(std::ostream& out, const EventList& events, std::uint64_t timestamp,
                               const std::string& message) = 0;
};

}  // namespace zeb::profiling
