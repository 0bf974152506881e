#pragma once

#include <cstdint>

#include "analysis/Run.h"
#include "forms/trace/TraceFile.h"

namespace zeb::forms {

/// Adds to a trace what nobody has measured: an average inference of each graph that has layers, laid out end
/// to end in their order. Each is a process of its own.
/// @param firstProcess number of the first graph's process; the other graphs have those behind it
/// @param startUs where in the trace they all begin
void addAverages(TraceFile& file, const analysis::Run& run, std::uint64_t firstProcess,
                 std::uint64_t startUs);

}  // namespace zeb::forms
