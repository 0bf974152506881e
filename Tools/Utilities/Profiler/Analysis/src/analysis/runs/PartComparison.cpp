#include "analysis/runs/PartComparison.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>
#include <vector>

#include "analysis/Samples.h"

namespace zeb::analysis {

namespace {

using PartOfLogs = std::vector<const Part*>;    // one a log; null where it has no such part
using PartOfSides = std::array<PartOfLogs, 2>;  // base and new

std::vector<double> timesOf(const PartOfLogs& logs) {
    std::vector<double> us;
    for (const Part* const part : logs) {
        us.push_back(part == nullptr ? 0.0 : part->us);
    }
    return us;
}

double meanOf(const std::vector<double>& us) {
    return us.empty() ? 0.0 : std::accumulate(us.begin(), us.end(), 0.0) / static_cast<double>(us.size());
}

bool isThere(const PartOfLogs& logs) {
    return std::any_of(logs.begin(), logs.end(), [](const Part* part) { return part != nullptr; });
}

const Part* innerOf(const Part* part, std::string_view name) {
    if (part == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(part->parts.begin(), part->parts.end(),
                                    [name](const Part& inner) { return inner.name == name; });
    return found == part->parts.end() ? nullptr : &*found;
}

// In the order of the first log that has them.
std::vector<std::string_view> namesOfInner(const PartOfSides& sides) {
    std::vector<std::string_view> names;
    for (const PartOfLogs& logs : sides) {
        for (const Part* const part : logs) {
            for (std::size_t inner = 0; part != nullptr && inner < part->parts.size(); ++inner) {
                if (std::find(names.begin(), names.end(), part->parts[inner].name) == names.end()) {
                    names.emplace_back(part->parts[inner].name);
                }
            }
        }
    }
    return names;
}

Verdict verdictOn(const std::vector<double>& base, const std::vector<double>& changed, Basis basis) {
    const auto directionOf = [](double change) { return change > 0.0 ? Verdict::slower : Verdict::faster; };
    if (basis == Basis::oneEach) {
        const double change = changed.front() - base.front();
        return change == 0.0 ? Verdict::same : directionOf(change);
    }
    if (basis == Basis::tooFew) {
        return Verdict::unsure;
    }
    const auto shift = basis == Basis::paired ? shiftOfPairs(base, changed) : shiftBetween(base, changed);
    const bool isSure = shift && shift->interval && !shift->interval->holds(0.0);
    return isSure ? directionOf(shift->change) : Verdict::unsure;
}

PartChange compareParts(std::string_view name, const PartOfSides& sides, Basis basis) {
    const std::vector<double> base = timesOf(sides[0]);
    const std::vector<double> changed = timesOf(sides[1]);
    PartChange change;
    change.name = name;
    change.baseUs = meanOf(base);
    change.newUs = meanOf(changed);
    if (isThere(sides[0]) && isThere(sides[1])) {
        change.verdict = verdictOn(base, changed, basis);
    } else {
        change.verdict = isThere(sides[0]) ? Verdict::gone : Verdict::added;
    }
    for (const std::string_view innerName : namesOfInner(sides)) {
        PartOfSides inner;
        for (std::size_t side = 0; side < inner.size(); ++side) {
            for (const Part* const part : sides[side]) {
                inner[side].push_back(innerOf(part, innerName));
            }
        }
        change.parts.push_back(compareParts(innerName, inner, basis));
    }
    return change;
}

}  // namespace

std::optional<PartChange> compareInferences(const SideGraph& base, const SideGraph& changed, Basis basis,
                                            bool isPaired) {
    const auto treeOf = [](const SideGraph& side, std::size_t log) -> const Part* {
        const GraphSummary* const graph = side.logs[log];
        return graph == nullptr || graph->inference.us == 0.0 ? nullptr : &graph->inference;
    };
    PartOfSides trees;
    const auto add = [&](const SideGraph& side, const SideGraph& other, PartOfLogs& logs) {
        for (std::size_t log = 0; log < side.logs.size(); ++log) {
            const Part* const tree = treeOf(side, log);
            if (tree != nullptr && (!isPaired || treeOf(other, log) != nullptr)) {
                logs.push_back(tree);
            }
        }
    };
    add(base, changed, trees[0]);
    add(changed, base, trees[1]);
    const PartOfLogs& named = trees[1].empty() ? trees[0] : trees[1];
    if (named.empty()) {
        return std::nullopt;
    }
    return compareParts(named.front()->name, trees, basis);
}

}  // namespace zeb::analysis
