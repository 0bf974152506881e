#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "analysis/Comparison.h"

namespace zeb::analysis {

/// What a comparison has to hold for a change to pass.
struct Gate {
    Total total = Total::marlix;
    double maxGrowth = 0.0;    ///< as a share of the base
    double minChangeUs = 0.0;  ///< a growth below it does not count
};

enum class GateOutcome : std::uint8_t { pass, slower, incomparable };

struct GateResult {
    GateOutcome outcome = GateOutcome::pass;
    std::vector<std::string> reasons;  ///< a sentence each, of all that fails and all that can't be compared
};

/// Each graph of both sides is judged by itself. With several logs a side a growth counts only where its
/// interval lies above 0; with one log a side the change alone decides. A gate never passes by having nothing
/// to compare: that is `incomparable`, which weighs more than `slower`.
GateResult judge(const Comparison& comparison, const Gate& gate);

}  // namespace zeb::analysis
