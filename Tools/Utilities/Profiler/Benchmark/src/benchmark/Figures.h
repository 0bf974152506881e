#pragma once

#include <array>
#include <cstddef>
#include <limits>

namespace zeb::bench {

/// What is measured of one log: seconds of processor time, unless the comment says otherwise.
enum class Figure : std::size_t {
    read,
    verify,
    copy,
    copyDestruction,
    copyMemory,  ///< peak resident bytes above those of the idle process
    load,
    loadDestruction,
    loadMemory,  ///< as above
    decode,
    aggregate,
    backendReport,
    genericReport,
    backendCsv,
    genericCsv,
    reportFloor,
    csvFloor,
    flatc,
    python,
    top,  ///< the forms: the log read and the form written
    json,
    html,
    trace,
    markdown,
    compare,
    topMemory,  ///< the same, peak resident bytes above those of the idle process
    jsonMemory,
    htmlMemory,
    traceMemory,
    markdownMemory,
    compareMemory,
    logSize,  ///< bytes
    count,
};

/// One round's figures of one log. What was not measured is not a number.
class Figures {
public:
    Figures() { values_.fill(std::numeric_limits<double>::quiet_NaN()); }

    [[nodiscard]] double operator[](Figure figure) const { return values_[static_cast<std::size_t>(figure)]; }
    double& operator[](Figure figure) { return values_[static_cast<std::size_t>(figure)]; }

private:
    std::array<double, static_cast<std::size_t>(Figure::count)> values_;
};

}  // namespace zeb::bench
