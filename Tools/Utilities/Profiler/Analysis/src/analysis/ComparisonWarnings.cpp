#include "analysis/ComparisonWarnings.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace zeb::analysis {

namespace {

using Runs = std::span<const RunSummary>;

constexpr std::size_t maxListed = 3;  // values of a side in a sentence

// Something about a run that explains changes when it differs.
struct Fact {
    std::string_view name;
    bool isClock;
    std::string (*textOf)(const RunSummary& run);
};

std::string orNotTold(const std::string& text) {
    return text.empty() ? "not told" : text;
}

// At most a few of the texts, and how many there are more.
std::string listed(const std::vector<std::string>& texts) {
    std::string list;
    for (std::size_t position = 0; position < std::min(texts.size(), maxListed); ++position) {
        list.append(position == 0 ? "" : ", ").append(texts[position]);
    }
    const std::size_t more = texts.size() - std::min(texts.size(), maxListed);
    return more == 0 ? list : list + " and " + std::to_string(more) + " more";
}

std::vector<std::string> withoutRepeats(std::vector<std::string> texts) {
    std::unordered_set<std::string> seen;
    texts.erase(std::remove_if(texts.begin(), texts.end(),
                               [&seen](const std::string& text) { return !seen.insert(text).second; }),
                texts.end());
    return texts;
}

template <std::uint32_t GraphSummary::*clock>
std::string clocksOf(const RunSummary& run) {
    std::vector<std::string> clocks;
    for (const GraphSummary& graph : run.graphs) {
        const std::uint32_t hz = graph.*clock;
        clocks.push_back(hz == 0 ? "" : std::to_string(hz / 1'000'000) + " MHz");
    }
    return orNotTold(listed(withoutRepeats(std::move(clocks))));
}

std::string levelOf(const RunSummary& run) {
    if (!run.level) {
        return orNotTold("");
    }
    switch (*run.level) {
        case Level::basic:
            return "basic";
        case Level::detailed:
            return "detailed";
        case Level::internal:
            return "internal";
    }
    return "unknown";
}

constexpr Fact facts[] = {
    {"profiling levels", false, levelOf},
    {"kinds of execution", false,
     [](const RunSummary& run) { return std::string(run.isAsync ? "asynchronous" : "synchronous"); }},
    {"DSP clocks", true, clocksOf<&GraphSummary::dspClockHz>},
    {"Krel clocks", true, clocksOf<&GraphSummary::krelClockHz>},
    {"backend versions", false, [](const RunSummary& run) { return orNotTold(run.backendVersion); }},
    {"generators", false, [](const RunSummary& run) { return orNotTold(run.generator); }},
};

std::vector<std::string> textsOf(const Fact& fact, Runs runs) {
    std::vector<std::string> texts;
    for (const RunSummary& run : runs) {
        texts.push_back(fact.textOf(run));
    }
    return withoutRepeats(std::move(texts));
}

std::vector<std::string> differences(Runs base, Runs changed, bool areClocksAlone) {
    std::vector<std::string> sentences;
    for (const Fact& fact : facts) {
        const std::vector<std::string> ofBase = textsOf(fact, base);
        const std::vector<std::string> ofChanged = textsOf(fact, changed);
        if ((fact.isClock || !areClocksAlone) && (ofBase.size() > 1 || ofBase != ofChanged)) {
            sentences.push_back(std::string(fact.name) + " differ: base " + listed(ofBase) + "; new " +
                                listed(ofChanged));
        }
    }
    return sentences;
}

}  // namespace

std::vector<std::string> differencesOf(Runs base, Runs changed) {
    return differences(base, changed, false);
}

std::vector<std::string> clockDifferencesOf(Runs base, Runs changed) {
    return differences(base, changed, true);
}

}  // namespace zeb::analysis
