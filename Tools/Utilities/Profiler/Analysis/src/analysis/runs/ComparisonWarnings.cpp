#include "analysis/runs/ComparisonWarnings.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace zeb::analysis {

namespace {

using Runs = std::span<const RunSummary>;

constexpr std::size_t maxListed = 3;  // values of a side in a sentence
constexpr std::size_t maxLabels = 5;  // that differ and have a sentence each

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
    return orNotTold(std::string(run.level ? nameOf(*run.level) : ""));
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

template <typename TextOf>
std::vector<std::string> textsOf(TextOf textOf, Runs runs) {
    std::vector<std::string> texts;
    for (const RunSummary& run : runs) {
        texts.push_back(textOf(run));
    }
    return withoutRepeats(std::move(texts));
}

// Nothing where all runs have the same text.
template <typename TextOf>
std::optional<std::string> difference(std::string_view name, TextOf textOf, Runs base, Runs changed) {
    const std::vector<std::string> ofBase = textsOf(textOf, base);
    const std::vector<std::string> ofChanged = textsOf(textOf, changed);
    if (ofBase.size() == 1 && ofBase == ofChanged) {
        return std::nullopt;
    }
    return std::string(name) + " differ: base " + listed(ofBase) + "; new " + listed(ofChanged);
}

std::vector<std::string> differences(Runs base, Runs changed, bool areClocksAlone) {
    std::vector<std::string> sentences;
    for (const Fact& fact : facts) {
        if (!fact.isClock && areClocksAlone) {
            continue;
        }
        if (auto sentence = difference(fact.name, fact.textOf, base, changed)) {
            sentences.push_back(*std::move(sentence));
        }
    }
    return sentences;
}

std::set<std::string_view> labelKeysOf(Runs base, Runs changed) {
    std::set<std::string_view> keys;
    for (const Runs runs : {base, changed}) {
        for (const RunSummary& run : runs) {
            for (const auto& [key, value] : run.labels) {
                keys.insert(key);
            }
        }
    }
    return keys;
}

void addLabelDifferences(std::vector<std::string>& sentences, Runs base, Runs changed) {
    std::size_t count = 0;
    for (const std::string_view key : labelKeysOf(base, changed)) {
        const auto valueOf = [name = std::string(key)](const RunSummary& run) {
            const auto label = run.labels.find(name);
            return label == run.labels.end() ? orNotTold("") : '"' + label->second + '"';
        };
        auto sentence = difference("labels \"" + std::string(key) + '"', valueOf, base, changed);
        if (sentence && ++count <= maxLabels) {
            sentences.push_back(*std::move(sentence));
        }
    }
    if (count > maxLabels) {
        sentences.push_back("values of " + std::to_string(count - maxLabels) + " more labels differ");
    }
}

}  // namespace

std::vector<std::string> differencesOf(Runs base, Runs changed) {
    std::vector<std::string> sentences = differences(base, changed, false);
    addLabelDifferences(sentences, base, changed);
    return sentences;
}

std::vector<std::string> clockDifferencesOf(Runs base, Runs changed) {
    return differences(base, changed, true);
}

}  // namespace zeb::analysis
