#pragma once

#include <functional>
#include <string>
#include <vector>

#include "benchmark/Figures.h"

/// Measuring in processes of their own, so that no run finds memory that an earlier one has warmed.
namespace zeb::bench {

/// Runs `measure` in a forked process and adds what it has measured to `figures`.
/// @throws std::runtime_error when it fails
void runApart(const std::function<void(Figures&)>& measure, Figures& figures);

/// @return processor time that this process has used so far, in user and system mode, in s
double processorTime();

/// @return the most memory that this process has had resident so far, in bytes
double peakMemory();

/// Runs a program with its output thrown away.
/// @return its processor time in s
/// @throws std::runtime_error when it fails
double timeOfProgram(const std::vector<std::string>& command);

}  // namespace zeb::bench
