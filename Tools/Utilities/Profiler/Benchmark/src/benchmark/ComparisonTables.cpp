// Measures the comparison on logs of which the truth is known, and prints the tables of docs/compare.md, in
// per cent of the seeds:
//
//   comparison-tables [SEEDS [FIRST]]      100 seeds from 1 on
//
// A log is that of the sample network, with a drift and a seed of its own.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <string>
#include <vector>

#include "analysis/MakeRun.h"
#include "analysis/runs/Comparison.h"
#include "analysis/runs/Gate.h"
#include "samplelog/NetworkLog.h"

namespace {

using namespace zeb;
using analysis::Comparison;
using analysis::GateOutcome;
using Cells = std::vector<std::string>;

constexpr std::uint64_t maxLogs = 64;  // a side
constexpr std::uint32_t millionthsOfPercent = 10'000;
const std::string slowedLayer = "conv_pw_3";
const analysis::Gate fivePercent{.maxGrowth = 0.05};

struct Truth {
    std::uint32_t slowerPercent = 0;
    std::uint32_t layerPercent = 0;  // that `slowedLayer` is slower by
    std::uint32_t driftPercent = 2;
    std::uint64_t logs = 5;    // a side
    bool sharesDrift = false;  // the n-th logs of both sides
    bool isPaired = false;
};

bool isSure(analysis::Verdict verdict) {
    return verdict == analysis::Verdict::slower || verdict == analysis::Verdict::faster;
}

const analysis::TotalChange& marlixOf(const Comparison& comparison) {
    return *comparison.graphs.at(0).find(analysis::Total::marlix);
}

bool isFound(const Comparison& comparison) {
    return isSure(marlixOf(comparison).verdict);
}

std::vector<std::string> markedOf(const Comparison& comparison) {
    std::vector<std::string> marked;
    for (const analysis::LayerChange& layer : comparison.graphs.at(0).layers) {
        if (isSure(layer.verdict)) {
            marked.push_back(layer.name);
        }
    }
    return marked;
}

template <int slowerPercent>
bool holdsTruth(const Comparison& comparison) {
    return marlixOf(comparison).interval->holds(slowerPercent / 100.0);
}

template <GateOutcome outcome>
bool has(const Comparison& comparison) {
    return judge(comparison, fivePercent).outcome == outcome;
}

bool marksAny(const Comparison& comparison) {
    return !markedOf(comparison).empty();
}

bool marksTheSlowedAlone(const Comparison& comparison) {
    return markedOf(comparison) == std::vector{slowedLayer};
}

std::string percent(std::uint64_t value) {
    return std::to_string(value) + " %";
}

class Tables {
public:
    Tables(std::uint64_t seeds, std::uint64_t first) : seeds_(seeds), first_(first) {}
    ~Tables() { std::filesystem::remove(path_); }
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    void print() const {
        printTotals();
        printGate();
        printLogsAsked();
        printLayers();
        printPairs();
    }

private:
    [[nodiscard]] analysis::RunSummary runOf(const samplelog::NetworkOptions& options) const {
        std::ofstream out(path_, std::ios::binary);
        writeNetworkLog(out, options);
        out.close();
        return analysis::summarize(analysis::makeRun(path_, profiling::VisibilityLevel{127}).value());
    }

    // No two logs of all comparisons have one seed.
    [[nodiscard]] Comparison comparisonOf(const Truth& truth, std::uint64_t seed) const {
        std::vector<analysis::RunSummary> sides[2];
        for (const std::uint64_t side : {0U, 1U}) {
            for (std::uint64_t log = 0; log < truth.logs; ++log) {
                samplelog::NetworkOptions options;
                options.seed = (seed * 2 + side) * maxLogs + log;
                options.driftMillionths = truth.driftPercent * millionthsOfPercent;
                if (truth.sharesDrift) {
                    options.driftSeed = seed * maxLogs + log;
                }
                if (side == 1) {
                    options.slowerMillionths = truth.slowerPercent * millionthsOfPercent;
                    options.slowerLayer =
                        samplelog::SlowerLayer{slowedLayer, truth.layerPercent * millionthsOfPercent};
                }
                sides[side].push_back(runOf(options));
            }
        }
        return analysis::compare(sides[0], sides[1], {.isPaired = truth.isPaired});
    }

    using Is = bool (*)(const Comparison&);

    // In per cent of the seeds, how often each is so.
    [[nodiscard]] Cells percentsOf(const Truth& truth, const std::vector<Is>& questions) const {
        std::vector<std::uint64_t> counts(questions.size());
        for (std::uint64_t seed = first_; seed < first_ + seeds_; ++seed) {
            const Comparison comparison = comparisonOf(truth, seed);
            for (std::size_t question = 0; question < questions.size(); ++question) {
                counts[question] += questions[question](comparison) ? 1 : 0;
            }
        }
        Cells cells;
        for (const std::uint64_t count : counts) {
            cells.push_back(std::to_string((count * 1000 / seeds_ + 5) / 10));
        }
        return cells;
    }

    static void printRow(const Cells& cells) {
        for (const std::string& cell : cells) {
            std::cout << "| " << cell << ' ';
        }
        std::cout << "|\n" << std::flush;
    }

    static void printHead(const Cells& titles) {
        std::cout << '\n';
        printRow(titles);
        printRow(Cells(titles.size(), "---"));
    }

