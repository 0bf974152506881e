#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/runs/Comparison.h"

namespace zeb::analysis {

/// What a comparison has to hold for a change to pass. One of the limits at least is given.
struct Gate {
    Total total = Total::marlix;
    std::optional<double> maxGrowth = {};       ///< of the total, as a share of the base
    std::optional<double> maxLayerGrowth = {};  ///< of a layer, beyond what all layers share
    std::optional<double> minChangeUs = {};     ///< a growth below it does not count
    bool failsUnsure = false;                   ///< what can't be told does not pass
};

/// The weightiest last.
enum class GateOutcome : std::uint8_t {
    pass,    ///< not slower than allowed
    unsure,  ///< can't tell
    slower,  ///< than allowed
    incomparable,
};

struct GateResult {
    GateOutcome outcome = GateOutcome::pass;
    std::vector<std::string>
        reasons;  ///< a sentence each: all that fails, can't be told or can't be compared
};

/// Each graph of both sides is judged by itself. Several logs a side: a total is slower than allowed where it
/// is surely slower and its estimate lies above the limit, and is not where its interval ends below the
/// limit. One log a side: it is slower where the change lies above the limit, and nobody can tell that it is
/// not. The limit is the growth that is allowed or `minChangeUs`, whichever is more. A layer fails that is
/// marked slower, with an excess above its limit. A gate never passes by having nothing to compare: that is
/// `incomparable`.
GateResult judge(const Comparison& comparison, const Gate& gate);

}  // namespace zeb::analysis
