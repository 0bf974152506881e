#include "analysis/runs/RunCopies.h"

#include <algorithm>
#include <cstddef>

namespace zeb::analysis {

namespace {

using Runs = std::span<const RunSummary>;

bool areSame(const RunSummary& one, const RunSummary& other) {
    return one.runId == other.runId || one.runId == other.idOfFigures || one.idOfFigures == other.runId;
}

const RunSummary* sameAmong(Runs runs, const RunSummary& run) {
    const auto found = std::find_if(runs.begin(), runs.end(),
                                    [&run](const RunSummary& other) { return areSame(run, other); });
    return found == runs.end() ? nullptr : &*found;
}

class Counter {
public:
    void addPair(const RunSummary& base, const RunSummary& changed) {
        const bool isBaseCopy = isCopyIn(counted_.base, base);  // both of them are told of
        if (!isCopyIn(counted_.changed, changed) && !isBaseCopy) {
            counted_.base.push_back(base);
            counted_.changed.push_back(changed);
        }
    }

    void addBase(const RunSummary& run) { add(counted_.base, run); }
    void addChanged(const RunSummary& run) { add(counted_.changed, run); }

    CountedRuns result() {
        for (const RunSummary& run : counted_.changed) {
            if (const RunSummary* const same = sameAmong(counted_.base, run)) {
                counted_.haveSameRun = true;
                counted_.warnings.push_back(same->logFile + " and " + run.logFile +
                                            " are the same run, and are on both sides.");
            }
        }
        return std::move(counted_);
    }

private:
    void add(std::vector<RunSummary>& side, const RunSummary& run) {
        if (!isCopyIn(side, run)) {
            side.push_back(run);
        }
    }

    bool isCopyIn(const std::vector<RunSummary>& side, const RunSummary& run) {
        const RunSummary* const same = sameAmong(side, run);
        if (same != nullptr) {
            counted_.copies.push_back(run.logFile);
            warn(run.logFile +
                 (same->logFile == run.logFile ? " is given more than once"
                                               : " is a copy of " + same->logFile) +
                 ", and a log counts once.");
        }
        return same != nullptr;
    }

    void warn(std::string warning) {
        auto& warnings = counted_.warnings;
        if (std::find(warnings.begin(), warnings.end(), warning) == warnings.end()) {
            warnings.push_back(std::move(warning));
        }
    }

    CountedRuns counted_;
};

}  // namespace

CountedRuns countOnce(Runs base, Runs changed, bool isPaired) {
    Counter counter;
    if (isPaired) {
        for (std::size_t pair = 0; pair < std::min(base.size(), changed.size()); ++pair) {
            counter.addPair(base[pair], changed[pair]);
        }
        return counter.result();
    }
    std::for_each(base.begin(), base.end(), [&](const RunSummary& run) { counter.addBase(run); });
    std::for_each(changed.begin(), changed.end(), [&](const RunSummary& run) { counter.addChanged(run); });
    return counter.result();
}

}  // namespace zeb::analysis
