#pragma once

#include <cstdint>
#include <string>

namespace zeb::profiling {

namespace schema {
struct LogHeader;
}

/// What a log says about itself, from its first `LogHeader`.
struct LogHeaderDetails {
    bool headerSaved = false;  ///< the log had a header; without one all else is empty
    float timeScale = 0.0F;
    std::uint64_t epochTimestamp = 0;        ///< us since the Unix epoch
    std::uint64_t steadyClockTimestamp = 0;  ///< of the same moment
    std::string generatorName;
    std::string generatorVersion;
    std::string backendInfo;
    bool isAdapterUpdaterLog = false;  ///< written by the adapter updater, which has a report of its own
};

/// Copies a header out of its chunk.
/// @throws std::bad_alloc
LogHeaderDetails readLogHeader(const schema::LogHeader& header);

}  // namespace zeb::profiling
