#pragma once

#include <span>
#include <string>

#include "benchmark/Figures.h"

namespace zeb::bench {

/// A log that is measured.
struct MeasuredLog {
    std::string path;
    std::size_t size;  ///< the number that its shape made it from
};

/// Something to measure: a floor, or a part of the library.
struct Subject {
    void (*measure)(const MeasuredLog& log, Figures& figures);
    bool layersOnly = false;  ///< makes sense for the layers shape alone
    bool isCopyFloor = false;
};

/// The subjects of one round, each floor beside what is held against it. Each is meant to run in a process of
/// its own.
[[nodiscard]] std::span<const Subject> readerSubjects();
/// The forms of a run, as the commands make them.
[[nodiscard]] std::span<const Subject> formSubjects();

}  // namespace zeb::bench