    void printTotals() const {
        printHead({"Logs a side", "the interval holds the truth", "no change is called one",
                   "3 % slower is found", "5 %", "10 %"});
        for (const std::uint64_t logs : {4U, 5U, 8U, 20U}) {
            const auto ofSlower = [&](std::uint32_t slower) {
                return percentsOf({.slowerPercent = slower, .logs = logs}, {isFound, holdsTruth<5>});
            };
            const Cells ofFive = ofSlower(5);
            printRow({std::to_string(logs), ofFive[1], ofSlower(0)[0], ofSlower(3)[0], ofFive[0],
                      ofSlower(10)[0]});
        }
    }

    void printGate() const {
        printHead({"Drift", "Logs a side", "True change", "not slower than allowed", "can't tell",
                   "slower than allowed"});
        for (const std::uint32_t drift : {2U, 4U}) {
            for (const std::uint64_t logs : {5U, 20U}) {
                for (const std::uint32_t slower : {0U, 2U, 4U, 5U, 6U, 10U}) {
                    Cells row = {percent(drift), std::to_string(logs), percent(slower)};
                    const Cells outcomes = percentsOf(
                        {.slowerPercent = slower, .driftPercent = drift, .logs = logs},
                        {has<GateOutcome::pass>, has<GateOutcome::unsure>, has<GateOutcome::slower>});
                    row.insert(row.end(), outcomes.begin(), outcomes.end());
                    printRow(row);
                }
            }
        }
    }

    // Takes the number of logs that a gate asks for, with seeds that it has not seen.
    void printLogsAsked() const {
        printHead({"Drift", "True change", "can't tell with 5 logs a side", "asks for 50 at most",
                   "decided by as many"});
        for (const std::uint32_t drift : {2U, 4U}) {
            for (const std::uint32_t slower : {0U, 10U}) {
                printLogsAsked({.slowerPercent = slower, .driftPercent = drift});
            }
        }
    }

    void printLogsAsked(const Truth& truth) const {
        constexpr std::uint64_t unseen = 1'000'000'000;
        const std::regex asking("About ([0-9]+) logs");
        std::uint64_t unsure = 0;
        std::uint64_t asked = 0;
        std::uint64_t decided = 0;
        for (std::uint64_t seed = first_; seed < first_ + seeds_; ++seed) {
            const auto result = judge(comparisonOf(truth, seed), fivePercent);
            if (result.outcome != GateOutcome::unsure) {
                continue;
            }
            ++unsure;
            std::smatch number;
            if (std::regex_search(result.reasons.at(0), number, asking)) {
                ++asked;
                Truth more = truth;
                more.logs = std::stoull(number[1]);
                const auto again = judge(comparisonOf(more, seed + unseen), fivePercent);
                decided += again.outcome == GateOutcome::unsure ? 0 : 1;
            }
        }
        printRow({percent(truth.driftPercent), percent(truth.slowerPercent),
                  std::to_string(unsure) + " of " + std::to_string(seeds_), std::to_string(asked),
                  asked == 0 ? "-" : percent(decided * 100 / asked)});
    }

    void printLayers() const {
        printHead({"Logs a side", "Drift", "no change: one is marked", "all 10 % slower: one is marked",
                   "one 10 % slower: it is marked and no other", "30 %", "40 %"});
        for (const std::uint64_t logs : {1U, 4U, 5U, 8U, 20U}) {
            for (const std::uint32_t drift : {2U, 4U}) {
                Cells row = {std::to_string(logs), percent(drift)};
                for (const std::uint32_t slower : {0U, 10U}) {
                    const Truth truth{.slowerPercent = slower, .driftPercent = drift, .logs = logs};
                    row.push_back(percentsOf(truth, {marksAny})[0]);
                }
                for (const std::uint32_t slower : {10U, 30U, 40U}) {
                    const Truth truth{.layerPercent = slower, .driftPercent = drift, .logs = logs};
                    row.push_back(percentsOf(truth, {marksTheSlowedAlone})[0]);
                }
                printRow(row);
            }
        }
    }

    void printPairs() const {
        printHead({"Pairs", "the interval holds the truth", "no change is called one", "1 % slower is found",
                   "3 %", "3 % without --paired"});
        for (const std::uint64_t pairs : {6U, 8U, 12U, 20U}) {
            const auto ofSlower = [&](std::uint32_t slower, bool isPaired) {
                return percentsOf({.slowerPercent = slower,
                                   .driftPercent = 4,
                                   .logs = pairs,
                                   .sharesDrift = true,
                                   .isPaired = isPaired},
                                  {isFound, holdsTruth<3>});
            };
            const Cells ofThree = ofSlower(3, true);
            printRow({std::to_string(pairs), ofThree[1], ofSlower(0, true)[0], ofSlower(1, true)[0],
                      ofThree[0], ofSlower(3, false)[0]});
        }
    }

    std::uint64_t seeds_;
    std::uint64_t first_;
    std::string path_ = (std::filesystem::temp_directory_path() /
                         ("comparison-tables." + std::to_string(::getpid()) + ".zlog"))
                            .string();
};

}  // namespace

int main(int argc, char** argv) {
    const std::uint64_t seeds = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100;
    const std::uint64_t first = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
    Tables(std::max<std::uint64_t>(seeds, 1), first).print();
}
