#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "zeb/profiling/VisibilityLevel.h"

namespace zeb::fuzz {

enum class ReportKind : std::uint8_t { backend, backendInternal, generic };
inline constexpr std::array reportKinds = {ReportKind::backend, ReportKind::backendInternal,
                                           ReportKind::generic};

struct RunOptions {
    ReportKind kind = ReportKind::backend;
    profiling::VisibilityLevel level{127};
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

/// Loads a log and reports it as a host does, also after a load that failed. No file but the objects' is left
/// behind.
/// @throws whatever a reader must not throw for a log of this size
Outcome readLog(std::span<const std::uint8_t> log, const RunOptions& options);

/// Loads a log once and makes all reports of that load in memory, which costs a small part of as many runs.
/// @return for each of `reportKinds` what a run of its own has to give
/// @throws like `readLog`
std::array<Outcome, reportKinds.size()> readLogInMemory(std::span<const std::uint8_t> log,
                                                        profiling::VisibilityLevel level);

}  // namespace zeb::fuzz
