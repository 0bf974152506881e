#include "reader/backend/ExecutionLines.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "reports/ReportForms.h"
#include "text/NumberText.h"
#include "text/Saturation.h"
#include "text/TableText.h"

namespace zeb::profiling {

namespace {

using Text = std::optional<std::string>;
using ValueOf = Text (*)(const BackendFigures&);

std::string microseconds(std::uint64_t us) {
    return std::to_string(us) + " us";
}

std::string clock(std::uint32_t hz, std::uint32_t mhz) {
    return std::to_string(hz) + " (" + std::to_string(mhz) + " MHz) ";
}

std::string backendTime(const ExecutionFigures& execution) {
    return microseconds(differenceOrZero(execution.backendExecuteUs.value_or(0), execution.queueWaitUs));
}

// Behind the graph heads an asynchronous run has no time, so its last graph has it here.
Text asyncMarlix(const BackendFigures& figures) {
    const ExecutionFigures& execution = figures.execution;
    return execution.isAsync && execution.backendExecuteUs
               ? Text(microseconds(differenceOrZero(execution.lastGraphUs, execution.queueWaitUs)))
               : std::nullopt;
}

Text singleGraphMarlix(const BackendFigures& figures) {
    const ExecutionFigures& execution = figures.execution;
    return execution.singleGraphUs
               ? Text(microseconds(differenceOrZero(*execution.singleGraphUs, execution.queueWaitUs)))
               : std::nullopt;
}

template <bool isAsync>
Text backend(const BackendFigures& figures) {
    return figures.execution.isAsync == isAsync && figures.execution.backendExecuteUs
               ? Text(backendTime(figures.execution))
               : std::nullopt;
}

template <bool isAsync>
Text backendOrZero(const BackendFigures& figures) {
    return figures.execution.isAsync == isAsync ? Text(backendTime(figures.execution)) : std::nullopt;
}

template <std::size_t copy>
Text tensorCopy(const BackendFigures& figures) {
    const auto us = figures.execution.tensorCopyUs[copy];
    return us ? Text(fixedPoint(*us, 3) + " us") : std::nullopt;
}

Text ipcTime(const BackendFigures& figures) {
    return figures.execution.ipcTimeUs != 0 ? Text(microseconds(figures.execution.ipcTimeUs)) : std::nullopt;
}

Text acceleratorTime(const BackendFigures& figures) {
    return microseconds(figures.execution.acceleratorTimeUs);
}

Text executionCount(const BackendFigures& figures) {
    return std::to_string(figures.execution.executionCount);
}

Text dspClock(const BackendFigures& figures) {
    return clock(figures.layerConfig.dspClockHz, figures.execution.dspClockMhz);
}

Text krelClock(const BackendFigures& figures) {
    return clock(figures.layerConfig.krelClockHz, figures.execution.krelClockMhz);
}

constexpr std::size_t detailWidth = 25;

// A line has no text where its value has none.
struct ExecutionLine {
    std::uint64_t level;  ///< of indentation on the console
    std::string_view label;
    std::size_t labelWidth;
    ValueOf value;
    std::string_view csvLabel;  ///< with its separator, which differs from line to line
    ValueOf csvValue;
};

constexpr ExecutionLine detail(std::string_view label, ValueOf value, std::string_view csvLabel) {
    return {3, label, detailWidth, value, csvLabel, value};
}

constexpr ExecutionLine executionLines[] = {
    {1, "Marlix: ", 0, asyncMarlix, "Marlix, ", singleGraphMarlix},
    {2, "Backend (ZebGraph_execute): ", 0, backend<false>, "Backend (ZebGraph_execute), ",
     backendOrZero<false>},
    {2, "Backend (ZebGraph_executeAsync): ", 0, backend<true>, "Backend (ZebGraph_executeAsync), ",
     backendOrZero<true>},
    detail("Input Tensor Copy Time: ", tensorCopy<0>, "Input Tensor Copy Time, "),
    detail("Output Tensor Copy Time: ", tensorCopy<1>, "Output Tensor Copy Time, "),
    detail("IPC Time: ", ipcTime, "IPC Time,"),
    detail("Accelerator Time: ", acceleratorTime, "Accelerator Time,"),
    detail("Execution Count: ", executionCount, "Execution Count,"),
    detail("ADSP Clock Freq: ", dspClock, "ADSP Clock Freq (Hz),"),
    detail("Krel Clock Freq: ", krelClock, "Krel Clock Freq (Hz),"),
};

}  // namespace

void printExecutionLines(std::ostream& out, const BackendFigures& figures) {
    TableText table(out, Alignment::left);
    for (const ExecutionLine& line : executionLines) {
        if (const Text value = line.value(figures)) {
            table.field("", line.level * reportIndentWidth).field(line.label, line.labelWidth);
            table.text(*value).endRow();
        }
    }
}

void writeExecutionLinesCsv(std::ostream& out, const BackendFigures& figures) {
    for (const ExecutionLine& line : executionLines) {
        if (const Text value = line.csvValue(figures)) {
            out << line.csvLabel << *value << '\n';
        }
    }
}

Alignment tableAlignment(const ExecutionFigures& execution) {
    const bool hasDetailLine = execution.ipcTimeUs != 0 || execution.tensorCopyUs[0].has_value() ||
                               execution.tensorCopyUs[1].has_value();
    return execution.hasAverage && hasDetailLine ? Alignment::left : Alignment::right;
}

}  // namespace zeb::profiling
