#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::fuzz {

enum class ReaderKind : std::uint8_t { backend, generic };

struct RunOptions {
    ReaderKind kind = ReaderKind::backend;
    profiling::VisibilityLevel level{127};
    bool internalColumns = false;
    bool saveObjects = false;  ///< files go to the working directory
};

/// What a host sees of one run: results, texts, log lines and the exception that left the report.
struct Outcome {
    bool loaded = false;
    bool reported = false;
    std::string notes;    ///< standard output of the load
    std::string console;  ///< standard output of the report
    std::string csv;      ///< the CSV file
    std::string failure;  ///< text of the exception of a value that is no number, empty without one
    std::vector<std::string> lines;  ///< "LEVEL text" each

    bool operator==(const Outcome&) const = default;
};

/// Loads a log and reports it, also after a load that failed. No file but the objects' is left behind.
/// @throws whatever a reader must not throw for a log of this size
Outcome readLog(std::span<const std::uint8_t> log, const RunOptions& options);

}  // namespace zeb::fuzz
