#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "samplelog/LogWriter.h"

/// A hostile log: its event tables share their sub-events, so that a few kilobytes that pass every check
/// stand for billions of events.
namespace zeb::samplelog {

/// The tree that the log stands for. From the lowest level up, `sharedLevels` levels have `fanOut` events
/// below each event of the level above, all of them one table; the levels above have a single event each.
struct SharedEventsShape {
    std::uint32_t levels = 62;  ///< at most what a reader takes, which is 62
    std::uint32_t sharedLevels = 4;
    std::uint32_t fanOut = 216;
    std::string name = "event";   ///< of all events, which refer to the one text
    std::string objectName = {};  ///< makes the lowest event an object for a file of that name

    /// @return events of the whole tree
    [[nodiscard]] std::uint64_t eventCount() const;
};

/// @return the log, one chunk with an execution of the tree
Bytes encodeSharedEventsLog(const SharedEventsShape& shape = {});

/// Writes the log; the state of the stream tells whether that succeeded.
void writeSharedEventsLog(std::ostream& out);

}  // namespace zeb::samplelog
